#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# build_fftw.sh FOLDER: Debian's source package of FFTW, built with SSE2 as its only vector code, in
# both precisions; the libraries come to FOLDER/lib. Keeps its lists of packages to itself.
set -euo pipefail

folder=${1:?usage: build_fftw.sh FOLDER}
[[ ! -e $folder/lib/libfftw3.so.3 || ! -e $folder/lib/libfftw3f.so.3 ]] || exit 0
mkdir -p "$folder"
folder=$(cd "$folder" && pwd)
log=$folder/build.log
: >"$log"
for tool in dpkg-source make gcc; do
    command -v "$tool" >/dev/null || { echo "build_fftw: $tool is missing" >&2; exit 1; }
done

# The archives that this machine uses, as sources.
lists=$folder/apt
mkdir -p "$lists/lists/partial" "$lists/cache/archives/partial"
{
    cat /etc/apt/sources.list /etc/apt/sources.list.d/*.list 2>/dev/null | sed -n 's/^deb /deb-src /p'
} >"$lists/sources.list" || true
rm -rf "$lists/parts" && mkdir "$lists/parts"
for file in /etc/apt/sources.list.d/*.sources; do
    [[ ! -e $file ]] || sed 's/^Types:.*/Types: deb-src/' "$file" >"$lists/parts/$(basename "$file")"
done
apt=(apt-get -o Dir::Etc::SourceList="$lists/sources.list" -o Dir::Etc::SourceParts="$lists/parts"
    -o Dir::State::Lists="$lists/lists" -o Dir::Cache="$lists/cache" -o APT::Sandbox::User=root)

say() { echo "build_fftw: $*" >&2; }
quietly() { "$@" >>"$log" 2>&1 || { tail -n 20 "$log" >&2; say "failed: $* (all of it: $log)"; exit 1; }; }

say "fetching the source package"
quietly "${apt[@]}" update
cd "$folder"
if ! ls -d fftw3-*/ >/dev/null 2>&1; then
    quietly "${apt[@]}" source --only-source fftw3
fi
source=$(ls -d "$folder"/fftw3-*/ | head -n 1)
for precision in double single; do
    extra=()
    [[ $precision == double ]] || extra=(--enable-float)
    say "building ($precision)"
    rm -rf "$folder/build-$precision" && mkdir "$folder/build-$precision"
    cd "$folder/build-$precision"
    quietly "$source/configure" --prefix="$folder" --libdir="$folder/lib" --enable-shared --disable-static \
        --disable-fortran --disable-doc --enable-sse2 --disable-avx --disable-avx2 "${extra[@]}"
    quietly make -j"$(nproc)"
    quietly make install
done
