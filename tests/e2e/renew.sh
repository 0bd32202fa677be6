#!/bin/bash
# Writes what the programs print now into the transcripts. Read the difference before you commit it.
#
# usage: tests/e2e/renew.sh [FILE.t...]   (after a build of the release preset)
set -eu
cd "$(dirname "$0")"
root=$(cd ../.. && pwd)
. ./environment.sh "$root" "$root/build/release"
cram3 --shell=/bin/bash --interactive --yes "${@:-.}" || true
git diff --stat -- .
