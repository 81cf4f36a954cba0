#: ./dev show NAME                    one kernel: decomposition, counts, error bound, figures and the emitted assembly
# shellcheck shell=bash
[[ $# -ge 1 ]] || misused "show: which kernel? For instance DFTFwd_CToC_64_32fc"
made orvgen_kernelgen_program
"$build/bin/kernelgen" show "$1" tests/data
