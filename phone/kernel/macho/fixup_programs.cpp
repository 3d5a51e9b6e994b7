// LC_DYLD_INFO_ONLY's programs, as dyld of iOS 12 reads them: rebases, binds, weak binds, lazy binds.
#include "phone/kernel/macho/mach_o_parts.hpp"

namespace phone::macho {
namespace {

// Where a program stands in the image. Segments are named by index.
class Cursor {
public:
    Cursor(MachOBytes& bytes, MachOImage& image)
        : m_bytes(bytes)
        , m_image(image)
    {
    }

    void enter(unsigned segment, std::uint64_t offset)
    {
        if (segment >= m_image.segments.size())
            return m_bytes.fail("a fixup names segment " + std::to_string(segment) + ", which is not there");
        m_segment = &m_image.segments[segment];
        m_offset = offset;
    }
    // Offsets wrap around: a distance back is a large one forward.
    void advance(std::uint64_t distance) { m_offset += distance; }

    void write(MachOFixup fixup)
    {
        if (!m_segment)
            return m_bytes.fail("a fixup comes before its segment");
        if (m_offset > m_segment->size || m_segment->size - m_offset < kPointerSize)
            return m_bytes.fail(
                "a fixup at " + hexadecimal(m_offset) + " lies outside of " + m_segment->name);
        fixup.place = m_segment->place + m_offset;
        addFixup(m_bytes, m_image, fixup);
    }
    // The pointer that the file has at this place.
    std::uint64_t pointer()
    {
        if (!m_segment || m_offset > m_segment->fileSize || m_segment->fileSize - m_offset < kPointerSize) {
            m_bytes.fail("a pointer at " + hexadecimal(m_offset) + " is not in the file");
            return 0;
        }
        return m_bytes.at<std::uint64_t>(m_segment->fileOffset + m_offset);
    }

private:
    MachOBytes& m_bytes;
    MachOImage& m_image;
    MachOSegment const* m_segment = nullptr;
    std::uint64_t m_offset = 0;
};

enum : std::uint8_t {
    kRebaseDone = 0x00,
    kRebaseSetType = 0x10,
    kRebaseSetSegment = 0x20,
    kRebaseAdvance = 0x30,
    kRebaseAdvanceScaled = 0x40,
    kRebaseTimes = 0x50,
    kRebaseTimesNumber = 0x60,
    kRebaseAdvancing = 0x70,
    kRebaseTimesSkipping = 0x80,

    kBindDone = 0x00,
    kBindSetOrdinal = 0x10,
    kBindSetOrdinalNumber = 0x20,
    kBindSetSpecial = 0x30,
    kBindSetSymbol = 0x40,
    kBindSetType = 0x50,
    kBindSetAddend = 0x60,
    kBindSetSegment = 0x70,
    kBindAdvance = 0x80,
    kBind = 0x90,
    kBindAdvancing = 0xa0,
    kBindAdvancingScaled = 0xb0,
    kBindTimesSkipping = 0xc0,
};
constexpr std::uint8_t kOperation = 0xf0;
constexpr std::uint8_t kImmediate = 0x0f;
constexpr std::uint8_t kPointerType = 1;
constexpr std::uint8_t kWeakImport = 1;

void readRebases(MachOBytes& bytes, Range program, std::uint64_t base, MachOImage& image)
{
    Cursor cursor(bytes, image);
    auto const rebase = [&](std::uint64_t times, std::uint64_t step) {
        for (; times > 0 && bytes.isGood(); --times) {
            std::uint64_t const pointer = cursor.pointer();
            if (pointer < base || pointer - base >= image.size)
                return bytes.fail("a pointer to " + hexadecimal(pointer) + " leaves the image");
            cursor.write({ .value = pointer - base });
            cursor.advance(step);
        }
    };
    std::uint64_t at = program.offset;
    auto const number = [&] { return bytes.unsignedNumber(at, program.end()); };
    while (at < program.end() && bytes.isGood()) {
        auto const byte = bytes.at<std::uint8_t>(at++);
        unsigned const immediate = byte & kImmediate;
        switch (byte & kOperation) {
        case kRebaseDone: return;
        case kRebaseSetType:
            if (immediate != kPointerType)
                bytes.fail("a rebase is not of a pointer");
            break;
        case kRebaseSetSegment: cursor.enter(immediate, number()); break;
        case kRebaseAdvance: cursor.advance(number()); break;
        case kRebaseAdvanceScaled: cursor.advance(immediate * kPointerSize); break;
        case kRebaseTimes: rebase(immediate, kPointerSize); break;
        case kRebaseTimesNumber: rebase(number(), kPointerSize); break;
        case kRebaseAdvancing: rebase(1, kPointerSize + number()); break;
        case kRebaseTimesSkipping: {
            std::uint64_t const times = number();
            rebase(times, kPointerSize + number());
            break;
        }
        default: bytes.fail("unknown rebase operation " + hexadecimal(byte));
        }
    }
}

enum class Binding { now, byAnyDefinition, late };

void readBinds(MachOBytes& bytes, Range program, Binding binding, MachOImage& image)
{
    Cursor cursor(bytes, image);
    MachOImport import;
    std::uint32_t index = MachOFixup::kNoImport;   // of `import`, once something is bound to it
    std::int64_t addend = 0;
    auto const bind = [&](std::uint64_t times, std::uint64_t step) {
        if (import.name.empty())
            return bytes.fail("a bind comes before its symbol");
        for (; times > 0 && bytes.isGood(); --times) {
            if (index == MachOFixup::kNoImport) {
                index = static_cast<std::uint32_t>(image.imports.size());
                image.imports.push_back(import);
            }
            cursor.write({ .import = index, .value = static_cast<std::uint64_t>(addend) });
            cursor.advance(step);
        }
    };
    auto const setLibrary = [&](std::int64_t ordinal) {
        if (ordinal > static_cast<std::int64_t>(image.libraries.size()))
            return bytes.fail("a bind names library " + std::to_string(ordinal) + ", which is not there");
        import.library = binding == Binding::byAnyDefinition ? std::string() : libraryOf(image, ordinal);
        index = MachOFixup::kNoImport;
    };
    std::uint64_t at = program.offset;
    auto const number = [&] { return bytes.unsignedNumber(at, program.end()); };
    while (at < program.end() && bytes.isGood()) {
        auto const byte = bytes.at<std::uint8_t>(at++);
        unsigned const immediate = byte & kImmediate;
        switch (byte & kOperation) {
        case kBindDone:
            // Ends the program, but of lazy binds one symbol's part only.
            if (binding != Binding::late)
                return;
            break;
        case kBindSetOrdinal: setLibrary(immediate); break;
        case kBindSetOrdinalNumber: setLibrary(static_cast<std::int64_t>(number() & 0x7fffffff)); break;
        case kBindSetSpecial: setLibrary(0); break;
        case kBindSetSymbol:
            import.name = bytes.textAt(at, program.end());
            import.isWeak = immediate & kWeakImport;
            index = MachOFixup::kNoImport;
            at += import.name.size() + 1;
            break;
        case kBindSetType:
            if (immediate != kPointerType)
                bytes.fail("a bind is not of a pointer");
            break;
        case kBindSetAddend: addend = bytes.signedNumber(at, program.end()); break;
        case kBindSetSegment: cursor.enter(immediate, number()); break;
        case kBindAdvance: cursor.advance(number()); break;
        case kBind: bind(1, kPointerSize); break;
        case kBindAdvancing: bind(1, kPointerSize + number()); break;
        case kBindAdvancingScaled: bind(1, kPointerSize + immediate * kPointerSize); break;
        case kBindTimesSkipping: {
            std::uint64_t const times = number();
            bind(times, kPointerSize + number());
            break;
        }
        default: bytes.fail("unknown bind operation " + hexadecimal(byte));
        }
    }
}

}

void readFixupPrograms(
    MachOBytes& bytes, FixupPrograms const& programs, std::uint64_t base, MachOImage& image)
{
    for (Range const& range : { programs.rebases, programs.binds, programs.weakBinds, programs.lazyBinds })
        bytes.holds(range.offset, range.size, "a fixup program");
    if (!bytes.isGood())
        return;
    readRebases(bytes, programs.rebases, base, image);
    readBinds(bytes, programs.binds, Binding::now, image);
    readBinds(bytes, programs.weakBinds, Binding::byAnyDefinition, image);
    readBinds(bytes, programs.lazyBinds, Binding::late, image);
}

}
