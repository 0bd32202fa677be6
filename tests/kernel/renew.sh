#!/bin/bash
# Writes what the programs print now into the transcripts. Read the difference before you commit it.
#
# usage: tests/kernel/renew.sh [FILE.t...]   (BUILD: another build directory than build/release)
set -eu
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
build=$(cd "${BUILD:-$root/build/release}" && pwd)
[ $# -gt 0 ] || set -- "$here"/*.t
for file in "$@"; do
    "$here/guest.sh" "$root/build/kernel" env KERNEL="$here" "$root/tests/e2e/run.sh" "$root" "$build" \
        "$here/$(basename "$file")" | patch --quiet --no-backup-if-mismatch "$here/$(basename "$file")" || true
done
git -C "$root" diff --stat -- tests/kernel
