#!/bin/bash
# Runs the checks of .clang-tidy over the programs and libraries, by the commands of the clang build, which has to be
# there: cmake --preset clang
#
# usage: tools/tidy.sh [FILE...]
#   FILE  without one, every .cpp file of the programs, the libraries and the simulated chip
set -eu
cd "$(dirname "$0")/.."

[ $# -gt 0 ] || mapfile -t files < <(find app device files foundation libs line link look operations programs sim usersystemdata -name '*.cpp' | sort)
[ $# -eq 0 ] || files=("$@")

# How many warnings of system headers were passed over is of no interest.
printf '%s\0' "${files[@]}" | xargs -0 -P "$(nproc)" -n 1 clang-tidy -p build/clang --quiet 2> >(grep -v 'warnings generated\|^$' >&2)
