// The iPhone's library at work: a small one, made as the package's is (tests/device/probe), loaded into a process of the phone's
// kind. Only on arm64; each slice as its own process would have it, arm64e with authenticated pointers.
#include "phone/kernel/macho/apple_symbols.hpp"

#include "objc/block.hpp"
#include "objc/define.hpp"
#include "phone/kernel/macho/authentication.hpp"
#include "platform/core_graphics.hpp"
#include "platform/foundation.hpp"
#include "tests/support/fork_runner.hpp"

#include "phone/kernel/file.hpp"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <string_view>
#include <unistd.h>

void warmUpTests() { }

// Substrate's part, as far as the library needs it.
static IMP g_replaced = nullptr;   // by the last hook
extern "C" IMP class_replaceMethod(Class cls, SEL selector, IMP implementation, char const* encoding);
extern "C" IMP method_getImplementation(Method method);
extern "C" char const* method_getTypeEncoding(Method method);
extern "C" void MSHookMessageEx(Class cls, SEL selector, IMP replacement, IMP* original)
{
    Method const method = class_getInstanceMethod(cls, selector);
    *original = g_replaced = method_getImplementation(method);
    class_replaceMethod(cls, selector, replacement, method_getTypeEncoding(method));
}

namespace phone::test {
namespace {

struct Host : objc::subclass<Host, "LoaderTestHost", NSObject> {
    using subclass::subclass;
    CGRect layoutFlip(CGRect rect, BOOL flip) const
    {
        return flip ? CGRectMake(rect.origin.y, rect.origin.x, rect.size.width, rect.size.height) : rect;
    }
    void keepBlock(objc::block_ref<NSString(NSInteger)> block) const
    {
        objc::state<objc::block_copy<NSString(NSInteger)>>(*this) = objc::block_copy(block);
    }
};

struct Probe : objc::subclass<Probe, "CVLLoaderProbe", NSObject> {
    using subclass::subclass;
};

class AppleLibraryOf : public testing::TestWithParam<MachOArchitecture> {
protected:
    void SetUp() override
    {
        bool const isArm64e = GetParam() == MachOArchitecture::arm64e;
        if (isArm64e)
            beginAuthenticating();
        objc::define<Host>()
            .state<objc::block_copy<NSString(NSInteger)>>()
            .method<"layout:flip:", &Host::layoutFlip>()
            .method<"keepBlock:", &Host::keepBlock>()
            .install();
        auto const loaded = loadAppleLibrary(probeFile(), GetParam());
        ASSERT_TRUE(loaded) << loaded.message();
        library = *loaded;
        host = objc::adopt(Host::alloc().init<Host>());
        probe = objc::adopt(Probe::alloc().init<Probe>());
    }

    static std::filesystem::path probeFile()
    {
        bool const isArm64e = GetParam() == MachOArchitecture::arm64e;
        return std::filesystem::path(CORVEL_PROBES) / (isArm64e ? "arm64e" : "arm64") / "Probe.dylib";
    }

    AutoreleasePool pool;
    MachOLibrary* library = nullptr;
    objc::ref<Host> host;
    objc::ref<Probe> probe;
};
INSTANTIATE_TEST_SUITE_P(Slices, AppleLibraryOf,
    testing::Values(MachOArchitecture::arm64, MachOArchitecture::arm64e),
    [](auto const& info) { return info.param == MachOArchitecture::arm64e ? "arm64e" : "arm64"; });

TEST_P(AppleLibraryOf, HooksAMethodAndCallsTheOriginal)
{
    CGRect const layout = host->send<"layout:flip:", CGRect>(CGRectMake(1, 2, 3, 4), BOOL(true));

    EXPECT_EQ(layout, CGRectMake(2, 1, 3, 92));
}

TEST_P(AppleLibraryOf, TakesAndAnswersNarrowIntegers)
{
    EXPECT_FALSE((probe->send<"negate:", BOOL>(BOOL(true))));
    EXPECT_TRUE((probe->send<"negate:", BOOL>(BOOL(false))));
    EXPECT_EQ((probe->send<"add:to:", std::int16_t>(std::int16_t(-300), static_cast<signed char>(-5))), -305);
}

TEST_P(AppleLibraryOf, KeepsPropertiesThatKeyValueCodingReads)
{
    probe->send<"setTitle:">("Anna"_ns);
    probe->send<"setIsOn:">(BOOL(true));
    probe->send<"setFrame:">(CGRectMake(5, 6, 7, 8));

    auto const object = NSObject { probe.get().object };
    EXPECT_STREQ(NSString { object.valueForKey("title"_ns).object }.UTF8String(), "Anna");
    EXPECT_TRUE(NSNumber { object.valueForKey("isOn"_ns).object }.boolValue());
    EXPECT_EQ((probe->send<"frame", CGRect>()), CGRectMake(5, 6, 7, 8));
}

TEST_P(AppleLibraryOf, CallsABlockOfThePhone)
{
    double sum = 0;
    auto const literal = objc::block([&sum](double value) {
        sum += value;
        return 2 * value;
    });

    double const answer = probe->send<"callTwice:", double>(objc::lent(literal));

    EXPECT_EQ(sum, 21);
    EXPECT_EQ(answer, 42);
}

TEST_P(AppleLibraryOf, GivesABlockThatOutlivesItsCall)
{
    probe->send<"giveBlockTo:name:">(host, "ab"_ns);

    NSString const text = objc::state<objc::block_copy<NSString(NSInteger)>>(host.get())(NSInteger(3));

    EXPECT_STREQ(text.UTF8String(), "ababab");
    host = {};   // releases the block, and with it what it holds
}

TEST_P(AppleLibraryOf, LetsAnExceptionPassItsFrames)
{
    bool wasCaught = false;
    try {
        probe->send<"raise:", objc::handle>(NSMutableArray::array());
    } catch (...) {
        wasCaught = true;
    }

    EXPECT_TRUE(wasCaught);
    EXPECT_FALSE(library->image().frames.empty());
}

TEST_P(AppleLibraryOf, GetsZeroFromNilAndDoesWithoutACppLibrary)
{
    EXPECT_EQ((probe->send<"rectOfNil", CGRect>()), CGRect());
    EXPECT_STREQ((probe->send<"reversed:", NSString>("corvel"_ns)).UTF8String(), "levroc6");
}

TEST_P(AppleLibraryOf, IsNotLoadedWhenNobodyHasAnImport)
{
    auto bytes = readFile(probeFile());
    ASSERT_TRUE(bytes) << bytes.message();
    std::string_view const name = "_sel_registerName";
    for (auto at = bytes->begin();
         (at = std::search(at, bytes->end(), name.begin(), name.end())) != bytes->end(); ++at)
        at[name.size() - 1] = 'o';
    auto const path =
        std::filesystem::temp_directory_path() / ("Probe-" + std::to_string(getpid()) + ".dylib");
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<char const*>(bytes->data()), static_cast<std::streamsize>(bytes->size()));

    auto const loaded = loadAppleLibrary(path, GetParam());

    std::filesystem::remove(path);
    ASSERT_FALSE(loaded);
    EXPECT_EQ(loaded.message(), path.string() + ": nobody has what the library imports: _sel_registerNamo");
}

TEST_P(AppleLibraryOf, IsKnownByItsAddresses)
{
    EXPECT_TRUE(isAppleLibraryAddress(library->base()));
    EXPECT_FALSE(isAppleLibraryAddress(this));
}

// What a phone's processor would stop. A signature here has 7 bits, so one wrong pointer in 128 is right by chance: eight wrong
// ones in a row are not.
using AuthenticatedLibrary = AppleLibraryOf;
INSTANTIATE_TEST_SUITE_P(Slices, AuthenticatedLibrary, testing::Values(MachOArchitecture::arm64e),
    [](auto const&) { return "arm64e"; });

TEST_P(AuthenticatedLibrary, MayNotAddAMethodUnsigned)
{
    auto* const add =
        reinterpret_cast<decltype(class_addMethod)*>(appleSymbol({ .name = "_class_addMethod" }));
    Class const cls = objc_allocateClassPair(NSObject::cls().get(), "Unsigned", 0);

    EXPECT_DEATH(
        {
            for (int i = 0; i < 8; ++i)
                add(cls, sel_registerName(("method" + std::to_string(i)).c_str()),
                    reinterpret_cast<IMP>(library->base() + 0x1000 + 16 * i), "v@:");
        },
        "wrong signature on a method's implementation");
}

TEST_P(AuthenticatedLibrary, MayNotHookUnsigned)
{
    auto* const hook =
        reinterpret_cast<decltype(MSHookMessageEx)*>(appleSymbol({ .name = "_MSHookMessageEx" }));

    EXPECT_DEATH(
        {
            IMP original = nullptr;
            for (int i = 0; i < 8; ++i)
                hook(Host::cls().get(), sel_registerName("layout:flip:"),
                    reinterpret_cast<IMP>(library->base() + 0x1000 + 16 * i), &original);
        },
        "wrong signature on a replacement");
}

TEST_P(AuthenticatedLibrary, GetsOriginalsSigned)
{
    auto* const implementation = reinterpret_cast<decltype(class_getMethodImplementation)*>(
        appleSymbol({ .name = "_class_getMethodImplementation" }));
    IMP const given = implementation(NSObject::cls().get(), sel_registerName("description"));

    EXPECT_EQ(authenticatedCode(reinterpret_cast<void*>(given), 0, "an original"),
        reinterpret_cast<void*>(
            class_getMethodImplementation(NSObject::cls().get(), sel_registerName("description"))));
}

TEST_P(AuthenticatedLibrary, DoesNotCallAnOriginalThatIsSignedForAnotherUse)
{
    // Where the library keeps what the hook has replaced: its signature tells it from all else.
    auto* const original = reinterpret_cast<void*>(g_replaced);
    void* const kept = signedCode(original, 0);
    void** slot = nullptr;
    for (MachOSegment const& segment : library->image().segments) {
        auto* const first = reinterpret_cast<void**>(library->base() + segment.place);
        auto* const end = first + (segment.isWritable ? segment.size / sizeof(void*) : 0);
        if (auto* const found = std::find(first, end, kept); found != end)
            slot = found;
    }
    ASSERT_TRUE(slot);

    EXPECT_DEATH(
        {
            for (std::uint64_t use = 1; use <= 8; ++use) {
                *slot = signedCode(original, use);
                static_cast<void>((host->send<"layout:flip:", CGRect>(CGRectMake(1, 2, 3, 4), BOOL(true))));
            }
        },
        "");
}

TEST_P(AuthenticatedLibrary, MayNotHandOutABlockOfAnotherPlace)
{
    EXPECT_DEATH(
        {
            for (int i = 0; i < 8; ++i) {
                auto const literal = objc::block([i] { return NSInteger(i); });
                // The bytes alone are moved; the signature is for the place that they had.
                alignas(16) char moved[sizeof literal];
                std::memcpy(moved, &literal, sizeof literal);
                objc::block_ref<NSInteger()> { reinterpret_cast<objc::block_header*>(moved) }();
            }
        },
        "wrong signature on a block's function");
}

}
}
