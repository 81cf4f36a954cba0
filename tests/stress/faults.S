// SPDX-License-Identifier: MIT
// Functions with one fault each, which the caller of call.S must find.
.intel_syntax noprefix
.text

.macro FAULT name, body
.globl orvgenFault_\name
.type orvgenFault_\name, @function
orvgenFault_\name:
    \body
    xor eax, eax
    ret
.size orvgenFault_\name, .-orvgenFault_\name
.endm

FAULT none, "nop"
FAULT spoils_rbx, "inc rbx"
FAULT spoils_rbp, "inc rbp"
FAULT spoils_r12, "inc r12"
FAULT spoils_r13, "inc r13"
FAULT spoils_r14, "inc r14"
FAULT spoils_r15, "inc r15"
FAULT sets_direction, "std"
FAULT rounds_down, "stmxcsr [rsp - 8]; or dword ptr [rsp - 8], 0x2000; ldmxcsr [rsp - 8]"
FAULT masks_all, "stmxcsr [rsp - 8]; or dword ptr [rsp - 8], 0x1f80; ldmxcsr [rsp - 8]"
FAULT clears_flags, "stmxcsr [rsp - 8]; and dword ptr [rsp - 8], -64; ldmxcsr [rsp - 8]"
// The upper lanes hold what the caller left there.
FAULT adds_empty_lanes, "movlps xmm1, [rdi]; addps xmm1, xmm1"
FAULT adds_empty_lane, "movlpd xmm1, [rdi]; addpd xmm1, xmm1"
FAULT adds_stale_slot, "movss xmm1, [rsp - 64]; addss xmm1, xmm1"

.globl orvgenFault_reads_whole_argument
.type orvgenFault_reads_whole_argument, @function
orvgenFault_reads_whole_argument:
    xor eax, eax
    cmp rdx, 8
    setne al
    ret
.size orvgenFault_reads_whole_argument, .-orvgenFault_reads_whole_argument
.section .note.GNU-stack, "", @progbits
