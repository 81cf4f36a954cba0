# SPDX-License-Identifier: MIT
#: ./dev show NAME...                 kernels: decomposition, counts, error bound, figures and the emitted assembly
#: ./dev show --all-plans             how every length of every family is computed, as docs/plans.md has it
# A NAME is a kernel's in full or short (orvgDFTFwd_CToC_64_32fc, DFTFwd_CToC_64_32fc, CToC_64_32fc), a family's for all
# its lengths (DFTFwd_CToC_32fc), a DCT-IV's (DCT4_1024_32f), or a pattern ('*Pack_1?_64f').
# shellcheck shell=bash
[[ $# -gt 0 ]] || misused "show: which kernel? For instance DFTFwd_CToC_64_32fc"
[[ $1 != --all-plans ]] || takes 1 "$@"
made orvgen_kernelgen_program >&2
if [[ $1 == --all-plans ]]; then
    "$build/bin/kernelgen" plans
else
    "$build/bin/kernelgen" show tests/data "$@"
fi
