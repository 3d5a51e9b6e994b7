// What a slice of a Mach-O library says of itself: where its segments go, what has to be written into them once their place is
// known, what it takes from others, what runs at the start, how its frames are unwound. Reads bytes, touches no memory of the
// process, and runs on any host: mach_o_library.hpp does the rest. Any thread.
//
// Formats: Apple's <mach-o/loader.h>, <mach-o/fixup-chains.h>, <mach-o/compact_unwind_encoding.h>, and dyld, which reads them.
#pragma once

#include "phone/kernel/result.hpp"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace phone {

enum class MachOArchitecture { arm64, arm64e };

// Offsets and sizes in bytes. Places in the image count from its first segment, which holds the header.
struct MachOSegment {
    std::string name;
    std::uint64_t place = 0;
    std::uint64_t size = 0;
    std::uint64_t fileOffset = 0;   // in the slice
    std::uint64_t fileSize = 0;     // at most `size`; the rest is zeros
    bool isReadable = false;
    bool isWritable = false;
    bool isExecutable = false;
};

struct MachOImport {
    std::string name;      // as C sees it, with the underscore in front
    std::string library;   // its install name; empty: any
    bool isWeak = false;   // stays nil where nobody has it
};

// A pointer of 64 bits to be written at a place. First all that point into the image, then all that are bound.
struct MachOFixup {
    static constexpr std::uint32_t kNoImport = 0xffffffff;

    std::uint64_t place = 0;
    std::uint32_t import = kNoImport;   // an index; or none, and the pointer is to a place of the image
    std::uint64_t value = 0;            // that place; or what is added to the import's address
    std::uint8_t topByte = 0;
};

// How the frame of the code in [start, end) is undone: compact unwind's encoding.
struct MachOFrame {
    std::uint32_t start = 0;
    std::uint32_t end = 0;
    std::uint32_t encoding = 0;
};

struct MachOImage {
    MachOArchitecture architecture = MachOArchitecture::arm64;
    std::string installName;
    std::string oldestSystem;               // "12.0"; empty when the file does not say
    std::vector<std::string> libraries;     // what it loads, in order
    std::vector<std::string> searchPaths;   // for @rpath
    std::vector<MachOSegment> segments;     // in the order of their places, which do not overlap
    std::vector<MachOImport> imports;
    std::vector<MachOFixup> fixups;
    std::vector<std::uint64_t> initialisers;   // places of functions, in order
    std::vector<MachOFrame> frames;            // in the order of their code
    std::uint64_t size = 0;                    // of the whole image
    std::uint64_t sliceOffset = 0;             // of the slice in the file
    std::uint64_t sliceSize = 0;
    std::uint64_t dwarfPlace = 0;   // of __eh_frame, for frames whose encoding points there
    std::uint64_t dwarfSize = 0;
};

// The slice for the architecture in a file that is fat or has that slice only. Whatever is damaged, or of a kind that the
// phone's loader does not know, is refused with a reason of one line. Nothing here is longer than the file warrants.
Result<MachOImage> parseMachO(std::span<std::uint8_t const> file, MachOArchitecture);

// Is it a Mach-O file at all, of one or more slices?
bool isMachO(std::span<std::uint8_t const> file);

}
