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
    mov x2, x30
    bl corvel_apple_message_lookup
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

// A function that the phone has, for a library that signs the code pointers which it gives away: the one in register \code is
// authenticated, and the function is gone to with everything else as it was. The return address too: by it the phone tells
// whether a plug-in calls.
    .macro takes_code name, code, what
    .globl corvel_apple_\name
    .type corvel_apple_\name, %function
corvel_apple_\name:
    .cfi_startproc
    stp x29, x30, [sp, #-64]!
    .cfi_def_cfa_offset 64
    .cfi_offset x29, -64
    .cfi_offset x30, -56
    mov x29, sp
    stp x0, x1, [sp, #16]
    stp x2, x3, [sp, #32]
    stp x4, x5, [sp, #48]
    mov x0, \code
    adrp x1, 2f
    add x1, x1, :lo12:2f
    bl corvel_apple_incoming_code
    mov x16, x0
    ldp x0, x1, [sp, #16]
    ldp x2, x3, [sp, #32]
    ldp x4, x5, [sp, #48]
    mov \code, x16
    ldp x29, x30, [sp], #64
    .cfi_def_cfa_offset 0
    .cfi_restore x29
    .cfi_restore x30
    // By way of the table that the dynamic linker fills in: a program need not have it.
    adrp x16, :got:\name
    ldr x16, [x16, :got_lo12:\name]
    br x16
    .cfi_endproc
    .size corvel_apple_\name, .-corvel_apple_\name
    .weak \name
    .section .rodata.str1.1, "aMS", %progbits, 1
2:  .asciz "\what"
    .text
    .endm

    takes_code class_addMethod, x2, "a method's implementation"
    takes_code CFNotificationCenterAddObserver, x2, "a notification's callback"

    .section .note.GNU-stack,"",%progbits
