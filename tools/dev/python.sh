# SPDX-License-Identifier: MIT
#: ./dev python [ARGUMENTS]           builds the Python package and runs its tests; arguments go to pytest
#: ./dev python shell                 a Python that finds the package in the build tree
# The Python is Debian's, /usr/bin/python3, unless ORVGEN_PYTHON names another.
# shellcheck shell=bash
python=${ORVGEN_PYTHON:-/usr/bin/python3}
need build test examples python
configure -DORVGEN_PYTHON=ON -DPython_EXECUTABLE="$python"
make_targets orvgen_python_package
export PYTHONPATH=$root/$build/python PYTHONDONTWRITEBYTECODE=1
if [[ ${1:-} == shell ]]; then
    takes 1 "$@"
    cd "$caller"
    exec "$python"
fi
say "testing the package"
"$python" -m pytest -q "$@"
# SciPy has its tests beside it.
if [[ $# == 0 ]]; then
    say "testing SciPy with the backend"
    PYTHONPATH=$PYTHONPATH:$root/tests/python "$python" -m pytest -q -c /dev/null -p no:cacheprovider \
        -p scipy_suite --pyargs scipy.fft | grep -v "%\]$"
fi
