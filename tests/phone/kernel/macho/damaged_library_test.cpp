// Libraries that are not what they say: each is refused with a reason, none is read past its end.
#include "phone/kernel/macho/mach_o_library.hpp"
#include "tests/phone/kernel/macho/library_builder.hpp"

#include <gtest/gtest.h>
#include <random>

namespace phone::test {
namespace {

constexpr auto kPlain = MachOArchitecture::arm64;
constexpr auto kChained = MachOArchitecture::arm64e;

struct Damage {
    char const* name;
    MachOArchitecture architecture;
    char const* reason;
    void (*apply)(Bytes&, LibraryBuilder const&);
};

class DamagedLibrary : public testing::TestWithParam<Damage> { };

TEST_P(DamagedLibrary, IsRefusedWithAReason)
{
    LibraryBuilder builder { .architecture = GetParam().architecture };
    Bytes bytes = builder.build();
    GetParam().apply(bytes, builder);

    auto const image = parseMachO(bytes, GetParam().architecture);

    ASSERT_FALSE(image);
    EXPECT_EQ(image.message(), GetParam().reason);
}

using U16 = std::uint16_t;
using U32 = std::uint32_t;
using U64 = std::uint64_t;

Damage const kDamages[] = {
    { "AnotherKindOfFile", kPlain, "not a Mach-O file of 64 bits",
        [](Bytes& bytes, LibraryBuilder const&) { put<U32>(bytes, 0, 0x464c457f); } },
    { "NoLibrary", kPlain, "not a dynamic library",
        [](Bytes& bytes, LibraryBuilder const&) { put<U32>(bytes, 12, 2); } },
    { "CommandsPastTheEnd", kPlain, "the end of the load commands at 0x0 lies past the end of the file",
        [](Bytes& bytes, LibraryBuilder const&) { put<U32>(bytes, 20, 0xfffffff0); } },
    { "TooManyCommands", kPlain, "there are fewer load commands than the header says",
        [](Bytes& bytes, LibraryBuilder const&) { put<U32>(bytes, 16, 0xffffffff); } },
    { "ACommandWithoutSize", kPlain, "the load command at 0x20 has a wrong size",
        [](Bytes& bytes, LibraryBuilder const& built) { put<U32>(bytes, built.textSegment + 4, 0); } },
    { "AnUnknownCommandThatMatters", kPlain, "unknown load command 0x80000099",
        [](Bytes& bytes, LibraryBuilder const& built) { put<U32>(bytes, built.fixups, 0x80000099); } },
    { "AbsurdlyManySections", kPlain, "segment __DATA claims to have 4294967295 sections",
        [](Bytes& bytes, LibraryBuilder const& built) {
            put<U32>(bytes, built.dataSegment + 64, 0xffffffff);
        } },
    { "ASegmentPastTheEnd", kPlain, "a segment at 0x7fffffffffffffff lies past the end of the file",
        [](Bytes& bytes, LibraryBuilder const& built) {
            put<U64>(bytes, built.tablesSegment + 40, 0x7fffffffffffffff);
        } },
    { "ASegmentThatIsSmallerThanItsBytes", kPlain, "segment __DATA has more bytes in the file than in memory",
        [](Bytes& bytes, LibraryBuilder const& built) { put<U64>(bytes, built.dataSegment + 32, 0x3fff); } },
    { "AHugeSegment", kPlain, "segment __DATA cannot lie at 0x4000",
        [](Bytes& bytes, LibraryBuilder const& built) {
            put<U64>(bytes, built.dataSegment + 32, 1ull << 62);
        } },
    { "SegmentsThatOverlap", kPlain, "segments __TEXT and __DATA overlap",
        [](Bytes& bytes, LibraryBuilder const& built) { put<U64>(bytes, built.textSegment + 32, 0x8000); } },
    { "SegmentsThatOverlapInTheFile", kPlain, "segments __DATA and __LINKEDIT overlap in the file",
        [](Bytes& bytes, LibraryBuilder const& built) {
            put<U64>(bytes, built.tablesSegment + 40, 0x4000);
        } },
    { "CodeThatCanBeWritten", kPlain, "segment __TEXT is both writable and executable",
        [](Bytes& bytes, LibraryBuilder const& built) { put<U32>(bytes, built.textSegment + 60, 7); } },
    { "TwoTablesOfFixups", kPlain, "there are two tables of fixups",
        [](Bytes& bytes, LibraryBuilder const& built) {
            // In the place of the build version, which comes before.
            put<U32>(bytes, built.fixups - 24, 0x80000034);
        } },
    { "AProgramPastTheEnd", kPlain, "a fixup program at 0x8000 lies past the end of the file",
        [](Bytes& bytes, LibraryBuilder const& built) { put<U32>(bytes, built.fixups + 12, 0xffffff); } },
    { "AnUnknownOperation", kPlain, "unknown rebase operation 0xf1",
        [](Bytes& bytes, LibraryBuilder const& built) { put<U16>(bytes, built.rebaseProgram, 0x11f1); } },
    { "APointerThatIsNoneOfTheImage", kPlain, "a pointer to 0xc000 leaves the image",
        [](Bytes& bytes, LibraryBuilder const&) { put<U64>(bytes, kData, 0xc000); } },
    { "AFixupInTheCode", kPlain, "a fixup lies in __TEXT, which cannot be written",
        [](Bytes& bytes, LibraryBuilder const& built) {
            put<U64>(bytes, built.rebaseProgram, 0x00'51'30'c0'20'11);   // segment 0, offset 0x1840
            put<U64>(bytes, 0x1840, kCode);
        } },
    { "AFixupOfAnUnknownSegment", kPlain, "a fixup names segment 9, which is not there",
        [](Bytes& bytes, LibraryBuilder const& built) {
            put<std::uint8_t>(bytes, built.rebaseProgram + 1, 0x29);
        } },
    { "ABillionFixups", kPlain, "there are more fixups than pointers",
        [](Bytes& bytes, LibraryBuilder const& built) {
            // The initialiser's slot, over and over: each step is taken back by the distance that is skipped.
            std::string_view const text(
                "\x11\x21\x00\x80\xff\xff\xff\xff\x0f\xf8\xff\xff\xff\xff\xff\xff\xff\xff\x01", 19);
            put<U32>(bytes, built.fixups + 8, 0x8100);
            put<U32>(bytes, built.fixups + 12, 19);
            std::memcpy(bytes.data() + 0x8100, text.data(), text.size());
        } },
    { "ASymbolWithoutAnEnd", kPlain, "a text at 0x8012 has no end",
        [](Bytes& bytes, LibraryBuilder const& built) {
            std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(built.bindProgram) + 2, 0x3e, 'a');
        } },
    { "ABindToAnUnknownLibrary", kPlain, "a bind names library 3, which is not there",
        [](Bytes& bytes, LibraryBuilder const& built) {
            put<std::uint8_t>(bytes, built.bindProgram, 0x13);
        } },
    { "AnInitialiserThatIsNoPointer", kPlain, "an initialiser is no pointer into the image",
        [](Bytes& bytes, LibraryBuilder const& built) {
            put<U64>(bytes, built.initialiserSection + 32, kData + 0x38);
        } },
    { "AnInitialiserInTheData", kChained, "an initialiser at 0x4000 is no code",
        [](Bytes& bytes, LibraryBuilder const&) { put<U32>(bytes, 0x1800, kData); } },
    { "ThreadLocalVariables", kPlain, "thread-local variables are not supported",
        [](Bytes& bytes, LibraryBuilder const& built) {
            put<U32>(bytes, built.initialiserSection + 64, 0x13);
        } },
    { "ASectionOutsideOfItsSegment", kPlain, "section __mod_init_func lies outside of __DATA",
        [](Bytes& bytes, LibraryBuilder const& built) {
            put<U64>(bytes, built.initialiserSection + 40, 0x4000);
        } },
    { "AnotherPointerFormat", kChained, "chained pointers are of format 12, which is not supported",
        [](Bytes& bytes, LibraryBuilder const& built) { put<U16>(bytes, built.chainedTable + 48 + 6, 12); } },
    { "AChainThatLeavesItsSegment", kChained, "a chain of fixups leaves __DATA",
        [](Bytes& bytes, LibraryBuilder const&) { put<U64>(bytes, kData, kCode | 0xfffull << 51); } },
    { "AChainToAnUnknownImport", kChained, "a fixup names import 2, which is not there",
        [](Bytes& bytes, LibraryBuilder const&) { put<U64>(bytes, kData + 8, 1ull << 63 | 2); } },
    { "APointerThatLeavesTheImage", kChained, "a pointer to 0xfffffffff leaves the image",
        [](Bytes& bytes, LibraryBuilder const&) { put<U64>(bytes, kData, 0xfffffffff); } },
    { "AbsurdlyManyImports", kChained, "the table of chained imports at 0x8050 lies past the end of the file",
        [](Bytes& bytes, LibraryBuilder const& built) {
            put<U32>(bytes, built.chainedTable + 16, 0xffffffff);
        } },
    { "ChainedFixupsOfTooManySegments", kChained, "chained fixups are for 4 segments",
        [](Bytes& bytes, LibraryBuilder const& built) { put<U32>(bytes, built.chainedTable + 32, 4); } },
    { "PagesPastTheTable", kChained, "the pages of chained fixups lie past their table",
        [](Bytes& bytes, LibraryBuilder const& built) {
            put<U16>(bytes, built.chainedTable + 48 + 20, 0xffff);
        } },
    { "UnwindInformationThatLeadsOut", kPlain, "the unwind information leads out of itself",
        [](Bytes& bytes, LibraryBuilder const& built) {
            put<U32>(bytes, built.unwindInfo + 20, 0xfffffff0);
        } },
    { "UnwindInformationOutOfOrder", kPlain, "the unwind information is not in the order of the code",
        [](Bytes& bytes, LibraryBuilder const& built) { put<U32>(bytes, built.unwindInfo + 32, 0x2000); } },
};
INSTANTIATE_TEST_SUITE_P(
    Table, DamagedLibrary, testing::ValuesIn(kDamages), [](auto const& info) { return info.param.name; });

class AnyDamage : public testing::TestWithParam<MachOArchitecture> {
protected:
    static void* anything(MachOImport const&)
    {
        static char symbol;
        return &symbol;
    }
    // Reads, and where that goes well maps: neither may harm the process.
    static bool survives(Bytes const& bytes)
    {
        auto image = parseMachO(bytes, GetParam());
        if (!image)
            return !image.message().empty() && image.message().find('\n') == std::string::npos;
        auto const library = MachOLibrary::map(bytes, std::move(image).value(), anything);
        return library || !library.message().empty();
    }
};
INSTANTIATE_TEST_SUITE_P(Slices, AnyDamage, testing::Values(kPlain, kChained),
    [](auto const& info) { return info.param == kChained ? "arm64e" : "arm64"; });

TEST_P(AnyDamage, OfBeingCutOffIsSurvived)
{
    Bytes const whole = LibraryBuilder { .architecture = GetParam() }.build();
    for (std::size_t length = 0; length < whole.size();
         length += length < 0x900 || length > kTables ? 1 : 61) {
        // A copy of the very size, so that the sanitizers see a byte too far.
        Bytes const part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        ASSERT_TRUE(survives(part)) << "cut off after " << length;
    }
}

TEST_P(AnyDamage, OfBytesInTheTablesIsSurvived)
{
    LibraryBuilder builder { .architecture = GetParam() };
    Bytes const whole = builder.build();
    std::mt19937_64 random(7);
    // What decides: commands, unwind information, pointers of the data, tables.
    std::pair<std::size_t, std::size_t> const places[] = { { 0, 0x500 }, { 0x1100, 0x1150 },
        { kData, kData + 0x48 }, { kTables, whole.size() } };
    for (int round = 0; round < 20000; ++round) {
        Bytes bytes = whole;
        for (auto changes = 1 + random() % 4; changes > 0; --changes) {
            auto const& [start, end] = places[random() % std::size(places)];
            std::size_t const at = start + random() % (end - start);
            static constexpr std::uint8_t kEdges[] = { 0, 1, 0x7f, 0x80, 0xff };
            bytes[at] =
                random() % 2 ? kEdges[random() % std::size(kEdges)] : static_cast<std::uint8_t>(random());
        }
        ASSERT_TRUE(survives(bytes)) << "round " << round;
    }
}

}
}
