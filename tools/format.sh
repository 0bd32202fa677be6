#!/bin/bash
# Brings sources to the dialect of .clang-format, without braces around single statements.
#
# usage: tools/format.sh [--check] [FILE...]
#   --check  changes nothing; names the files that differ, and ends with 1 if there are any
#   FILE     without one, every .h and .cpp file of the tree
set -eu
cd "$(dirname "$0")/.."

check=
if [ "${1:-}" = --check ]; then
    check=yes
    shift
fi
[ $# -gt 0 ] || mapfile -t files < <(find . -path ./build -prune -o -name '*.h' -print -o -name '*.cpp' -print)
[ $# -eq 0 ] || files=("$@")

# clang-format 14 breaks lines oddly in the pass that takes braces away, so a second one sets them.
bare=$(mktemp -d)
trap 'rm -rf "$bare"' EXIT
cp .clang-format "$bare/.clang-format"
printf 'ColumnLimit: 0\nRemoveBracesLLVM: true\n' >>"$bare/.clang-format"
sed -i '0,/^ColumnLimit: 120$/{/^ColumnLimit: 120$/d}' "$bare/.clang-format"

formatted() {
    clang-format --style="file:$bare/.clang-format" "$1" | clang-format --style=file --assume-filename="$1"
}

# Tells of a file that differs, or mends it.
one() {
    out=$(mktemp -p "$bare")
    formatted "$1" >"$out"
    cmp -s "$1" "$out" && return
    if [ -n "$check" ]; then echo "not formatted: $1"; else cat "$out" >"$1"; fi
}
export -f formatted one
export bare check

told=$(printf '%s\0' "${files[@]}" | xargs -0 -P "$(nproc)" -I{} bash -c 'one "$1"' one {})
[ -z "$told" ] || { echo "$told"; exit 1; }
