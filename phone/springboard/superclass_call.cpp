// Superclass calls made at run time: a few instructions each, which load a record's address and jump to common
// code. That saves every argument register, asks for the superclass's present implementation and jumps there,
// so any signature passes through untouched, on the stack too.
#include "phone/springboard/substrate.hpp"

#include <array>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

namespace phone {

namespace {

struct SuperclassCall {
    Class cls;   // the class whose superclass is asked
    SEL selector;
};

}

}

// Called by the common code below with the record; answers the code to go on in.
extern "C" __attribute__((visibility("hidden"))) IMP phone_superclass_implementation(void const* record)
{
    auto const& call = *static_cast<phone::SuperclassCall const*>(record);
    return class_getMethodImplementation(class_getSuperclass(call.cls), call.selector);
}

#if defined(__x86_64__)

// r11 holds the record (a scratch register of the calling convention). Saved: the six integer argument
// registers, rax (vector count of variadic calls) and xmm0 to xmm7. 0xb8 keeps the stack on 16 bytes.
asm(R"(
    .text
    .type phone_superclass_common, @function
    .hidden phone_superclass_common
    .globl phone_superclass_common
phone_superclass_common:
    .cfi_startproc
    subq $0xb8, %rsp
    .cfi_adjust_cfa_offset 0xb8
    movq %rdi, 0x00(%rsp)
    movq %rsi, 0x08(%rsp)
    movq %rdx, 0x10(%rsp)
    movq %rcx, 0x18(%rsp)
    movq %r8, 0x20(%rsp)
    movq %r9, 0x28(%rsp)
    movq %rax, 0x30(%rsp)
    movups %xmm0, 0x38(%rsp)
    movups %xmm1, 0x48(%rsp)
    movups %xmm2, 0x58(%rsp)
    movups %xmm3, 0x68(%rsp)
    movups %xmm4, 0x78(%rsp)
    movups %xmm5, 0x88(%rsp)
    movups %xmm6, 0x98(%rsp)
    movups %xmm7, 0xa8(%rsp)
    movq %r11, %rdi
    call phone_superclass_implementation
    movq %rax, %r11
    movq 0x00(%rsp), %rdi
    movq 0x08(%rsp), %rsi
    movq 0x10(%rsp), %rdx
    movq 0x18(%rsp), %rcx
    movq 0x20(%rsp), %r8
    movq 0x28(%rsp), %r9
    movq 0x30(%rsp), %rax
    movups 0x38(%rsp), %xmm0
    movups 0x48(%rsp), %xmm1
    movups 0x58(%rsp), %xmm2
    movups 0x68(%rsp), %xmm3
    movups 0x78(%rsp), %xmm4
    movups 0x88(%rsp), %xmm5
    movups 0x98(%rsp), %xmm6
    movups 0xa8(%rsp), %xmm7
    addq $0xb8, %rsp
    .cfi_adjust_cfa_offset -0xb8
    jmpq *%r11
    .cfi_endproc
    .size phone_superclass_common, .-phone_superclass_common
)");

#elif defined(__aarch64__)

// x16 holds the record. Saved: x0 to x8 (x8: where a struct result goes), q0 to q7 and the link register.
asm(R"(
    .text
    .type phone_superclass_common, %function
    .hidden phone_superclass_common
    .globl phone_superclass_common
phone_superclass_common:
    .cfi_startproc
    stp x29, x30, [sp, #-224]!
    .cfi_adjust_cfa_offset 224
    .cfi_rel_offset x29, 0
    .cfi_rel_offset x30, 8
    stp x0, x1, [sp, #16]
    stp x2, x3, [sp, #32]
    stp x4, x5, [sp, #48]
    stp x6, x7, [sp, #64]
    str x8, [sp, #80]
    stp q0, q1, [sp, #96]
    stp q2, q3, [sp, #128]
    stp q4, q5, [sp, #160]
    stp q6, q7, [sp, #192]
    mov x0, x16
    bl phone_superclass_implementation
    mov x16, x0
    ldp x0, x1, [sp, #16]
    ldp x2, x3, [sp, #32]
    ldp x4, x5, [sp, #48]
    ldp x6, x7, [sp, #64]
    ldr x8, [sp, #80]
    ldp q0, q1, [sp, #96]
    ldp q2, q3, [sp, #128]
    ldp q4, q5, [sp, #160]
    ldp q6, q7, [sp, #192]
    ldp x29, x30, [sp], #224
    .cfi_adjust_cfa_offset -224
    .cfi_restore x29
    .cfi_restore x30
    br x16
    .cfi_endproc
    .size phone_superclass_common, .-phone_superclass_common
)");

#else
#    error "write the common code for this processor"
#endif

extern "C" void phone_superclass_common();

namespace phone {

namespace {

constexpr std::size_t kEntrySize = 32;   // bytes; an entry is code, then padding

// `load record into the scratch register; jump to the common code`.
std::array<std::uint8_t, kEntrySize> entryCode(SuperclassCall const* record)
{
    std::array<std::uint8_t, kEntrySize> code {};
    auto const recordBits = reinterpret_cast<std::uint64_t>(record);
    auto const commonBits = reinterpret_cast<std::uint64_t>(&phone_superclass_common);
#if defined(__x86_64__)
    std::uint8_t const loadRecord[] { 0x49, 0xbb };   // movabs r11, …
    std::uint8_t const loadCommon[] { 0x49, 0xba };   // movabs r10, …
    std::uint8_t const jump[] { 0x41, 0xff, 0xe2 };   // jmp r10
    std::memcpy(code.data(), loadRecord, 2);
    std::memcpy(code.data() + 2, &recordBits, 8);
    std::memcpy(code.data() + 10, loadCommon, 2);
    std::memcpy(code.data() + 12, &commonBits, 8);
    std::memcpy(code.data() + 20, jump, 3);
#else
    std::uint32_t const instructions[] {
        0x58000090,   // ldr x16, [pc, #16]
        0x580000b1,   // ldr x17, [pc, #20]
        0xd61f0220,   // br x17
        0xd503201f,   // nop
    };
    std::memcpy(code.data(), instructions, 16);
    std::memcpy(code.data() + 16, &recordBits, 8);
    std::memcpy(code.data() + 24, &commonBits, 8);
#endif
    return code;
}

// A page of entries, one a record: written once, then readable and executable only.
std::uint8_t* makePage(SuperclassCall const* records, std::size_t size)
{
    void* const page = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (page == MAP_FAILED)
        return nullptr;
    auto* const bytes = static_cast<std::uint8_t*>(page);
    for (std::size_t i = 0; i < size / kEntrySize; ++i) {
        auto const code = entryCode(records + i);
        std::memcpy(bytes + i * kEntrySize, code.data(), code.size());
    }
    if (mprotect(page, size, PROT_READ | PROT_EXEC) != 0) {
        munmap(page, size);
        return nullptr;
    }
    __builtin___clear_cache(reinterpret_cast<char*>(bytes), reinterpret_cast<char*>(bytes + size));
    return bytes;
}

// The records of a page are made with it and filled as they are needed. Code refers to them for good.
struct Page {
    std::vector<SuperclassCall> records;
    std::uint8_t* code { nullptr };
    std::size_t used { 0 };
};

}

IMP superclassCall(Class cls, SEL selector)
{
    static auto& pages = *new std::vector<Page>;

    if (pages.empty() || pages.back().used == pages.back().records.size()) {
        auto const size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        Page page { std::vector<SuperclassCall>(size / kEntrySize), nullptr, 0 };
        page.code = makePage(page.records.data(), size);
        if (!page.code)
            return nullptr;
        pages.push_back(std::move(page));   // moving keeps the records where they are
    }
    Page& page = pages.back();
    page.records[page.used] = { cls, selector };
    return reinterpret_cast<IMP>(page.code + kEntrySize * page.used++);
}

}
