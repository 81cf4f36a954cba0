# SPDX-License-Identifier: MIT
#: ./dev python [ARGUMENTS]           builds the Python package and runs its tests; arguments go to pytest
#: ./dev python shell [ARGUMENTS]     a Python that finds the package in the build tree
# The Python is Debian's, /usr/bin/python3, unless ORVGEN_PYTHON names another.
# shellcheck shell=bash
python=${ORVGEN_PYTHON:-/usr/bin/python3}
need build test examples python
configure -DORVGEN_PYTHON=ON -DPython_EXECUTABLE="$python"
make_targets orvgen_python_package
export PYTHONPATH=$root/$build/python PYTHONDONTWRITEBYTECODE=1
if [[ ${1:-} == shell ]]; then
    shift
    cd "$caller"
    exec "$python" "$@"
fi
say "testing the package"
status=0
"$python" -m pytest -q "$@" || status=$?
case $status in
    0) ;;
    4 | 5) misused "python: no tests are called so: $*" ;;
    *) fail "the package's tests fail" ;;
esac
if [[ $# == 0 ]]; then
    # As users install it, but out of this build; what is installed must bring all that it needs.
    say "installing the package into an environment"
    environment=$root/$build/python-environment
    rm -rf "$environment"
    quietly "$build/python-environment.log" "$python" -m venv --system-site-packages "$environment"
    ORVGEN_BUILD_DIR=$build quietly "$build/python-install.log" \
        "$environment/bin/pip" install --no-index --no-build-isolation .
    (cd / && unset PYTHONPATH && "$environment/bin/python" "$root/tests/python/installed.py" "$environment")

    # As it is handed on: a wheel, and an environment that does not lie in the tree.
    say "installing a wheel of it elsewhere"
    elsewhere=$(mktemp -d)
    ORVGEN_BUILD_DIR=$build quietly "$build/python-wheel.log" \
        "$environment/bin/pip" wheel --no-index --no-deps --no-build-isolation -w "$elsewhere" .
    quietly "$build/python-environment.log" "$python" -m venv --system-site-packages "$elsewhere/v"
    quietly "$build/python-install.log" "$elsewhere/v/bin/pip" install --no-index "$elsewhere"/orvgen-*.whl
    (cd / && unset PYTHONPATH && "$elsewhere/v/bin/python" "$root/tests/python/installed.py" "$elsewhere/v")
    rm -rf "$elsewhere"

    # SciPy has its tests beside it.
    say "testing SciPy with the backend"
    PYTHONPATH=$PYTHONPATH:$root/tests/python "$python" -m pytest -q -c /dev/null -p no:cacheprovider \
        -p scipy_suite --pyargs scipy.fft | grep -v "%\]$"
fi
