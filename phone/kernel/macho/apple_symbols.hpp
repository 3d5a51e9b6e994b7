// What the iPhone's library imports, as a process on Linux has it: the few functions of Apple's runtime that differ from the GNU
// runtime's, and everything else under its own name, from the phone's executable and the libraries. Only on arm64; main thread.
#pragma once

#include "phone/kernel/macho/mach_o_library.hpp"

#include <filesystem>

namespace phone {

// Nil where nobody has it.
void* appleSymbol(MachOImport const&);

// Reads, maps and starts the library's slice. It stays for good. Errors name the file; nothing has run then. The arm64e slice
// wants a phone that authenticates (beginAuthenticating), the arm64 slice one that does not.
Result<MachOLibrary*> loadAppleLibrary(std::filesystem::path const&, MachOArchitecture);

// Is the address inside a library that loadAppleLibrary has loaded or is loading?
bool isAppleLibraryAddress(void const*);

}
