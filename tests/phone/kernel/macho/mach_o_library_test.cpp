#include "phone/kernel/macho/mach_o_library.hpp"
#include "tests/phone/kernel/macho/library_builder.hpp"

#include <gtest/gtest.h>

namespace phone::test {
namespace {

std::uint8_t g_sendMessage;   // its address stands for a function

void* onlyMessages(MachOImport const& import)
{
    return import.name == "_objc_msgSend" ? &g_sendMessage : nullptr;
}

std::uint64_t pointerAt(MachOLibrary const& library, std::uint64_t place)
{
    std::uint64_t value = 0;
    std::memcpy(&value, library.base() + place, sizeof value);
    return value;
}

class MachOLibraryOf : public testing::TestWithParam<MachOArchitecture> {
protected:
    Result<std::unique_ptr<MachOLibrary>> map(MachOResolver const& resolver)
    {
        auto image = parseMachO(file, GetParam());
        if (!image)
            return image.error();
        return MachOLibrary::map(file, std::move(image).value(), resolver);
    }

    Bytes file = fatFile({ LibraryBuilder { .architecture = MachOArchitecture::arm64 }.build(),
        LibraryBuilder { .architecture = MachOArchitecture::arm64e }.build() });
};
INSTANTIATE_TEST_SUITE_P(Slices, MachOLibraryOf,
    testing::Values(MachOArchitecture::arm64, MachOArchitecture::arm64e),
    [](auto const& info) { return info.param == MachOArchitecture::arm64e ? "arm64e" : "arm64"; });

TEST_P(MachOLibraryOf, PointsInwardsAndOutwardsOnceItIsMapped)
{
    auto const library = map(onlyMessages);

    ASSERT_TRUE(library) << library.message();
    auto const base = reinterpret_cast<std::uintptr_t>((*library)->base());
    auto const outside = reinterpret_cast<std::uintptr_t>(&g_sendMessage);
    EXPECT_EQ(pointerAt(**library, kData), base + kCode);
    EXPECT_EQ(pointerAt(**library, kData + 8), outside);
    EXPECT_EQ(pointerAt(**library, kData + 16), outside + 16);
    EXPECT_EQ(pointerAt(**library, kData + 32), 0u) << "weak, and nobody has it";
    EXPECT_TRUE((*library)->holds((*library)->base() + kCode));
    EXPECT_FALSE((*library)->holds(&g_sendMessage));
}

TEST_P(MachOLibraryOf, IsNotMappedWhenNobodyHasAnImport)
{
    auto const library = map([](MachOImport const&) -> void* { return nullptr; });

    ASSERT_FALSE(library);
    EXPECT_EQ(library.message(), "nobody has what the library imports: _objc_msgSend");
}

TEST_P(MachOLibraryOf, MayBeWrittenOnlyWhereItsSegmentsSay)
{
    auto const library = map(onlyMessages);
    ASSERT_TRUE(library) << library.message();

    (*library)->base()[kData + 0x100] = 1;

    EXPECT_DEATH((*library)->base()[kCode] = 1, "");
    EXPECT_DEATH((*library)->base()[kTables] = 1, "");
}

#if !defined(__aarch64__)
TEST_P(MachOLibraryOf, RunsOnlyOnItsProcessor)
{
    auto const library = map(onlyMessages);
    ASSERT_TRUE(library) << library.message();

    EXPECT_FALSE((*library)->runInitialisers());
}
#endif

}
}
