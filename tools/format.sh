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

# clang-format 14 breaks lines oddly in the pass that takes braces away, so a second one sets them. Both work on a
# copy, many files to a process: starting one takes longer than its work.
copy=$(mktemp -d)
trap 'rm -rf "$copy"' EXIT
cp --parents "${files[@]}" .clang-format "$copy"
sed '0,/^ColumnLimit: 120$/s//ColumnLimit: 0\nRemoveBracesLLVM: true/' .clang-format >"$copy/bare"

# pass STYLE: brings the copies to a style.
pass() {
    (cd "$copy" && printf '%s\0' "${files[@]}" | xargs -0 -P "$(nproc)" -n 40 clang-format -i --style="file:$1")
}
pass "$copy/bare"
pass "$copy/.clang-format"

different=0
for file in "${files[@]}"; do
    cmp -s "$file" "$copy/$file" && continue
    if [ -z "$check" ]; then
        cat "$copy/$file" >"$file"
    else
        echo "not formatted: $file"
        different=1
    fi
done
exit "$different"
