#!/bin/bash
# The packages are made twice, here and in a bare root at another place, with the same bytes. Takes root, a network and
# minutes.
#
# usage: made.sh SOURCE-DIR WORK-DIR
set -eu -o pipefail
source=$(cd "$1" && pwd)
mkdir -p "$2"
work=$(cd "$2" && pwd)
. "$source/tests/packaging/root.sh"

step "packages, made here"
"$source/package.sh" "$work/packages"

step "packages, made in a bare root, from the tarball"
enter made
mkdir -p "$root/srv/elsewhere"
tar -C "$root/srv/elsewhere" --strip-components=1 -xf "$work"/packages/*.tar.gz
within /srv/elsewhere/package.sh /srv/out
count=0
for file in "$work"/packages/*; do
    cmp "$file" "$root/srv/out/$(basename "$file")"
    count=$((count + 1))
done
echo "the same bytes: $count files"
