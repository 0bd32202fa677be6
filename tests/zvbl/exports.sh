#!/bin/sh
# The library's name, and that it exports exactly the functions of its header.
#
# usage: exports.sh LIBRARY HEADER
set -eu
library=$1 header=$2
objdump -p "$library" | grep -q 'SONAME *libZVBLLIB\.so\.1$' || { echo "wrong SONAME"; exit 1; }
declared=$(grep -oE '^(BYTE|int|void) [A-Za-z0-9_]+\(' "$header" | sed 's/.* //; s/(//' | sort)
exported=$(nm -D --defined-only "$library" | awk '{print $3}' | grep -v '^__\(asan\|odr_asan\)' | sort)
[ -n "$declared" ] && [ "$declared" = "$exported" ] || {
    printf 'declared:\n%s\nexported:\n%s\n' "$declared" "$exported"
    exit 1
}
