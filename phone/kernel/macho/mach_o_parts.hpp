// The parts of parseMachO: each reads one kind of table of a slice into the image, and fails the bytes where it is wrong.
// For the files of this folder.
#pragma once

#include "phone/kernel/macho/mach_o_bytes.hpp"
#include "phone/kernel/macho/mach_o_image.hpp"

namespace phone::macho {

inline constexpr std::uint64_t kPointerSize = 8;

// A table in the slice.
struct Range {
    std::uint64_t offset = 0;
    std::uint64_t size = 0;

    std::uint64_t end() const { return offset + size; }
};

// The tables of LC_DYLD_INFO_ONLY: programs of one-byte operations.
struct FixupPrograms {
    Range rebases, binds, weakBinds, lazyBinds;
};
// `base`: the address that the image was linked for; pointers in the file count from it.
void readFixupPrograms(MachOBytes&, FixupPrograms const&, std::uint64_t base, MachOImage&);

// The table of LC_DYLD_CHAINED_FIXUPS: each pointer says where the next one is.
void readChainedFixups(MachOBytes&, Range, std::uint64_t base, MachOImage&);

// A section's content by place.
struct Section {
    std::string name;
    std::uint64_t place = 0;
    std::uint64_t size = 0;
    std::uint64_t fileOffset = 0;
    std::uint32_t kind = 0;
};
void readUnwindInfo(MachOBytes&, Section const&, MachOImage&);

// Adds a fixup, if its place is in a segment that can be written and no file this large has too many.
void addFixup(MachOBytes&, MachOImage&, MachOFixup const&);

// The library of an ordinal: 1 is the first; others (this image, the main program, any) are empty.
std::string libraryOf(MachOImage const&, std::int64_t ordinal);

}
