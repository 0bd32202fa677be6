#!/bin/bash
# Configures and builds one preset, for try.sh and test.sh: whatever an earlier build left in build/PRESET, and
# whoever made it. How far it has come is told in tenths; what cmake and the compiler said is shown only when it failed.
#
# usage: tools/build.sh PRESET [CMAKE-ARG...] [--target TARGET...]
set -eu
cd "$(dirname "$0")/.."

preset=$1
shift
options=()
while [ $# -gt 0 ] && [ "$1" != --target ]; do
    options+=("$1")
    shift
done

# Root has built here before: a user takes the directory over, as sudo allows.
mkdir -p build
if [ "$(id -u)" -ne 0 ] && [ -n "$(find build ! -user "$(id -u)" -print -quit)" ]; then
    command -v sudo >/dev/null || { echo "build/ holds files of another user: remove it first" >&2; exit 1; }
    sudo chown -R "$(id -u):$(id -g)" build
fi

# A directory that was moved, or made with another generator, can't be configured again.
configure() {
    cmake --preset "$preset" "${options[@]}" || {
        echo "== the same from the start"
        cmake --fresh --preset "$preset" "${options[@]}"
    }
}

# Keeps what ninja says, and tells of each tenth of its steps: "[12/120] Building ...".
keep_and_tell() {
    local line told=0
    while IFS= read -r line; do
        printf '%s\n' "$line"
        if [[ $line =~ ^\[([0-9]+)/([0-9]+)\] ]] && ((10 * BASH_REMATCH[1] / BASH_REMATCH[2] > told)); then
            told=$((10 * BASH_REMATCH[1] / BASH_REMATCH[2]))
            printf '   %3d %% of %d steps\n' $((10 * told)) "${BASH_REMATCH[2]}" >&2
        fi
    done
}

log=build/$preset.log
set -o pipefail
{ configure && cmake --build --preset "$preset" -j "$(nproc)" "$@"; } 2>&1 | keep_and_tell >"$log" || {
    tail -n 60 "$log"
    exit 1
}
