# SPDX-License-Identifier: MIT
#: ./dev site                         the reference with the kernel explorer, build/<preset>/site/index.html
#: ./dev site --check                 the same, and then tests it in a browser without a screen
# Measured cycles are those of the last ./dev bench.
# shellcheck shell=bash
takes 1 "$@"
[[ $# == 0 || $1 == --check ]] || misused "site: not expected: $1 (./dev help site)"
need build test examples site
configure
make_targets orvgen_site
say "wrote $build/site/index.html"
[[ $# == 1 ]] || exit 0
/usr/bin/python3 tests/site/files.py "$build/site" .
/usr/bin/python3 tests/site/browser.py "$build/site" "$(cached ORVGEN_KERNEL_DIR)"
