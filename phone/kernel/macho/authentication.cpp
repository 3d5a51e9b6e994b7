#include "phone/kernel/macho/authentication.hpp"

#include <cstdio>
#include <cstdlib>

namespace phone {
namespace {

bool g_isAuthenticating = false;

constexpr std::uint64_t kAddressBits = 48;

// The instructions by their encoding, since the compiler's target need not have them: operand in x16, modifier in x17.
std::uint64_t pacia(std::uint64_t pointer, std::uint64_t modifier)
{
    register std::uint64_t x16 asm("x16") = pointer;
    register std::uint64_t x17 asm("x17") = modifier;
    asm volatile(".inst 0xdac10230" : "+r"(x16) : "r"(x17));
    return x16;
}
std::uint64_t pacda(std::uint64_t pointer, std::uint64_t modifier)
{
    register std::uint64_t x16 asm("x16") = pointer;
    register std::uint64_t x17 asm("x17") = modifier;
    asm volatile(".inst 0xdac10a30" : "+r"(x16) : "r"(x17));
    return x16;
}
std::uint64_t autia(std::uint64_t pointer, std::uint64_t modifier)
{
    register std::uint64_t x16 asm("x16") = pointer;
    register std::uint64_t x17 asm("x17") = modifier;
    asm volatile(".inst 0xdac11230" : "+r"(x16) : "r"(x17));
    return x16;
}

std::uint64_t bits(void const* pointer) { return reinterpret_cast<std::uintptr_t>(pointer); }
void* pointer(std::uint64_t bits) { return reinterpret_cast<void*>(bits); }

}

void beginAuthenticating() { g_isAuthenticating = true; }
bool isAuthenticating() { return g_isAuthenticating; }

void* signedCode(void* code, std::uint64_t discriminator)
{
    return g_isAuthenticating && code ? pointer(pacia(bits(code), discriminator)) : code;
}

void* authenticatedCode(void* code, std::uint64_t discriminator, char const* what)
{
    if (!g_isAuthenticating || !code)
        return code;
    // A wrong signature leaves an address that cannot be one. qemu keeps 7 bits of a signature: one wrong pointer in 128 passes.
    std::uint64_t const address = autia(bits(code), discriminator);
    if (address >> kAddressBits != 0) {
        std::fprintf(stderr, "corvel-phone: wrong signature on %s %p\n", what, code);
        std::abort();
    }
    return pointer(address);
}

void* signedIsa(void* isa, void const* field)
{
    constexpr std::uint64_t kIsaDiscriminator = 0x6ae1;
    std::uint64_t const place = bits(field) & ((std::uint64_t { 1 } << kAddressBits) - 1);
    return g_isAuthenticating ? pointer(pacda(bits(isa), place | kIsaDiscriminator << kAddressBits)) : isa;
}

}

void* corvel_host_sign_code(void* code, void const* field)
{
    return phone::signedCode(code, reinterpret_cast<std::uintptr_t>(field));
}
void* corvel_host_authenticate_code(void* code, void const* field)
{
    return phone::authenticatedCode(code, reinterpret_cast<std::uintptr_t>(field), "a block's function");
}
void* corvel_host_sign_isa(void* isa, void const* field) { return phone::signedIsa(isa, field); }
