// SPDX-License-Identifier: MIT
// Small functions in the shape of kernels, sound ones and ones with one fault each: what the reader
// of machine code must accept and must find. All but the last ones take four floats to four floats.
.intel_syntax noprefix

.section .rodata
.balign 16
scales: .float 1.0, 0.5, 0.25, 0.25
ones:   .float 1.0, 1.0, 1.0, 1.0

.text
.macro FUNC name
.globl \name
.type \name, @function
\name:
.endm
.macro END name
.size \name, .-\name
.endm

// Null pointers, then the flag; rax points to the scale.
.macro GATE
    test rdi, rdi
    je 1f
    test rsi, rsi
    je 1f
    lea rax, [rip + scales]
    cmp edx, 8
    je 3f
    add rax, 4
    cmp edx, 4
    je 3f
    add rax, 4
    cmp edx, 1
    je 3f
    add rax, 4
    cmp edx, 2
    je 3f
    mov eax, -16
    ret
1:  mov eax, -8
    ret
3:
.endm

.macro SPREAD
    movss xmm0, dword ptr [rax]
    unpcklps xmm0, xmm0
    unpcklps xmm0, xmm0
.endm

.macro DONE
    xor eax, eax
    ret
.endm

// ---- sound

FUNC good_vector
    mov eax, edi
    or eax, esi
    test al, 15
    jne good_vector_unaligned
    GATE
    SPREAD
    movaps xmm1, [rdi]
    mulps xmm1, xmm0
    movaps [rsi], xmm1
    DONE
END good_vector

.type good_vector_unaligned, @function
good_vector_unaligned:
    GATE
    SPREAD
    movups xmm1, [rdi]
    mulps xmm1, xmm0
    movups [rsi], xmm1
    DONE
END good_vector_unaligned

// Biased pointers, a frame, callee-saved registers.
FUNC good_biased
    GATE
    push rbx
    sub rsp, 32
    lea rbx, [rsp + 128]
    sub rdi, -128
    sub rsi, -128
    lea rcx, [rip + ones + 128]
    movss xmm0, dword ptr [rax]
    movss [rbx - 128], xmm0
    movss xmm1, [rdi - 128]
    movss xmm2, [rdi - 124]
    movss xmm3, [rdi - 120]
    movss xmm4, [rdi - 116]
    mulss xmm1, [rcx - 128]
    xorps xmm5, xmm5
    addss xmm5, xmm1
    movaps xmm1, xmm5
    mulss xmm1, [rbx - 128]
    mulss xmm2, [rbx - 128]
    mulss xmm3, xmm0
    mulss xmm4, xmm0
    movss [rsi - 128], xmm1
    movss [rsi - 124], xmm2
    movss [rsi - 120], xmm3
    movss [rsi - 116], xmm4
    add rsp, 32
    pop rbx
    DONE
END good_biased

// Two bodies in one function; the scale by an index instead of a chain.
FUNC good_two_bodies
    mov eax, edi
    or eax, esi
    test al, 15
    jne 5f
    GATE
    SPREAD
    movaps xmm1, [rdi]
    mulps xmm1, xmm0
    movaps [rsi], xmm1
    DONE
5:
    GATE
    SPREAD
    movlps xmm1, [rdi]
    movhps xmm1, [rdi + 8]
    mulps xmm1, xmm0
    movlps [rsi], xmm1
    movhps [rsi + 8], xmm1
    DONE
END good_two_bodies

// Two passes with counted loops through a buffer of 64 bytes, 16 floats.
FUNC good_passes
    GATE
    push rbx
    push rbp
    push r12
    push r13
    sub rsp, 24
    mov rbx, rdi
    mov rbp, rsi
    mov r12, rcx
    movss xmm0, dword ptr [rax]
    movss [rsp + 8], xmm0
    mov qword ptr [rsp], 0
    test rcx, rcx
    jne 6f
    mov edi, 64
    call orvMalloc@PLT
    mov r12, rax
    mov [rsp], rax
6:  xor eax, eax
    .byte 0x66, 0x66, 0x2e, 0x0f, 0x1f, 0x84, 0, 0, 0, 0, 0  // one long nop
7:  movups xmm1, [rbx + rax]
    movaps [r12 + rax], xmm1
    add rax, 16
    cmp rax, 64
    jne 7b
    movss xmm0, [rsp + 8]
    unpcklps xmm0, xmm0
    unpcklps xmm0, xmm0
    mov r13d, 4
8:  movaps xmm1, [r12]
    mulps xmm1, xmm0
    movups [rbp], xmm1
    add r12, 16
    add rbp, 16
    dec r13d
    jne 8b
    mov rdi, [rsp]
    test rdi, rdi
    je 9f
    call orvFree@PLT
9:  add rsp, 24
    pop r13
    pop r12
    pop rbp
    pop rbx
    DONE
END good_passes

// ---- one fault each; the macro holds the instructions between gate and end

.macro FAULT name, body
FUNC \name
    GATE
    SPREAD
    \body
    DONE
END \name
.endm

FAULT over_read, "movups xmm1, [rdi + 4]; movups [rsi], xmm1"
FAULT under_read, "movups xmm1, [rdi - 4]; movups [rsi], xmm1"
FAULT over_write, "movups xmm1, [rdi]; movups [rsi], xmm1; movss [rsi + 16], xmm1"
FAULT part_written, "movups xmm1, [rdi]; movlps [rsi], xmm1"
FAULT part_read, "movsd xmm1, [rdi]; movups [rsi], xmm1"
FAULT written_twice, "movups xmm1, [rdi]; movups [rsi], xmm1; movss [rsi], xmm1"
FAULT writes_src, "movups xmm1, [rdi]; movups [rdi], xmm0; movups [rsi], xmm1"
FAULT reads_dst, "movups xmm1, [rdi]; addps xmm1, xmm0; movups [rsi], xmm1; movss xmm2, [rsi]"
FAULT reads_late, "movss xmm1, [rdi]; movups xmm2, [rdi]; movups [rsi], xmm2; movss xmm1, [rdi + 12]"
FAULT general_data, "movups xmm1, [rdi]; mov ecx, [rdi]; movups [rsi], xmm1; mov [rip + scales], ecx"
FAULT branches, "movups xmm1, [rdi]; movups [rsi], xmm1; test edx, edx; je 2f; addps xmm1, xmm0; 2:"
FAULT depends_on_data, "movups xmm1, [rdi]; movups [rsi], xmm1; mov ecx, [rdi]; test ecx, ecx; je 2f; nop; 2:"
FAULT loops, "mov ecx, 4; 2: movss xmm1, [rdi]; movss [rsi], xmm1; add rdi, 4; add rsi, 4; dec ecx; jne 2b"
FAULT gate_loops, "mov ecx, 4; 2: dec ecx; jne 2b; movups xmm1, [rdi]; movups [rsi], xmm1"
FAULT calls, "movups xmm1, [rdi]; movups [rsi], xmm1; sub rsp, 8; call helper; add rsp, 8"
FAULT square_root, "movups xmm1, [rdi]; sqrtps xmm1, xmm1; movups [rsi], xmm1"
FAULT sse3, "movups xmm1, [rdi]; movddup xmm2, xmm1; movups [rsi], xmm1"
FAULT sse4, "movups xmm1, [rdi]; blendps xmm1, xmm0, 3; movups [rsi], xmm1"
FAULT avx, "vmovups xmm1, [rdi]; movups [rsi], xmm1"
FAULT control_word, "movups xmm1, [rdi]; movups [rsi], xmm1; stmxcsr [rsp - 4]"
FAULT x87, "movups xmm1, [rdi]; movups [rsi], xmm1; fldz"
FAULT stale_slot, "movups xmm1, [rdi]; movups [rsi], xmm1; movss xmm2, [rsp - 8]"
FAULT stale_register, "movups xmm1, [rdi]; addps xmm1, xmm9; movups [rsi], xmm1"
FAULT spoils_rbx, "movups xmm1, [rdi]; movups [rsi], xmm1; xor ebx, ebx"
FAULT spoils_stack, "movups xmm1, [rdi]; movups [rsi], xmm1; sub rsp, 8"
FAULT below_red_zone, "movups xmm1, [rdi]; movups [rsi], xmm1; movss [rsp - 132], xmm1"
FAULT misaligned_slot, "movups xmm1, [rdi]; movups [rsi], xmm1; movaps [rsp - 32], xmm1"
FAULT strays, "movups xmm1, [rdi]; movups [rsi], xmm1; lea rcx, [rip + scales]; movss xmm2, [rcx + 0x7fffff00]"
FAULT reads_all_first, "movss xmm1, [rdi]; movss [rsi], xmm1; movss xmm1, [rdi + 4]; movss [rsi + 4], xmm1; movsd xmm1, [rdi + 8]; movsd [rsi + 8], xmm1"

FUNC helper
    ret
END helper

// ---- faults of the gate

.macro REST
    movups xmm1, [rdi]
    mulps xmm1, [rip + ones]
    movups [rsi], xmm1
    DONE
.endm

FUNC flag_before_null
    cmp edx, 8
    ja 2f
    mov ecx, 0x116
    bt ecx, edx
    jae 2f
    test rdi, rdi
    je 1f
    test rsi, rsi
    je 1f
    REST
1:  mov eax, -8
    ret
2:  mov eax, -16
    ret
END flag_before_null

FUNC flags_in_another_order
    test rdi, rdi
    je 1f
    test rsi, rsi
    je 1f
    cmp edx, 1
    je 3f
    cmp edx, 2
    je 3f
    cmp edx, 4
    je 3f
    cmp edx, 8
    je 3f
    mov eax, -16
    ret
1:  mov eax, -8
    ret
3:  REST
END flags_in_another_order

FUNC needless_alignment_test
    GATE
    test dil, 15
    jne 4f
    REST
4:  REST
END needless_alignment_test

FUNC no_dst_test
    test rdi, rdi
    je 1f
    cmp edx, 8
    ja 2f
    mov ecx, 0x116
    bt ecx, edx
    jae 2f
    REST
1:  mov eax, -8
    ret
2:  mov eax, -16
    ret
END no_dst_test

FUNC flag_as_mask
    test rdi, rdi
    je 1f
    test rsi, rsi
    je 1f
    test edx, 15
    je 2f
    REST
1:  mov eax, -8
    ret
2:  mov eax, -16
    ret
END flag_as_mask

FUNC reads_before_gate
    movups xmm1, [rdi]
    GATE
    mulps xmm1, [rip + ones]
    movups [rsi], xmm1
    DONE
END reads_before_gate

FUNC flag_of_64_bits
    test rdi, rdi
    je 1f
    test rsi, rsi
    je 1f
    cmp rdx, 8
    jne 2f
    REST
1:  mov eax, -8
    ret
2:  mov eax, -16
    ret
END flag_of_64_bits

FUNC dead_code
    GATE
    REST
    addps xmm1, xmm1
    ret
END dead_code

// A twin with an aligned access, and a gate that looks at src only.
FUNC aligned_twin
    mov eax, edi
    or eax, esi
    test al, 15
    jne aligned_twin_unaligned
    GATE
    REST
END aligned_twin
.type aligned_twin_unaligned, @function
aligned_twin_unaligned:
    GATE
    movaps xmm1, [rdi]
    movups [rsi], xmm1
    DONE
END aligned_twin_unaligned

FUNC half_gate
    test dil, 15
    jne half_gate_unaligned
    GATE
    REST
END half_gate
.type half_gate_unaligned, @function
half_gate_unaligned:
    GATE
    REST
END half_gate_unaligned

// Reads the buffer before writing it; leaks the block; asks for too little.
FUNC stale_buffer
    GATE
    movups xmm1, [rdi]
    addps xmm1, [rcx]
    movups [rsi], xmm1
    DONE
END stale_buffer

FUNC leaks
    GATE
    test rcx, rcx
    jne 2f
    push rdi
    push rsi
    sub rsp, 8
    mov edi, 48
    call orvMalloc@PLT
    mov rcx, rax
    add rsp, 8
    pop rsi
    pop rdi
2:  movups xmm1, [rdi]
    movups [rsi], xmm1
    DONE
END leaks

.section .note.GNU-stack, "", @progbits
