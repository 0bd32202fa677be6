#!/bin/bash
# Makes the source tarball DIR/zv32-isp-VERSION.tar.gz and prints its name. The same sources give the same bytes, with
# git and without.
#
# usage: tools/make-tarball.sh DIR
set -eu -o pipefail
[ $# -eq 1 ] || { echo "usage: $0 DIR" >&2; exit 2; }
mkdir -p "$1"
dir=$(cd "$1" && pwd)
cd "$(dirname "$0")/.."

version=$(sed -n '1s/.*(\(.*\)).*/\1/p' debian/changelog)
epoch=${SOURCE_DATE_EPOCH:-$(date -d "$(sed -n '/^ -- /{s/.*>  //p;q}' debian/changelog)" +%s)}
name=zv32-isp-$version

# What is in git; in an unpacked tarball, all that no build has made.
sources() {
    if [ -e .git ]; then
        git ls-files -z
    else
        find . -path ./build -prune -o -name __pycache__ -prune -o -type f -printf '%P\0'
    fi | LC_ALL=C sort -z
}

sources | tar --no-recursion --null --transform "s,^,$name/,S" --mtime="@$epoch" --mode=u=rwX,go=rX \
    --owner=0 --group=0 --numeric-owner --format=gnu --files-from=- -c | gzip -n9 >"$dir/$name.tar.gz.part"
mv "$dir/$name.tar.gz.part" "$dir/$name.tar.gz"
echo "$dir/$name.tar.gz"
