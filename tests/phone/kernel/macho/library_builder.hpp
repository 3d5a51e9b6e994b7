// A small Mach-O library, made byte by byte: code, data with one pointer inwards and three outwards, one initialiser, two
// functions with unwind information. In the form of either slice of ours.
#pragma once

#include "phone/kernel/macho/mach_o_image.hpp"

#include <cstring>

namespace phone::test {

inline constexpr std::uint64_t kData = 0x4000;     // where the data segment lies, in the file too
inline constexpr std::uint64_t kTables = 0x8000;   // and the last one
inline constexpr std::uint64_t kCode = 0x1000;
inline constexpr std::uint64_t kSecondFunction = 0x1040;

struct LibraryBuilder {
    MachOArchitecture architecture =
        MachOArchitecture::arm64;   // its form of fixups and initialisers as well

    // Offsets of what tests change, known once built.
    std::uint64_t textSegment = 0, dataSegment = 0, tablesSegment = 0;   // load commands
    std::uint64_t fixups = 0;                                            // the command
    std::uint64_t rebaseProgram = 0, bindProgram = 0, chainedTable = 0;
    std::uint64_t initialiserSection = 0, unwindInfo = 0;

    Bytes build();
};

template <class T>
void put(Bytes& bytes, std::uint64_t offset, T value)
{
    if (bytes.size() < offset + sizeof value)
        bytes.resize(offset + sizeof value);
    std::memcpy(bytes.data() + offset, &value, sizeof value);
}

// A fat file of the slices, in order.
Bytes fatFile(std::initializer_list<Bytes> slices);

}
