#include "phone/kernel/macho/mach_o_library.hpp"

#include "phone/kernel/macho/call_frames.hpp"

#include <sys/mman.h>

#include <cerrno>
#include <cstring>

// The unwinder's (libgcc): a table in .eh_frame's form, which is read in place until it is taken back.
extern "C" void __register_frame(void* table);
extern "C" void __deregister_frame(void* table);

namespace phone {
namespace {

constexpr std::uint64_t kPageSize = 0x4000;   // a phone's; a multiple of the host's

// dyld hands these to initialisers; ours take none of them.
using Initialiser = void (*)(int count, char** arguments, char** environment, char** extra, void* variables);

}

MachOLibrary::MachOLibrary(MachOImage image, std::uint8_t* base, std::uint64_t size)
    : m_image(std::move(image))
    , m_base(base)
    , m_size(size)
{
}

MachOLibrary::~MachOLibrary()
{
    if (m_areFramesRegistered)
        __deregister_frame(m_frames.data());
    munmap(m_base, m_size);
}

Result<std::unique_ptr<MachOLibrary>> MachOLibrary::map(
    std::span<std::uint8_t const> file, MachOImage image, MachOResolver const& resolver)
{
    std::uint64_t const size = (image.size + kPageSize - 1) / kPageSize * kPageSize;
    void* const memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        return Error { std::string("no memory for the library: ") + std::strerror(errno) };
    std::unique_ptr<MachOLibrary> library(
        new MachOLibrary(std::move(image), static_cast<std::uint8_t*>(memory), size));
    auto const slice = file.subspan(library->m_image.sliceOffset, library->m_image.sliceSize);
    for (MachOSegment const& segment : library->m_image.segments) {
        if (segment.fileSize > 0)
            std::memcpy(library->m_base + segment.place, slice.data() + segment.fileOffset, segment.fileSize);
    }
    if (std::string const problem = library->writeFixups(resolver); !problem.empty())
        return Error { problem };
    // Before the segments are protected: the compiler's own descriptions may lie where nobody reads later.
    library->m_frames = dwarfCallFrames(library->m_image, { library->m_base, library->m_image.size },
        reinterpret_cast<std::uintptr_t>(library->m_base));
    if (!library->protect())
        return Error { std::string("the library's segments cannot be protected: ") + std::strerror(errno) };
    if (!library->m_image.frames.empty()) {
        __register_frame(library->m_frames.data());
        library->m_areFramesRegistered = true;
    }
    return library;
}

std::string MachOLibrary::writeFixups(MachOResolver const& resolver)
{
    std::string missing;
    std::vector<std::uint64_t> addresses;
    for (MachOImport const& import : m_image.imports) {
        void* const address = resolver(import);
        if (!address && !import.isWeak)
            missing += (missing.empty() ? "" : ", ") + import.name;
        addresses.push_back(reinterpret_cast<std::uintptr_t>(address));
    }
    if (!missing.empty())
        return "nobody has what the library imports: " + missing;
    for (MachOFixup const& fixup : m_image.fixups) {
        std::uint64_t pointer = 0;
        if (fixup.import == MachOFixup::kNoImport)
            pointer = (reinterpret_cast<std::uintptr_t>(m_base) + fixup.value)
                | std::uint64_t { fixup.topByte } << 56;
        else if (addresses[fixup.import] != 0)
            pointer = addresses[fixup.import] + fixup.value;
        std::memcpy(m_base + fixup.place, &pointer, sizeof pointer);
    }
    return {};
}

bool MachOLibrary::protect()
{
    for (MachOSegment const& segment : m_image.segments) {
        int const protection = (segment.isReadable ? PROT_READ : 0) | (segment.isWritable ? PROT_WRITE : 0)
            | (segment.isExecutable ? PROT_EXEC : 0);
        if (segment.size > 0 && mprotect(m_base + segment.place, segment.size, protection) != 0)
            return false;
    }
    auto* const code = reinterpret_cast<char*>(m_base);
    __builtin___clear_cache(code, code + m_image.size);
    return true;
}

bool MachOLibrary::holds(void const* address) const
{
    auto const* const byte = static_cast<std::uint8_t const*>(address);
    return byte >= m_base && byte < m_base + m_image.size;
}

Status MachOLibrary::runInitialisers()
{
#if defined(__aarch64__)
    char* none[] = { nullptr };
    for (std::uint64_t const place : m_image.initialisers)
        reinterpret_cast<Initialiser>(m_base + place)(0, none, none, none, nullptr);
    return {};
#else
    return Error { "this processor cannot run the library's code, which is for arm64" };
#endif
}

}
