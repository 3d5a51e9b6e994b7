// LC_DYLD_CHAINED_FIXUPS, in the pointer formats that our linker writes: 64 bits, plain.
#include "phone/kernel/macho/mach_o_parts.hpp"

namespace phone::macho {
namespace {

enum : std::uint32_t { kImports = 1, kImportsWithAddend = 2, kImportsWithAddend64 = 3 };
enum : std::uint16_t { kPointer64 = 2, kPointer64Offset = 6 };   // targets are addresses, or places
constexpr std::uint16_t kNoFixups = 0xffff;
constexpr std::uint16_t kSeveralChains = 0x8000;
constexpr std::uint64_t kPointerStride = 4;

// An ordinal of 8 or 16 bits; the highest three are special.
std::int64_t signedOrdinal(std::uint64_t ordinal, std::uint64_t limit)
{
    return ordinal > limit - 0x10 ? 0 : static_cast<std::int64_t>(ordinal);
}

// Reads the imports, and what is to be added to each.
void readImports(MachOBytes& bytes, Range table, MachOImage& image, std::vector<std::uint64_t>& addends)
{
    auto const imports = table.offset + bytes.at<std::uint32_t>(table.offset + 8);
    auto const symbols = table.offset + bytes.at<std::uint32_t>(table.offset + 12);
    auto const count = bytes.at<std::uint32_t>(table.offset + 16);
    auto const format = bytes.at<std::uint32_t>(table.offset + 20);
    auto const symbolFormat = bytes.at<std::uint32_t>(table.offset + 24);
    if (format < kImports || format > kImportsWithAddend64)
        return bytes.fail("unknown format " + std::to_string(format) + " of chained imports");
    if (symbolFormat != 0)
        return bytes.fail("the names of chained imports are compressed");
    std::uint64_t const width = format == kImports ? 4 : format == kImportsWithAddend ? 8 : 16;
    if (!bytes.holds(imports, count * width, "the table of chained imports"))
        return;
    for (std::uint32_t i = 0; i < count && bytes.isGood(); ++i) {
        std::uint64_t const at = imports + i * width;
        std::uint64_t name = 0, addend = 0;
        std::int64_t ordinal = 0;
        MachOImport import;
        if (format == kImportsWithAddend64) {
            auto const packed = bytes.at<std::uint64_t>(at);
            ordinal = signedOrdinal(packed & 0xffff, 0xffff);
            import.isWeak = packed >> 16 & 1;
            name = packed >> 32;
            addend = bytes.at<std::uint64_t>(at + 8);
        } else {
            auto const packed = bytes.at<std::uint32_t>(at);
            ordinal = signedOrdinal(packed & 0xff, 0xff);
            import.isWeak = packed >> 8 & 1;
            name = packed >> 9;
            if (format == kImportsWithAddend)
                addend = static_cast<std::uint64_t>(std::int64_t { bytes.at<std::int32_t>(at + 4) });
        }
        if (ordinal > static_cast<std::int64_t>(image.libraries.size()))
            return bytes.fail("an import names library " + std::to_string(ordinal) + ", which is not there");
        import.name = bytes.textAt(symbols + name, table.end());
        import.library = libraryOf(image, ordinal);
        image.imports.push_back(std::move(import));
        addends.push_back(addend);
    }
}

struct Chain {
    MachOSegment const& segment;
    std::uint16_t format;
    std::uint64_t pageSize;
};

// Follows one page's chain from its first pointer, at an offset in the segment.
void readChain(MachOBytes& bytes, Chain const& chain, std::uint64_t offset, std::uint64_t base,
    std::vector<std::uint64_t> const& addends, MachOImage& image)
{
    std::uint64_t const page = offset / chain.pageSize;
    while (bytes.isGood()) {
        if (offset > chain.segment.fileSize || chain.segment.fileSize - offset < kPointerSize)
            return bytes.fail("a chain of fixups leaves " + chain.segment.name);
        auto const packed = bytes.at<std::uint64_t>(chain.segment.fileOffset + offset);
        MachOFixup fixup { .place = chain.segment.place + offset };
        if (packed >> 63) {
            fixup.import = static_cast<std::uint32_t>(packed & 0xffffff);
            if (fixup.import >= addends.size())
                return bytes.fail(
                    "a fixup names import " + std::to_string(fixup.import) + ", which is not there");
            fixup.value = addends[fixup.import] + (packed >> 24 & 0xff);
        } else {
            std::uint64_t const target = packed & 0xfffffffff;
            fixup.value = chain.format == kPointer64 ? target - base : target;
            fixup.topByte = static_cast<std::uint8_t>(packed >> 36);
            if (fixup.value >= image.size)
                return bytes.fail("a pointer to " + hexadecimal(target) + " leaves the image");
        }
        addFixup(bytes, image, fixup);
        std::uint64_t const next = (packed >> 51 & 0xfff) * kPointerStride;
        if (next == 0)
            return;
        offset += next;
        if (offset / chain.pageSize != page)
            return bytes.fail("a chain of fixups leaves its page in " + chain.segment.name);
    }
}

void readSegment(MachOBytes& bytes, MachOSegment const& segment, std::uint64_t at, std::uint64_t tableEnd,
    std::uint64_t base, std::vector<std::uint64_t> const& addends, MachOImage& image)
{
    auto const pageSize = bytes.at<std::uint16_t>(at + 4);
    auto const format = bytes.at<std::uint16_t>(at + 6);
    auto const place = bytes.at<std::uint64_t>(at + 8);
    auto const pages = bytes.at<std::uint16_t>(at + 20);
    if (!bytes.isGood())
        return;
    if (at + 22 + pages * 2ull > tableEnd)
        return bytes.fail("the pages of chained fixups lie past their table");
    if (format != kPointer64 && format != kPointer64Offset)
        return bytes.fail(
            "chained pointers are of format " + std::to_string(format) + ", which is not supported");
    if (pageSize != 0x1000 && pageSize != 0x4000)
        return bytes.fail("chained fixups have pages of " + std::to_string(pageSize) + " bytes");
    if (place != segment.place)
        return bytes.fail("chained fixups and " + segment.name + " disagree about its place");
    for (std::uint64_t page = 0; page < pages && bytes.isGood(); ++page) {
        auto const first = bytes.at<std::uint16_t>(at + 22 + 2 * page);
        if (first == kNoFixups)
            continue;
        if (first & kSeveralChains || first >= pageSize)
            return bytes.fail("a page of " + segment.name + " has a start of fixups that is not supported");
        readChain(bytes, { segment, format, pageSize }, page * pageSize + first, base, addends, image);
    }
}

}

void readChainedFixups(MachOBytes& bytes, Range table, std::uint64_t base, MachOImage& image)
{
    if (!bytes.holds(table.offset, table.size, "the table of chained fixups"))
        return;
    if (bytes.at<std::uint32_t>(table.offset) != 0)
        return bytes.fail("the chained fixups are of an unknown version");
    std::vector<std::uint64_t> addends;
    readImports(bytes, table, image, addends);
    std::uint64_t const starts = table.offset + bytes.at<std::uint32_t>(table.offset + 4);
    auto const count = bytes.at<std::uint32_t>(starts);
    if (count > image.segments.size())
        return bytes.fail("chained fixups are for " + std::to_string(count) + " segments");
    // By index: adding fixups leaves the segments alone.
    for (std::uint32_t i = 0; i < count && bytes.isGood(); ++i) {
        if (auto const offset = bytes.at<std::uint32_t>(starts + 4 + 4ull * i))
            readSegment(bytes, image.segments[i], starts + offset, table.end(), base, addends, image);
    }
}

}
