# SPDX-License-Identifier: MIT
#: ./dev bench [NAME...] [OPTIONS]    every kernel, or those named, in core cycles beside other libraries
#: ./dev bench dct4 [OPTIONS]         the same for the DCT-IV and its plans
#: ./dev bench batch [OPTIONS]        the same for batches
#: ./dev bench python [OPTIONS]       the Python package beside numpy.fft, scipy.fft and pyFFTW
# A NAME is that of a kernel (DFTFwd_CToC_64_32fc), of a family (WHT_32f) or a pattern ('*_64_*'); --help lists the options.
# shellcheck shell=bash
program=bench
if [[ ${1:-} == python ]]; then
    shift
    need build test examples bench python
    python=${ORVGEN_PYTHON:-/usr/bin/python3}
    configure -DORVGEN_PYTHON=ON -DPython_EXECUTABLE="$python"
    make_targets orvgen_python_package
    cd "$caller"
    PYTHONPATH=$root/$build/python exec "$python" "$root/bench/python/main.py" --out "$root/$build/bench/python" "$@"
fi
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
