#!/bin/bash
# The source tarball: without git it makes itself again, byte by byte, and it holds nothing that a build makes.
#
# usage: tarball.sh SOURCE-DIR
set -eu
root=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

first=$("$root/tools/make-tarball.sh" "$work")
tar -C "$work" -xf "$first"
unpacked=$(basename "$first" .tar.gz)
mkdir -p "$work/$unpacked/build/release" "$work/$unpacked/tests/__pycache__"
touch "$work/$unpacked/build/release/made" "$work/$unpacked/tests/__pycache__/made"
second=$("$work/$unpacked/tools/make-tarball.sh" "$work/again")
cmp "$first" "$second"

tar -tf "$first" >"$work/names"
for name in CMakeLists.txt package.sh debian/rules Map/ZV32F403A_1024K.ZVmap; do
    grep -qx "$unpacked/$name" "$work/names" || { echo "$name is missing"; exit 1; }
done
! grep -E '/build/|/__pycache__/|/\.git/|\.(o|so|a|deb|gch|err)$' "$work/names"
