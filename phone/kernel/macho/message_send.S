// objc_msgSend as code for iOS calls it, on the GNU runtime, which looks implementations up and leaves the call to the caller.
// All registers that can hold arguments are kept: x0-x7, x8 (where a large result goes), q0-q7.
    .text
    .globl corvel_apple_objc_msgSend
    .type corvel_apple_objc_msgSend, %function
corvel_apple_objc_msgSend:
    .cfi_startproc
    cbz x0, 1f
    stp x29, x30, [sp, #-224]!
    .cfi_def_cfa_offset 224
    .cfi_offset x29, -224
    .cfi_offset x30, -216
    mov x29, sp
    stp x0, x1, [sp, #16]
    stp x2, x3, [sp, #32]
    stp x4, x5, [sp, #48]
    stp x6, x7, [sp, #64]
    str x8, [sp, #80]
    stp q0, q1, [sp, #96]
    stp q2, q3, [sp, #128]
    stp q4, q5, [sp, #160]
    stp q6, q7, [sp, #192]
    bl objc_msg_lookup
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
    .cfi_def_cfa_offset 0
    .cfi_restore x29
    .cfi_restore x30
    br x16
1:  // A message to nil answers zero in every register that results come in.
    mov x1, #0
    movi d0, #0
    movi d1, #0
    movi d2, #0
    movi d3, #0
    ret
    .cfi_endproc
    .size corvel_apple_objc_msgSend, .-corvel_apple_objc_msgSend
    .section .note.GNU-stack,"",%progbits
