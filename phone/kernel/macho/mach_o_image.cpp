#include "phone/kernel/macho/mach_o_image.hpp"

#include "phone/kernel/macho/mach_o_parts.hpp"

#include <algorithm>
#include <optional>

namespace phone {
namespace macho {
namespace {

enum : std::uint32_t {
    kFatMagic = 0xcafebabe,   // big-endian, as all of the fat header
    kMagic = 0xfeedfacf,
    kCpuArm64 = 0x0100000c,
    kSubtypeArm64e = 2,   // in the low byte; the bits above tell the ABI's version
    kDynamicLibrary = 6,

    kLoadDylib = 0x0c,
    kIdDylib = 0x0d,
    kSegment64 = 0x19,
    kEncryptionInfo64 = 0x2c,
    kBuildVersion = 0x32,
    kLoadWeakDylib = 0x80000018,
    kRpath = 0x8000001c,
    kReexportDylib = 0x8000001f,
    kDyldInfoOnly = 0x80000022,
    kDyldChainedFixups = 0x80000034,
    kMustUnderstand = 0x80000000,   // of a command: who does not know it may not load the file
    kExportsTrie = 0x80000033,

    kInitialiserPointers = 0x09,
    kInitialiserOffsets = 0x16,
    kZeroFill = 0x01,
    kBigZeroFill = 0x0c,
    kThreadLocalFirst = 0x11,
    kThreadLocalLast = 0x15,
};
constexpr std::uint64_t kHeaderSize = 32;
constexpr std::uint64_t kSegmentCommandSize = 72;
constexpr std::uint64_t kSectionSize = 80;
constexpr std::uint64_t kPageSize = 0x4000;
// What no library of ours comes near: a file that claims more is damaged.
constexpr std::uint32_t kMaximumSlices = 16;
constexpr std::uint64_t kMaximumImageSize = 256ull << 20;
constexpr std::uint64_t kMaximumFixups = 1 << 20;

struct Slice {
    std::uint64_t offset, size;
};

std::optional<Slice> findSlice(MachOBytes& file, MachOArchitecture architecture)
{
    auto const isWanted = [&](std::uint32_t cpu, std::uint32_t subtype) {
        return cpu == kCpuArm64
            && ((subtype & 0xff) == kSubtypeArm64e) == (architecture == MachOArchitecture::arm64e);
    };
    char const* const name = architecture == MachOArchitecture::arm64e ? "arm64e" : "arm64";
    if (file.bigEndianAt(0) != kFatMagic) {
        if (file.at<std::uint32_t>(0) != kMagic)
            file.fail("not a Mach-O file of 64 bits");
        else if (!isWanted(file.at<std::uint32_t>(4), file.at<std::uint32_t>(8)))
            file.fail(std::string("not for ") + name);
        return file.isGood() ? std::optional(Slice { 0, file.size() }) : std::nullopt;
    }
    std::uint32_t const count = file.bigEndianAt(4);
    if (count > kMaximumSlices)
        file.fail("the file claims to have " + std::to_string(count) + " slices");
    for (std::uint64_t i = 0; i < count && file.isGood(); ++i) {
        std::uint64_t const at = 8 + 20 * i;
        if (!isWanted(file.bigEndianAt(at), file.bigEndianAt(at + 4)))
            continue;
        Slice const slice { file.bigEndianAt(at + 8), file.bigEndianAt(at + 12) };
        if (file.holds(slice.offset, slice.size, "a slice"))
            return slice;
    }
    file.fail(std::string("the file has no slice for ") + name);
    return std::nullopt;
}

// Reads one slice's header and commands; the tables that they name come last, when all segments are known.
class Parser {
public:
    Parser(std::span<std::uint8_t const> slice, MachOImage& image)
        : m_bytes(slice)
        , m_image(image)
    {
    }

    std::string const& run(MachOArchitecture architecture)
    {
        readHeader(architecture);
        checkSegments();
        if (m_bytes.isGood() && m_programs)
            readFixupPrograms(m_bytes, *m_programs, m_base, m_image);
        if (m_bytes.isGood() && m_chained)
            readChainedFixups(m_bytes, *m_chained, m_base, m_image);
        for (Section const& section : m_sections) {
            if (m_bytes.isGood())
                readSection(section);
        }
        return m_bytes.problem();
    }

private:
    void readHeader(MachOArchitecture architecture)
    {
        if (m_bytes.at<std::uint32_t>(0) != kMagic)
            m_bytes.fail("the slice is not a Mach-O file of 64 bits");
        bool const isArm64e = (m_bytes.at<std::uint32_t>(8) & 0xff) == kSubtypeArm64e;
        if (m_bytes.at<std::uint32_t>(4) != kCpuArm64
            || isArm64e != (architecture == MachOArchitecture::arm64e))
            m_bytes.fail("the slice is for another architecture than the file says");
        if (m_bytes.at<std::uint32_t>(12) != kDynamicLibrary)
            m_bytes.fail("not a dynamic library");
        auto const count = m_bytes.at<std::uint32_t>(16);
        std::uint64_t const end = kHeaderSize + m_bytes.at<std::uint32_t>(20);
        if (!m_bytes.isGood() || !m_bytes.holds(0, end, "the end of the load commands"))
            return;
        std::uint64_t at = kHeaderSize;
        for (std::uint32_t i = 0; i < count && m_bytes.isGood(); ++i) {
            if (end - at < 8)
                return m_bytes.fail("there are fewer load commands than the header says");
            auto const command = m_bytes.at<std::uint32_t>(at);
            auto const size = m_bytes.at<std::uint32_t>(at + 4);
            if (size < 8 || size % 4 || size > end - at)
                return m_bytes.fail("the load command at " + hexadecimal(at) + " has a wrong size");
            readCommand(command, { at, size });
            at += size;
        }
    }

    void readCommand(std::uint32_t command, Range range)
    {
        auto const field = [&](std::uint64_t offset) {
            if (offset + 4 > range.size)
                m_bytes.fail("the load command at " + hexadecimal(range.offset) + " is too short");
            return m_bytes.at<std::uint32_t>(range.offset + offset);
        };
        auto const text = [&] { return m_bytes.textAt(range.offset + field(8), range.end()); };
        auto const table = [&](std::uint64_t offset) { return Range { field(offset), field(offset + 4) }; };
        switch (command) {
        case kSegment64: return readSegment(range);
        case kIdDylib: m_image.installName = text(); return;
        case kLoadDylib:
        case kLoadWeakDylib:
        case kReexportDylib: m_image.libraries.push_back(text()); return;
        case kRpath: m_image.searchPaths.push_back(text()); return;
        case kBuildVersion: {
            std::uint32_t const version = field(12);
            m_image.oldestSystem = std::to_string(version >> 16) + "." + std::to_string(version >> 8 & 0xff);
            return;
        }
        case kDyldInfoOnly:
            if (m_programs || m_chained)
                return m_bytes.fail("there are two tables of fixups");
            m_programs = { table(8), table(16), table(24), table(32) };
            return;
        case kDyldChainedFixups:
            if (m_programs || m_chained)
                return m_bytes.fail("there are two tables of fixups");
            m_chained = table(8);
            return;
        case kEncryptionInfo64:
            if (field(16) != 0)
                m_bytes.fail("the code is encrypted");
            return;
        case kExportsTrie: return;
        default:
            if (command & kMustUnderstand)
                m_bytes.fail("unknown load command " + hexadecimal(command));
        }
    }

    void readSegment(Range range)
    {
        if (range.size < kSegmentCommandSize)
            return m_bytes.fail("a segment's load command is too short");
        std::uint64_t const at = range.offset;
        MachOSegment segment;
        segment.name = fixedText(at + 8);
        auto const address = m_bytes.at<std::uint64_t>(at + 24);
        segment.size = m_bytes.at<std::uint64_t>(at + 32);
        segment.fileOffset = m_bytes.at<std::uint64_t>(at + 40);
        segment.fileSize = m_bytes.at<std::uint64_t>(at + 48);
        auto const protection = m_bytes.at<std::uint32_t>(at + 60);
        auto const sections = m_bytes.at<std::uint32_t>(at + 64);
        segment.isReadable = protection & 1;
        segment.isWritable = protection & 2;
        segment.isExecutable = protection & 4;
        if (m_image.segments.empty())
            m_base = address;
        if (address < m_base || address % kPageSize || segment.size > kMaximumImageSize
            || address - m_base > kMaximumImageSize)
            return m_bytes.fail("segment " + segment.name + " cannot lie at " + hexadecimal(address));
        if (segment.fileSize > segment.size)
            return m_bytes.fail("segment " + segment.name + " has more bytes in the file than in memory");
        if (!m_bytes.holds(segment.fileOffset, segment.fileSize, "a segment"))
            return;
        segment.place = address - m_base;
        if (sections > (range.size - kSegmentCommandSize) / kSectionSize)
            return m_bytes.fail(
                "segment " + segment.name + " claims to have " + std::to_string(sections) + " sections");
        for (std::uint64_t i = 0; i < sections && m_bytes.isGood(); ++i)
            readSectionHeader(at + kSegmentCommandSize + i * kSectionSize, segment);
        m_image.segments.push_back(std::move(segment));
    }

    void readSectionHeader(std::uint64_t at, MachOSegment const& segment)
    {
        Section section;
        section.name = fixedText(at);
        auto const address = m_bytes.at<std::uint64_t>(at + 32);
        section.size = m_bytes.at<std::uint64_t>(at + 40);
        section.kind = m_bytes.at<std::uint32_t>(at + 64) & 0xff;
        section.place = address - m_base;
        if (section.place < segment.place || section.place - segment.place > segment.size
            || section.size > segment.size - (section.place - segment.place))
            return m_bytes.fail("section " + section.name + " lies outside of " + segment.name);
        if (section.kind >= kThreadLocalFirst && section.kind <= kThreadLocalLast)
            return m_bytes.fail("thread-local variables are not supported");
        bool const isEmptyInFile = section.kind == kZeroFill || section.kind == kBigZeroFill;
        section.fileOffset = segment.fileOffset + (section.place - segment.place);
        if (!isEmptyInFile && section.place - segment.place + section.size > segment.fileSize)
            return m_bytes.fail("section " + section.name + " is not in the file");
        m_sections.push_back(std::move(section));
    }

    // Sorts by place, and refuses what cannot be mapped.
    void checkSegments()
    {
        auto& segments = m_image.segments;
        if (!m_bytes.isGood())
            return;
        if (segments.empty())
            return m_bytes.fail("there are no segments");
        // Fixups name segments by index, so the order of the file has to be that of the places.
        for (std::size_t i = 0; i < segments.size(); ++i) {
            if (i > 0 && segments[i].place < segments[i - 1].place + segments[i - 1].size)
                return m_bytes.fail(
                    "segments " + segments[i - 1].name + " and " + segments[i].name + " overlap");
            if (i > 0 && segments[i].fileSize > 0
                && segments[i].fileOffset < segments[i - 1].fileOffset + segments[i - 1].fileSize)
                return m_bytes.fail(
                    "segments " + segments[i - 1].name + " and " + segments[i].name + " overlap in the file");
            if (segments[i].isWritable && segments[i].isExecutable)
                return m_bytes.fail("segment " + segments[i].name + " is both writable and executable");
        }
        if (segments.front().fileOffset != 0 || segments.front().fileSize < kHeaderSize)
            return m_bytes.fail("the first segment does not hold the header");
        m_image.size = segments.back().place + segments.back().size;
    }

    void readSection(Section const& section)
    {
        if (section.kind == kInitialiserPointers)
            readInitialiserPointers(section);
        else if (section.kind == kInitialiserOffsets)
            readInitialiserOffsets(section);
        else if (section.name == "__unwind_info")
            readUnwindInfo(m_bytes, section, m_image);
        else if (section.name == "__eh_frame") {
            m_image.dwarfPlace = section.place;
            m_image.dwarfSize = section.size;
        }
    }

    // The pointers are fixed up like all others: the fixups tell where to.
    void readInitialiserPointers(Section const& section)
    {
        for (std::uint64_t offset = 0; offset + kPointerSize <= section.size && m_bytes.isGood();
             offset += kPointerSize) {
            std::uint64_t const place = section.place + offset;
            auto const fixup = std::find_if(m_image.fixups.begin(), m_image.fixups.end(),
                [&](MachOFixup const& each) { return each.place == place; });
            if (fixup == m_image.fixups.end() || fixup->import != MachOFixup::kNoImport)
                return m_bytes.fail("an initialiser is no pointer into the image");
            addInitialiser(fixup->value);
        }
    }
    void readInitialiserOffsets(Section const& section)
    {
        for (std::uint64_t offset = 0; offset + 4 <= section.size && m_bytes.isGood(); offset += 4)
            addInitialiser(m_bytes.at<std::uint32_t>(section.fileOffset + offset));
    }
    void addInitialiser(std::uint64_t place)
    {
        bool const isCode =
            std::any_of(m_image.segments.begin(), m_image.segments.end(), [&](MachOSegment const& segment) {
                return segment.isExecutable && place >= segment.place
                    && place - segment.place < segment.fileSize;
            });
        if (!isCode)
            return m_bytes.fail("an initialiser at " + hexadecimal(place) + " is no code");
        m_image.initialisers.push_back(place);
    }

    // Names of segments and sections: 16 bytes, with zeros only if they are shorter.
    std::string fixedText(std::uint64_t at)
    {
        std::string text;
        for (std::uint64_t i = 0; i < 16; ++i) {
            auto const byte = m_bytes.at<char>(at + i);
            if (byte == 0)
                break;
            text += byte;
        }
        return text;
    }

    MachOBytes m_bytes;
    MachOImage& m_image;
    std::uint64_t m_base = 0;   // the address that the first segment was linked for
    std::optional<FixupPrograms> m_programs;
    std::optional<Range> m_chained;
    std::vector<Section> m_sections;
};

}

void addFixup(MachOBytes& bytes, MachOImage& image, MachOFixup const& fixup)
{
    auto const segment =
        std::find_if(image.segments.begin(), image.segments.end(), [&](MachOSegment const& each) {
            return fixup.place >= each.place && fixup.place - each.place < each.size;
        });
    if (segment == image.segments.end() || segment->size - (fixup.place - segment->place) < kPointerSize)
        return bytes.fail("a fixup at " + hexadecimal(fixup.place) + " lies outside of the image");
    if (!segment->isWritable)
        return bytes.fail("a fixup lies in " + segment->name + ", which cannot be written");
    // Programs may say "the same again" a billion times in six bytes.
    if (image.fixups.size() >= std::min(kMaximumFixups, image.size / kPointerSize * 2))
        return bytes.fail("there are more fixups than pointers");
    image.fixups.push_back(fixup);
}

std::string libraryOf(MachOImage const& image, std::int64_t ordinal)
{
    if (ordinal < 1 || ordinal > static_cast<std::int64_t>(image.libraries.size()))
        return {};
    return image.libraries[static_cast<std::size_t>(ordinal - 1)];
}

}

Result<MachOImage> parseMachO(std::span<std::uint8_t const> file, MachOArchitecture architecture)
{
    MachOBytes bytes(file);
    auto const slice = macho::findSlice(bytes, architecture);
    if (!slice)
        return Error { bytes.problem() };
    MachOImage image;
    image.architecture = architecture;
    image.sliceOffset = slice->offset;
    image.sliceSize = slice->size;
    macho::Parser parser(file.subspan(slice->offset, slice->size), image);
    if (std::string const problem = parser.run(architecture); !problem.empty())
        return Error { problem };
    return image;
}

bool isMachO(std::span<std::uint8_t const> file)
{
    MachOBytes bytes(file);
    return bytes.bigEndianAt(0) == macho::kFatMagic || bytes.at<std::uint32_t>(0) == macho::kMagic;
}

}
