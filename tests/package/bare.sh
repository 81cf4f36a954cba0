#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# bare.sh PACKAGES: the Debian packages in a bare tree of this system's release. There the tests of debian/tests run, a
# package of the core library's name takes the stand-in's place, and all are taken away again. Needs a mirror of Debian.
set -euo pipefail
packages=$(realpath "$1")
tree=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../..")
# shellcheck source=/dev/null
release=$(. /etc/os-release && echo "$VERSION_CODENAME")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
chmod a+rx "$folder"

# What the tests read of the source.
mkdir "$folder/orvgen" "$folder/packages"
for part in debian README.md examples/small tests/package/consumer; do
    mkdir -p "$(dirname "$folder/orvgen/$part")"
    cp -r "$tree/$part" "$folder/orvgen/$part"
done
cp "$packages"/*.deb "$folder/packages"

cat >"$folder/inside" <<'INSIDE'
set -eu
cd /root
autopkgtest packages/*.deb orvgen/ -- null

echo "a core library takes the stand-in's place"
export DEBIAN_FRONTEND=noninteractive
install="apt-get -qq -o Dpkg::Use-Pty=0 install -y --no-install-recommends"
$install ./packages/*.deb >/dev/null
libraries=/usr/lib/x86_64-linux-gnu
mkdir -p core/DEBIAN core$libraries
cp -L $libraries/liborvcorexwide.so.6.1 core$libraries/
echo >>core$libraries/liborvcorexwide.so.6.1 # another file, which loads all the same
printf '%s\n' 'Package: liborvcorexwide6.1' 'Version: 6.1' 'Architecture: amd64' 'Maintainer: nobody <nobody@localhost>' \
    'Description: stands for the core library' >core/DEBIAN/control
dpkg-deb --root-owner-group -b core core.deb >/dev/null
$install ./core.deb >/dev/null
cmp core$libraries/liborvcorexwide.so.6.1 $libraries/liborvcorexwide.so.6.1
case $(dpkg-query -W -f='${db:Status-Abbrev}' liborvcorexwide-standin 2>/dev/null || true) in
    ii*) echo "the stand-in is there still"; exit 1 ;;
esac
/usr/bin/python3 -c 'import orvgen'

echo "all gone"
dpkg --purge liborvcorexwide6.1 liborvgenbatch1 liborvgen-dev liborvgenm7-6.1 orvgen-doc python3-orvgen >/dev/null
# What man has formatted is in its own cache.
left=$(find / -xdev \( -path /root -o -path /proc -o -path /sys -o -path /tmp -o -path /var/cache/man \) -prune -o \
    \( -name '*orvgen*' -o -name '*orvcore*' \) -print)
[ -z "$left" ] || { echo "left behind: $left"; exit 1; }
INSIDE
# Bare of this one's environment, too, but for the way to the mirror.
env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 ${http_proxy:+http_proxy="$http_proxy"} ${https_proxy:+https_proxy="$https_proxy"} \
    mmdebstrap --quiet --variant=apt --include=autopkgtest --format=null \
    --customize-hook="copy-in $folder/packages $folder/orvgen $folder/inside /root" \
    --chrooted-customize-hook="sh /root/inside" "$release"
echo "installed, tried and removed in a bare tree"
