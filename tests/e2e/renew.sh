#!/bin/bash
# Writes what the programs print now into the transcripts. Read the difference before you commit it.
#
# usage: tests/e2e/renew.sh [FILE.t...]   (BUILD: another build directory than build/release)
set -eu
cd "$(dirname "$0")"
root=$(cd ../.. && pwd)
. ./environment.sh "$root" "${BUILD:-$root/build/release}"
[ -x "$build/bin/ZV32_ISP_Console" ] || { echo "no build in $build" >&2; exit 1; }
cram3 --shell=/bin/bash --interactive --yes "${@:-.}" || true
git diff --stat -- .
