#include "phone/kernel/macho/call_frames.hpp"

#include "phone/kernel/macho/mach_o_bytes.hpp"

#include <initializer_list>
#include <optional>

namespace phone {
namespace {

// Compact unwind of arm64: <mach-o/compact_unwind_encoding.h>.
enum : std::uint32_t { kModeFrameless = 2, kModeDwarf = 3, kModeFrame = 4 };
constexpr unsigned kIntegerPairs = 5;   // x19/x20 ... x27/x28, bits 0-4
constexpr unsigned kFloatPairs = 4;     // d8/d9 ... d14/d15, bits 8-11

// DWARF's numbers of arm64's registers, and its operations.
enum : std::uint8_t {
    kFirstSavedInteger = 19,
    kFramePointer = 29,
    kLinkRegister = 30,
    kStackPointer = 31,
    kFirstSavedFloat = 72,

    kDefineFrame = 0x0c,
    kOffset = 0x80,           // and the register
    kOffsetExtended = 0x05,   // and the register as a number of its own
    kAbsolutePointer = 0x00,
    kRelativePointer = 0x10,
};
constexpr int kSlot = 8;   // bytes

class Writer {
public:
    Bytes take() &&
    {
        put<std::uint32_t>(0);
        return std::move(m_bytes);
    }

    // Common information: code in units of 1, slots downwards in units of 8, absolute pointers. Returns where it starts.
    std::size_t writeCommon(
        std::span<std::uint8_t const> instructions, std::uint8_t returnRegister = kLinkRegister)
    {
        std::size_t const start = open();
        put<std::uint32_t>(0);
        bytes({ 1, 'z', 'R', 0, 1, 0x80 - kSlot, returnRegister, 1, kAbsolutePointer });
        m_bytes.insert(m_bytes.end(), instructions.begin(), instructions.end());
        close(start);
        return start;
    }

    void writeFrame(std::size_t common, std::uint64_t start, std::uint64_t length,
        std::span<std::uint8_t const> instructions)
    {
        std::size_t const at = open();
        put<std::uint32_t>(static_cast<std::uint32_t>(m_bytes.size() - common));
        put(start);
        put(length);
        bytes({ 0 });
        m_bytes.insert(m_bytes.end(), instructions.begin(), instructions.end());
        close(at);
    }

private:
    std::size_t open()
    {
        std::size_t const start = m_bytes.size();
        put<std::uint32_t>(0);
        return start;
    }
    // Padding is DW_CFA_nop.
    void close(std::size_t start)
    {
        while ((m_bytes.size() - start) % 8 != 0)
            m_bytes.push_back(0);
        auto const length = static_cast<std::uint32_t>(m_bytes.size() - start - 4);
        std::memcpy(m_bytes.data() + start, &length, sizeof length);
    }
    template <class T>
    void put(T value)
    {
        m_bytes.resize(m_bytes.size() + sizeof value);
        std::memcpy(m_bytes.data() + m_bytes.size() - sizeof value, &value, sizeof value);
    }
    void bytes(std::initializer_list<std::uint8_t> list) { m_bytes.insert(m_bytes.end(), list); }

    Bytes m_bytes;
};

void appendNumber(Bytes& bytes, std::uint32_t value)
{
    do {
        auto const low = static_cast<std::uint8_t>(value & 0x7f);
        value >>= 7;
        bytes.push_back(static_cast<std::uint8_t>(low | (value ? 0x80 : 0)));
    } while (value);
}

// A frame pointer's frame: x29 and x30 on top, the saved pairs below. A frameless one: the stack pointer and a distance.
Bytes instructionsOf(std::uint32_t encoding, std::uint32_t mode)
{
    Bytes bytes { kDefineFrame };
    std::uint32_t slot = 1;   // below the caller's stack pointer
    if (mode == kModeFrame) {
        bytes.insert(bytes.end(), { kFramePointer, 2 * kSlot });
        bytes.insert(bytes.end(), { kOffset | kFramePointer, 2, kOffset | kLinkRegister, 1 });
        slot = 3;
    } else {
        bytes.push_back(kStackPointer);
        appendNumber(bytes, (encoding >> 12 & 0xfff) * 16);
    }
    for (unsigned pair = 0; pair < kIntegerPairs; ++pair) {
        for (unsigned half = 0; half < 2 && encoding >> pair & 1; ++half) {
            bytes.push_back(static_cast<std::uint8_t>(kOffset | (kFirstSavedInteger + 2 * pair + half)));
            appendNumber(bytes, slot++);
        }
    }
    for (unsigned pair = 0; pair < kFloatPairs; ++pair) {
        for (unsigned half = 0; half < 2 && encoding >> (8 + pair) & 1; ++half) {
            bytes.push_back(kOffsetExtended);
            appendNumber(bytes, kFirstSavedFloat + 2 * pair + half);
            appendNumber(bytes, slot++);
        }
    }
    return bytes;
}

struct DwarfFrame {
    Bytes common, own;   // instructions
};

// The compiler's own description, at an offset of __eh_frame: of the plain kind that it writes for code without handlers.
std::optional<DwarfFrame> readDwarf(std::span<std::uint8_t const> section, std::uint64_t offset)
{
    MachOBytes bytes(section);
    auto const slice = [&](std::uint64_t from, std::uint64_t to) {
        return from <= to && to <= section.size() ? Bytes(section.begin() + static_cast<std::ptrdiff_t>(from),
                   section.begin() + static_cast<std::ptrdiff_t>(to))
                                                  : Bytes {};
    };
    std::uint64_t const end = offset + 4 + bytes.at<std::uint32_t>(offset);
    auto const distance = bytes.at<std::uint32_t>(offset + 4);
    if (!bytes.isGood() || distance == 0 || distance > offset + 4 || end > section.size())
        return {};
    std::uint64_t const common = offset + 4 - distance;
    std::uint64_t const commonEnd = common + 4 + bytes.at<std::uint32_t>(common);
    std::uint64_t at = common + 8;
    auto const version = bytes.at<std::uint8_t>(at++);
    std::string const augmentation = bytes.textAt(at, commonEnd);
    at += augmentation.size() + 1;
    std::uint64_t const codeUnit = bytes.unsignedNumber(at, commonEnd);
    std::int64_t const dataUnit = bytes.signedNumber(at, commonEnd);
    std::uint64_t const returnRegister = bytes.unsignedNumber(at, commonEnd);
    std::uint64_t const augmentationSize = bytes.unsignedNumber(at, commonEnd);
    auto const pointers = bytes.at<std::uint8_t>(at);
    if (!bytes.isGood() || version != 1 || augmentation != "zR" || codeUnit != 1 || dataUnit != -kSlot
        || returnRegister != kLinkRegister || augmentationSize != 1 || pointers != kRelativePointer)
        return {};
    ++at;
    // After the two pointers of 8 bytes: the size of the augmentation, which "zR" leaves empty.
    std::uint64_t own = offset + 8 + 16;
    std::uint64_t const ownAugmentation = bytes.unsignedNumber(own, end);
    if (!bytes.isGood() || ownAugmentation != 0)
        return {};
    return DwarfFrame { slice(at, commonEnd), slice(own, end) };
}

}

Bytes dwarfCallFrames(MachOImage const& image, std::span<std::uint8_t const> memory, std::uint64_t base)
{
    Writer writer;
    // At a call the stack pointer is the frame's address.
    std::uint8_t const atEntry[] = { kDefineFrame, kStackPointer, 0 };
    std::size_t const common = writer.writeCommon(atEntry);
    std::span<std::uint8_t const> dwarf;
    if (image.dwarfPlace <= memory.size() && image.dwarfSize <= memory.size() - image.dwarfPlace)
        dwarf = memory.subspan(image.dwarfPlace, image.dwarfSize);
    for (MachOFrame const& frame : image.frames) {
        std::uint32_t const mode = frame.encoding >> 24 & 0xf;
        std::uint64_t const start = base + frame.start, length = frame.end - frame.start;
        if (mode == kModeFrame || mode == kModeFrameless) {
            writer.writeFrame(common, start, length, instructionsOf(frame.encoding, mode));
        } else if (mode == kModeDwarf) {
            if (auto const own = readDwarf(dwarf, frame.encoding & 0xffffff))
                writer.writeFrame(writer.writeCommon(own->common), start, length, own->own);
        }
    }
    return std::move(writer).take();
}

}
