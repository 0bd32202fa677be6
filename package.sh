#!/bin/bash
# Makes the Debian packages and the source tarball that they are built from. Installs what is missing.
#
# usage: ./package.sh [DIR]
#   DIR  where they go; build/packages without it
set -eu -o pipefail
[ $# -le 1 ] || { echo "usage: $0 [DIR]" >&2; exit 2; }
mkdir -p "${1:-$(dirname "$0")/build/packages}"
dir=$(cd "${1:-$(dirname "$0")/build/packages}" && pwd)
cd "$(dirname "$0")"

tools/install-packages.sh package

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

echo "== source tarball"
tarball=$(tools/make-tarball.sh "$work")
tar -C "$work" -xf "$tarball"

echo "== packages"
cd "$work"/zv32-isp-*/
# Nothing of whoever builds: the flags and the date are those of the package.
env -u CXXFLAGS -u CFLAGS -u CPPFLAGS -u LDFLAGS -u SOURCE_DATE_EPOCH LC_ALL=C.UTF-8 \
    dpkg-buildpackage --build=binary --no-sign --jobs="$(nproc)" >"$work/log" 2>&1 || {
    tail -n 60 "$work/log"
    exit 1
}

echo "== lintian"
# A user of root's name runs it in a bare root.
lintian --allow-root --fail-on error,warning "$work"/*.changes

rm -f "$dir"/{zv32-isp,libzvbl}*.{deb,tar.gz}
mv "$work"/*.deb "$tarball" "$dir"
echo "== made, in $dir"
(cd "$dir" && sha256sum -- *)
