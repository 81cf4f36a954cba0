#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# build.sh PROGRAM KERNELS BENCH SITE: the static files of the site, in the folder SITE. PROGRAM is write_site_data,
# KERNELS the folder of the kernels' assembly, BENCH the table of the last benchmark, which may be missing.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
program=$(realpath "$1") kernels=$(realpath "$2") bench=$(realpath -m "$3") site=$(realpath -m "$4")
python=/usr/bin/python3 # the one that Debian's packages are installed for

rm -rf "$site"
"$python" "$root/site/reference/prepare.py" "$root" "$site-source"
(cd "$site-source" && "$python" -m sphinx -q -W --keep-going -b html -d "$site-source/doctrees" . "$site")
rm -f "$site"/{.buildinfo,objects.inv} "$site"/_static/{jquery,underscore,_sphinx_javascript_frameworks_compat}*.js
mkdir -p "$site/explorer"
cp "$root"/site/explorer/* "$root/site/base.css" "$site/explorer/"
"$program" "$kernels" "$root/tests/data" "$site/explorer/data"
"$python" "$root/site/explorer_data.py" "$bench" "$site/explorer/data"
