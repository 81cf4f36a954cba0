# SPDX-License-Identifier: MIT
#: ./dev package                      an archive of the installed tree, build/<preset>/orvgen-*.tar.gz
# shellcheck shell=bash
takes 0 "$@"
made all
(cd "$build" && quietly package.log cpack -G TGZ)
ls "$build"/orvgen-*.tar.gz
