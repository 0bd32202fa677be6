#!/bin/bash
# Looks through the two libraries for what goes wrong on some way through a function: g++ -fanalyzer, and the analyzer of
# clang by way of clang-tidy. Fails for a finding that is not in tests/coverage/findings.txt.
#
# usage: tools/analyze.sh [FILE...]
#   FILE  without one, every .cpp file of libs/
set -eu
cd "$(dirname "$0")/.."

[ $# -gt 0 ] || mapfile -t files < <(find libs -name '*.cpp' | sort)
[ $# -eq 0 ] || files=("$@")

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
usb=$(pkg-config --cflags libusb-1.0)
flags="-std=c++17 -I. $usb -DZVBL_VERSION=\"0\" -D_GLIBCXX_ASSERTIONS"
export flags

printf '%s\0' "${files[@]}" | xargs -0 -P "$(nproc)" -I{} sh -c 'g++ $flags -O1 -fanalyzer -c "$1" -o /dev/null 2>&1' sh {} >"$work/gcc" || exit 1
printf '%s\0' "${files[@]}" | xargs -0 -P "$(nproc)" -I{} sh -c \
    'clang-tidy --quiet --checks="-*,clang-analyzer-*" --warnings-as-errors= "$1" -- $flags 2>/dev/null' sh {} >"$work/clang" || exit 1

# "file: warning" once each, without the lines, which move.
sed -nE 's/^(\.\/)?(.*\/)?(libs\/[^:]+):[0-9]+:[0-9]+: warning: (.*)$/\3: \4/p' "$work/gcc" "$work/clang" | sort -u >"$work/found"
grep -v '^#' tests/coverage/findings.txt | sed -E 's/ \| .*//' | sort -u >"$work/known"
comm -23 "$work/found" "$work/known" >"$work/new"
comm -13 "$work/found" "$work/known" >"$work/gone"
[ $# -eq 0 ] || : >"$work/gone"
sed 's/^/found: /' "$work/new"
sed 's/^/findings.txt: not found any more: /' "$work/gone"
[ ! -s "$work/new" ] && [ ! -s "$work/gone" ] && echo "analyze: ok, ${#files[@]} files"
