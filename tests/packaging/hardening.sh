#!/bin/bash
# What a release build has in front of a mistake in its own memory handling, looked for in the files themselves.
#
# usage: hardening.sh FILE...
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
bad=0

# fail FILE TEXT
fail() {
    echo "$1: $2"
    bad=1
}

probes=0
for file in "$@"; do
    readelf -hldW "$file" >"$work/headers"
    nm -D --undefined-only "$file" >"$work/wanted"
    objdump -d --no-show-raw-insn "$file" >"$work/code"

    case "$file" in
        *.so*) ;;
        *) grep -q 'FLAGS_1.*PIE' "$work/headers" || fail "$file" "is no position independent program" ;;
    esac
    grep -q GNU_RELRO "$work/headers" || fail "$file" "has no relro"
    grep -q BIND_NOW "$work/headers" || fail "$file" "has no full relro: names are bound late"
    grep -q 'GNU_STACK.* RW ' "$work/headers" || fail "$file" "has a stack that can be executed"
    grep -q __stack_chk_fail "$work/wanted" || fail "$file" "has no stack protector"
    grep -q '_chk@GLIBC' "$work/wanted" || fail "$file" "calls no fortified function"

    # cf-protection: a function that is called by its address begins with endbr64. Those that leave a library are.
    nm -D --defined-only "$file" | awk '$2 == "T" { print $1 }' >"$work/functions"
    awk 'NR == FNR { wanted[$1]; next }
         /^[0-9a-f]+ </ { at = $1; next }
         at in wanted { if ($2 != "endbr64") print at; delete wanted[at] }' "$work/functions" "$work/code" >"$work/bare"
    [ ! -s "$work/bare" ] || fail "$file" "functions without endbr64: $(wc -l <"$work/bare")"
    [ "$(grep -c endbr64 "$work/code")" -gt 20 ] || fail "$file" "is built without cf-protection"

    # Stack clash: no frame grows by more than a page at a time, and each page of it is touched.
    awk '/sub +\$0x[0-9a-f]+,%rsp/ { match($0, /0x[0-9a-f]+/); size = substr($0, RSTART + 2, RLENGTH - 2)
         if (length(size) == 16) next # negative: a frame is given back
         if (length(size) > 4 || (length(size) == 4 && size > "1000")) print }' "$work/code" >"$work/steps"
    [ ! -s "$work/steps" ] || fail "$file" "frames of more than a page in one step: $(wc -l <"$work/steps")"
    probes=$((probes + $(grep -cE 'orq +\$0x0,.*\(%rsp\)' "$work/code" || true)))
done
[ "$probes" -gt 0 ] || fail "$*" "no page of a frame is touched"
exit "$bad"
