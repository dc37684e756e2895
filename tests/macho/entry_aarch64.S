// What C++ cannot say: functions whose callers expect more registers kept than the procedure call standard keeps, or pass
// arguments on the stack that it passes in registers.
        .text

// Called by compiled code for the address of a thread-local variable: takes its record in x0, gives the address there, and
// leaves every other register as it was.
        .globl machoThreadLocalBootstrap
        .hidden machoThreadLocalBootstrap
        .type machoThreadLocalBootstrap, %function
machoThreadLocalBootstrap:
        .cfi_startproc
        stp x29, x30, [sp, #-160]!
        .cfi_def_cfa_offset 160
        .cfi_offset x29, -160
        .cfi_offset x30, -152
        mov x29, sp
        .cfi_def_cfa_register x29
        stp x1, x2, [sp, #16]
        stp x3, x4, [sp, #32]
        stp x5, x6, [sp, #48]
        stp x7, x8, [sp, #64]
        stp x9, x10, [sp, #80]
        stp x11, x12, [sp, #96]
        stp x13, x14, [sp, #112]
        stp x15, x16, [sp, #128]
        str x17, [sp, #144]
        sub sp, sp, #512
        stp q0, q1, [sp]
        stp q2, q3, [sp, #32]
        stp q4, q5, [sp, #64]
        stp q6, q7, [sp, #96]
        stp q8, q9, [sp, #128]
        stp q10, q11, [sp, #160]
        stp q12, q13, [sp, #192]
        stp q14, q15, [sp, #224]
        stp q16, q17, [sp, #256]
        stp q18, q19, [sp, #288]
        stp q20, q21, [sp, #320]
        stp q22, q23, [sp, #352]
        stp q24, q25, [sp, #384]
        stp q26, q27, [sp, #416]
        stp q28, q29, [sp, #448]
        stp q30, q31, [sp, #480]
        bl machoThreadLocalAddress
        ldp q0, q1, [sp]
        ldp q2, q3, [sp, #32]
        ldp q4, q5, [sp, #64]
        ldp q6, q7, [sp, #96]
        ldp q8, q9, [sp, #128]
        ldp q10, q11, [sp, #160]
        ldp q12, q13, [sp, #192]
        ldp q14, q15, [sp, #224]
        ldp q16, q17, [sp, #256]
        ldp q18, q19, [sp, #288]
        ldp q20, q21, [sp, #320]
        ldp q22, q23, [sp, #352]
        ldp q24, q25, [sp, #384]
        ldp q26, q27, [sp, #416]
        ldp q28, q29, [sp, #448]
        ldp q30, q31, [sp, #480]
        add sp, sp, #512
        ldp x1, x2, [sp, #16]
        ldp x3, x4, [sp, #32]
        ldp x5, x6, [sp, #48]
        ldp x7, x8, [sp, #64]
        ldp x9, x10, [sp, #80]
        ldp x11, x12, [sp, #96]
        ldp x13, x14, [sp, #112]
        ldp x15, x16, [sp, #128]
        ldr x17, [sp, #144]
        ldp x29, x30, [sp], #160
        .cfi_def_cfa sp, 0
        .cfi_restore x29
        .cfi_restore x30
        ret
        .cfi_endproc
        .size machoThreadLocalBootstrap, . - machoThreadLocalBootstrap

// The further arguments lie on the stack from its top on, so that its address is the caller's va_list.
        .globl machoSnprintf
        .hidden machoSnprintf
        .type machoSnprintf, %function
machoSnprintf:
        mov x3, sp
        b machoVsnprintf
        .size machoSnprintf, . - machoSnprintf

        .globl machoNSLog
        .hidden machoNSLog
        .type machoNSLog, %function
machoNSLog:
        mov x1, sp
        b machoVNSLog
        .size machoNSLog, . - machoNSLog

        .section .note.GNU-stack, "", %progbits
