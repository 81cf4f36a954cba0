// SPDX-License-Identifier: MIT
// int32_t orvgenStressCall(void (*function)(void), const uint64_t arguments[6], struct State*)
//
//   struct State { uint64_t pattern[2]; uint32_t controlBefore, controlAfter; uint64_t spoiled; };
//
// Fills the vector registers and 16 KB below the stack pointer with the pattern, calls, and notes
// in `spoiled` which of rbx, rbp, r12 to r15 (bits 0 to 5) came back changed; bit 6: the direction
// flag; bit 7: the stack was not aligned as it was.
.intel_syntax noprefix
.text
.globl orvgenStressCall
.type orvgenStressCall, @function
orvgenStressCall:
    .cfi_startproc
    .irp r, rbx, rbp, r12, r13, r14, r15
    push \r
    .cfi_adjust_cfa_offset 8
    .cfi_rel_offset \r, 0
    .endr
    sub rsp, 24
    .cfi_adjust_cfa_offset 24
    mov r11, rdi
    mov r10, rsi
    mov [rsp], rdx
    mov [rsp + 16], rsp
    stmxcsr [rsp + 8]

    lea rdi, [rsp - 16384]
    mov ecx, 1024
1:  movups xmm0, [rdx]
    movups [rdi], xmm0
    add rdi, 16
    dec ecx
    jne 1b
    .irp n, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15
    movaps xmm\n, xmm0
    .endr

    ldmxcsr [rdx + 16]
    mov rbx, 0x0123456789abcde0
    lea rbp, [rbx + 1]
    lea r12, [rbx + 2]
    lea r13, [rbx + 3]
    lea r14, [rbx + 4]
    lea r15, [rbx + 5]
    mov rdi, [r10]
    mov rsi, [r10 + 8]
    mov rdx, [r10 + 16]
    mov rcx, [r10 + 24]
    mov r8, [r10 + 32]
    mov r9, [r10 + 40]
    mov rax, rbx
    call r11

    mov r11, [rsp]
    stmxcsr [r11 + 20]
    ldmxcsr [rsp + 8]
    xor r10d, r10d
    cmp rsp, [rsp + 16]
    je 2f
    or r10d, 128
2:  mov rcx, 0x0123456789abcde0
    mov edx, 1
    .irp r, rbx, rbp, r12, r13, r14, r15
    cmp \r, rcx
    je 3f
    or r10d, edx
3:  inc rcx
    add edx, edx
    .endr
    pushfq
    pop rcx
    cld
    and ecx, 0x400
    shr ecx, 4
    or r10d, ecx
    mov [r11 + 24], r10

    add rsp, 24
    .cfi_adjust_cfa_offset -24
    .irp r, r15, r14, r13, r12, rbp, rbx
    pop \r
    .cfi_adjust_cfa_offset -8
    .cfi_restore \r
    .endr
    ret
    .cfi_endproc
.size orvgenStressCall, .-orvgenStressCall
.section .note.GNU-stack, "", @progbits
