#include "phone/kernel/macho/call_frames.hpp"
#include "tests/phone/kernel/macho/library_builder.hpp"

#include <gtest/gtest.h>

namespace phone::test {
namespace {

class MachOImageOf : public testing::TestWithParam<MachOArchitecture> {
protected:
    LibraryBuilder builder { .architecture = GetParam() };
};
INSTANTIATE_TEST_SUITE_P(Slices, MachOImageOf,
    testing::Values(MachOArchitecture::arm64, MachOArchitecture::arm64e),
    [](auto const& info) { return info.param == MachOArchitecture::arm64e ? "arm64e" : "arm64"; });

TEST_P(MachOImageOf, SaysWhereItsSegmentsGoAndWhatItLoads)
{
    auto const image = parseMachO(builder.build(), GetParam());

    ASSERT_TRUE(image) << image.message();
    EXPECT_EQ(image->installName, "/Library/Corvel.dylib");
    EXPECT_EQ(image->libraries,
        (std::vector<std::string> { "/usr/lib/libobjc.A.dylib", "/usr/lib/libSystem.B.dylib" }));
    EXPECT_EQ(image->searchPaths, std::vector<std::string> { "/var/jb/usr/lib" });
    EXPECT_EQ(image->oldestSystem, GetParam() == MachOArchitecture::arm64e ? "14.0" : "12.0");
    EXPECT_EQ(image->size, 0xc000u);
    ASSERT_EQ(image->segments.size(), 3u);
    EXPECT_TRUE(image->segments[0].isExecutable);
    EXPECT_FALSE(image->segments[0].isWritable);
    EXPECT_EQ(image->segments[1].name, "__DATA");
    EXPECT_EQ(image->segments[1].place, kData);
    EXPECT_TRUE(image->segments[1].isWritable);
}

TEST_P(MachOImageOf, HasTheSameFixupsInEitherForm)
{
    auto const image = parseMachO(builder.build(), GetParam());

    ASSERT_TRUE(image) << image.message();
    std::vector<std::string> found;
    for (MachOFixup const& fixup : image->fixups) {
        if (fixup.place == kData + 0x40)
            continue;   // the initialiser's, which arm64e keeps as an offset
        std::string line = std::to_string(fixup.place - kData) + ": ";
        if (fixup.import == MachOFixup::kNoImport) {
            line += "code " + std::to_string(fixup.value);
        } else {
            MachOImport const& import = image->imports.at(fixup.import);
            line += import.name + (import.isWeak ? " (weak)" : "") + " of " + import.library + " + "
                + std::to_string(fixup.value);
        }
        found.push_back(line);
    }
    EXPECT_EQ(found,
        (std::vector<std::string> {
            "0: code 4096",
            "8: _objc_msgSend of /usr/lib/libobjc.A.dylib + 0",
            "16: _objc_msgSend of /usr/lib/libobjc.A.dylib + 16",
            "32: _rare (weak) of /usr/lib/libSystem.B.dylib + 0",
        }));
}

TEST_P(MachOImageOf, FindsItsInitialiser)
{
    auto const image = parseMachO(builder.build(), GetParam());

    ASSERT_TRUE(image) << image.message();
    EXPECT_EQ(image->initialisers, std::vector<std::uint64_t> { kCode });
}

TEST_P(MachOImageOf, DescribesItsFramesInDwarf)
{
    auto const image = parseMachO(builder.build(), GetParam());
    ASSERT_TRUE(image) << image.message();
    ASSERT_EQ(image->frames.size(), 2u);

    Bytes const table = dwarfCallFrames(*image, {}, 0x100000000);

    auto const at = [&](std::size_t offset, auto value) {
        std::memcpy(&value, table.data() + offset, sizeof value);
        return value;
    };
    std::size_t const first = 4 + at(0, 0u);
    EXPECT_EQ(at(first + 4, 0u), first + 4) << "the distance back to the common information";
    EXPECT_EQ(at(first + 8, 0ull), 0x100000000 + kCode);
    EXPECT_EQ(at(first + 16, 0ull), kSecondFunction - kCode);
    // No augmentation; CFA = x29 + 16; x29, x30, x19, x20 at 2, 1, 3, 4 slots below it.
    Bytes const framed { 0, 0x0c, 29, 16, 0x80 | 29, 2, 0x80 | 30, 1, 0x80 | 19, 3, 0x80 | 20, 4 };
    EXPECT_EQ(Bytes(table.begin() + first + 24, table.begin() + first + 24 + framed.size()), framed);
    std::size_t const second = first + 4 + at(first, 0u);
    EXPECT_EQ(at(second + 8, 0ull), 0x100000000 + kSecondFunction);
    Bytes const frameless { 0, 0x0c, 31, 32 };
    EXPECT_EQ(Bytes(table.begin() + second + 24, table.begin() + second + 24 + frameless.size()), frameless);
    std::size_t const end = second + 4 + at(second, 0u);
    EXPECT_EQ(at(end, 1u), 0u);
    EXPECT_EQ(end + 4, table.size());
}

TEST(MachOImage, IsTheSliceThatWasAskedFor)
{
    Bytes const arm64 = LibraryBuilder { .architecture = MachOArchitecture::arm64 }.build();
    Bytes const arm64e = LibraryBuilder { .architecture = MachOArchitecture::arm64e }.build();
    Bytes const file = fatFile({ arm64, arm64e });

    auto const plain = parseMachO(file, MachOArchitecture::arm64);
    auto const authenticated = parseMachO(file, MachOArchitecture::arm64e);

    ASSERT_TRUE(plain) << plain.message();
    EXPECT_EQ(plain->sliceOffset, 0x4000u);
    EXPECT_EQ(plain->sliceSize, arm64.size());
    ASSERT_TRUE(authenticated) << authenticated.message();
    EXPECT_EQ(authenticated->sliceOffset, 0x10000u);
    EXPECT_EQ(parseMachO(fatFile({ arm64 }), MachOArchitecture::arm64e).message(),
        "the file has no slice for arm64e");
    EXPECT_EQ(parseMachO(arm64, MachOArchitecture::arm64e).message(), "not for arm64e");
}

TEST(MachOImage, IsRecognisedByItsFirstBytes)
{
    EXPECT_TRUE(isMachO(LibraryBuilder {}.build()));
    EXPECT_TRUE(isMachO(fatFile({ LibraryBuilder {}.build() })));
    EXPECT_FALSE(isMachO({}));
    EXPECT_FALSE(isMachO(Bytes { 0x7f, 'E', 'L', 'F', 2, 1, 1, 0 }));
}

}
}
