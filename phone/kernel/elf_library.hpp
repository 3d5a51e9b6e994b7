// What an ELF shared library asks for: the libraries it needs and the symbols it imports. Reads the file,
// loads nothing. Any thread.
#pragma once

#include "phone/kernel/result.hpp"

#include <filesystem>
#include <string>
#include <vector>

namespace phone {

struct ElfLibrary {
    std::vector<std::string> needed;    // DT_NEEDED, in the file's order
    std::vector<std::string> imports;   // undefined dynamic symbols, sorted, each once, without version
};

// A 64-bit little-endian ELF file. Anything else, or a damaged one: an error naming the path.
Result<ElfLibrary> readElfLibrary(std::filesystem::path const&);

}
