#!/bin/bash
# Runs the checks of .clang-tidy and the warnings of clang++ over the programs and libraries, by the commands of the clang
# build, which has to be configured: cmake --preset clang
#
# usage: tools/tidy.sh [--list|FILE...]
#   FILE    without one, every .cpp file of the programs, the libraries and the simulated chip
#   --list  names those, and does nothing else
set -eu
cd "$(dirname "$0")/.."

files=("$@")
[ $# -gt 0 ] && [ "$1" != --list ] ||
    mapfile -t files < <(find app device files foundation libs line link look operations programs sim usersystemdata -name '*.cpp' | sort)
if [ "${1:-}" = --list ]; then
    printf '%s\n' "${files[@]}"
    exit
fi

# How many warnings of system headers were passed over is of no interest.
printf '%s\0' "${files[@]}" | xargs -0 -P "$(nproc)" -n 1 clang-tidy -p build/clang --quiet 2> >(grep -v 'warnings\? generated\|^$' >&2)
