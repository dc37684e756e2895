// Called by compiled code for the address of a thread-local variable: takes its record in rdi, gives the address in rax, and
// leaves every other register as it was.
        .text
        .globl machoThreadLocalBootstrap
        .hidden machoThreadLocalBootstrap
        .type machoThreadLocalBootstrap, @function
machoThreadLocalBootstrap:
        .cfi_startproc
        push %rbp
        .cfi_def_cfa_offset 16
        .cfi_offset %rbp, -16
        mov %rsp, %rbp
        .cfi_def_cfa_register %rbp
        push %rdi
        push %rsi
        push %rdx
        push %rcx
        push %r8
        push %r9
        push %r10
        push %r11
        sub $256, %rsp
        movups %xmm0, 0(%rsp)
        movups %xmm1, 16(%rsp)
        movups %xmm2, 32(%rsp)
        movups %xmm3, 48(%rsp)
        movups %xmm4, 64(%rsp)
        movups %xmm5, 80(%rsp)
        movups %xmm6, 96(%rsp)
        movups %xmm7, 112(%rsp)
        movups %xmm8, 128(%rsp)
        movups %xmm9, 144(%rsp)
        movups %xmm10, 160(%rsp)
        movups %xmm11, 176(%rsp)
        movups %xmm12, 192(%rsp)
        movups %xmm13, 208(%rsp)
        movups %xmm14, 224(%rsp)
        movups %xmm15, 240(%rsp)
        and $-16, %rsp
        call machoThreadLocalAddress@PLT
        lea -320(%rbp), %rsp
        movups 0(%rsp), %xmm0
        movups 16(%rsp), %xmm1
        movups 32(%rsp), %xmm2
        movups 48(%rsp), %xmm3
        movups 64(%rsp), %xmm4
        movups 80(%rsp), %xmm5
        movups 96(%rsp), %xmm6
        movups 112(%rsp), %xmm7
        movups 128(%rsp), %xmm8
        movups 144(%rsp), %xmm9
        movups 160(%rsp), %xmm10
        movups 176(%rsp), %xmm11
        movups 192(%rsp), %xmm12
        movups 208(%rsp), %xmm13
        movups 224(%rsp), %xmm14
        movups 240(%rsp), %xmm15
        add $256, %rsp
        pop %r11
        pop %r10
        pop %r9
        pop %r8
        pop %rcx
        pop %rdx
        pop %rsi
        pop %rdi
        pop %rbp
        .cfi_def_cfa %rsp, 8
        ret
        .cfi_endproc
        .size machoThreadLocalBootstrap, . - machoThreadLocalBootstrap
        .section .note.GNU-stack, "", @progbits
