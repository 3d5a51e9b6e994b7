// Pointer authentication as an arm64e process has it, for a phone that runs the arm64e slice: what the slice signs is
// authenticated here, and what it will authenticate is signed. While the phone has not begun to authenticate (the arm64 slice),
// every function answers what it was given. Only on arm64; main thread.
//
// Rules: Apple's <ptrauth.h> and the runtime's and the compiler's use of it. Key IA with discriminator 0 for C functions and
// method implementations; IA with the field's address for a block's functions; DA with the field's address and 0x6ae1 for its isa.
#pragma once

#include <cstdint>

namespace phone {

// Once, before the first block is made or library loaded. The processor must have the instructions (qemu: -cpu max).
void beginAuthenticating();
bool isAuthenticating();

void* signedCode(void* code, std::uint64_t discriminator);
// A pointer whose signature is wrong ends the process with a line that says what it was, as a phone's processor ends it.
void* authenticatedCode(void* code, std::uint64_t discriminator, char const* what);
void* signedIsa(void* isa, void const* field);

}

// For objc/boundary.hpp: the phone's own blocks, and those that the plug-in hands to it.
extern "C" {
void* corvel_host_sign_code(void* code, void const* field);
void* corvel_host_authenticate_code(void* code, void const* field);
void* corvel_host_sign_isa(void* isa, void const* field);
}
