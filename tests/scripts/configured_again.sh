#!/bin/bash
# The project itself over a cache that has the tests switched off: configuring by the preset brings them back.
#
# usage: configured_again.sh SOURCE-DIR
set -eu
cd "$1"
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT

cmake --preset release -B "$place" -DBUILD_TESTING=OFF >"$place/log"
cmake --preset release -B "$place" >>"$place/log"
# One of the tests that need no program.
ctest --test-dir "$place" -N -R '^layers$' | grep -qx 'Total Tests: 1'
