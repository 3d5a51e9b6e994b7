// A Mach-O library in this process: what dyld does on a phone. Main thread.
#pragma once

#include "phone/kernel/macho/mach_o_image.hpp"

#include <functional>
#include <memory>

namespace phone {

// The address of a symbol, by the name that C sees (with the underscore) and the library that it is wanted from; nil where
// nobody has it.
using MachOResolver = std::function<void*(MachOImport const&)>;

class MachOLibrary {
public:
    // Maps the image, writes its fixups, protects its segments and registers its frames. `file` is what it was parsed from. An
    // import that nobody has is an error that names all such; nothing stays mapped then. No code of the library runs.
    static Result<std::unique_ptr<MachOLibrary>> map(
        std::span<std::uint8_t const> file, MachOImage, MachOResolver const&);

    // For tests: a library stays for good, as on a phone, while anything of it may be called.
    ~MachOLibrary();
    MachOLibrary(MachOLibrary const&) = delete;
    MachOLibrary& operator=(MachOLibrary const&) = delete;

    MachOImage const& image() const { return m_image; }
    std::uint8_t* base() const { return m_base; }
    bool holds(void const* address) const;

    // Runs the initialisers in order. An error where the processor cannot run the code.
    Status runInitialisers();

private:
    MachOLibrary(MachOImage, std::uint8_t* base, std::uint64_t size);
    std::string writeFixups(MachOResolver const&);   // the reason when it fails
    bool protect();

    MachOImage m_image;
    std::uint8_t* m_base = nullptr;
    std::uint64_t m_size = 0;   // mapped
    Bytes m_frames;
    bool m_areFramesRegistered = false;
};

}
