# SPDX-License-Identifier: MIT
#: ./dev bench [NAME...] [OPTIONS]    every kernel, or those named, in core cycles beside other libraries
#: ./dev bench dct4 [OPTIONS]         the same for the DCT-IV and its plans
#: ./dev bench batch [OPTIONS]        the same for batches
# A NAME is that of a kernel (DFTFwd_CToC_64_32fc), of a family (WHT_32f) or a pattern ('*_64_*'); --help lists the options.
# shellcheck shell=bash
program=bench
case ${1:-} in
    dct4 | batch)
        program=bench_$1
        shift
        ;;
esac
need build test examples bench
configure -DORVGEN_BENCH=ON
make_targets "$program"
run_for_caller "$program" "$@"
