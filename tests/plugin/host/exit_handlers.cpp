#include "tests/plugin/host/exit_handlers.hpp"

#include <dlfcn.h>

#include <array>
#include <cstddef>

namespace {

// Filled before this program's own initialisers run, so plain memory.
constinit std::array<phone::ExitHandler, 64> g_handlers {};
constinit std::size_t g_count = 0;

}

std::span<phone::ExitHandler const> phone::exitHandlers() { return { g_handlers.data(), g_count }; }

// The C library's function behind std::atexit, where the handler has no argument, and behind the destructors of what is static,
// where it has one. Our definition comes before the library's in the order of symbol look-up, for plug-ins too.
extern "C" __attribute__((visibility("default"))) int __cxa_atexit(
    void (*function)(void*), void* argument, void* library) noexcept
{
    using Function = int(void (*)(void*), void*, void*);
    static constinit Function* next = nullptr;
    if (!next)
        next = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, "__cxa_atexit"));
    if (!argument && g_count < g_handlers.size())
        g_handlers[g_count++] = function;
    return next(function, argument, library);
}
