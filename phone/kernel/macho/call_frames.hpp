// How to unwind a library's frames, in the form that the process's own unwinder reads (DWARF's .eh_frame): so that an exception
// raised by Foundation below a frame of the library reaches a handler above it. Any thread.
#pragma once

#include "phone/kernel/macho/mach_o_image.hpp"

namespace phone {

// The table for an image that is mapped at `base`; `memory` is what is there. Frames that never call anything, and those whose
// description is not understood, are left out: an exception ends there, as at any frame without description. Ends with the
// zero that __register_frame looks for, and has to live as long as it is registered.
Bytes dwarfCallFrames(MachOImage const&, std::span<std::uint8_t const> memory, std::uint64_t base);

}
