#!/bin/bash
# The binary interface of one library: its SONAME, that it exports exactly the functions of its header, and that these
# and the records are the frozen ones.
#
# usage: exports.sh SOURCE-DIR LIBRARY HEADER zvbl|files
set -eu
root=$1 library=$2 header=$3 name=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

soname=lib$([ "$name" = zvbl ] && echo ZVBLLIB || echo Files).so.1
objdump -p "$library" | grep -q "SONAME *${soname//./\\.}$" || { echo "wrong SONAME"; exit 1; }

# Each library beside the other: the program is linked with both.
lib=$(dirname "$library")
cc -std=c11 -Wall -Wextra -Werror -I "$root" "$root/tests/abi/interface.c" -o "$work/interface" \
    "$lib/libZVBLLIB.so" "$lib/libFiles.so" -Wl,-rpath,"$lib" ${ZV32_SANITIZE:+-fsanitize="$ZV32_SANITIZE"}
"$work/interface" "$name" | sort >"$work/frozen"
sed 's,//.*,,' "$root/$header" | grep -oE '^[A-Za-z][A-Za-z ]* [A-Za-z0-9_]+\(' | sed 's/.* //; s/(//' | sort >"$work/declared"
nm -D --defined-only "$library" | awk '{ print $3 }' | grep -v '^__\(asan\|odr_asan\)' | sort >"$work/exported"
[ -s "$work/frozen" ]
diff "$work/frozen" "$work/exported"
diff "$work/declared" "$work/exported"
