#!/bin/bash
# Writes what the programs print now into the transcripts. Read the difference before you commit it.
#
# usage: tests/e2e/renew.sh [FILE.t...]   (BUILD: another build directory than build/release)
set -eu
cd "$(dirname "$0")"
root=$(cd ../.. && pwd)
. ./environment.sh "$root" "${BUILD:-$root/build/release}"
[ -x "$build/bin/ZV32_ISP_Console" ] || { echo "no build in $build" >&2; exit 1; }
# Those of links/ hold words that differ from link to link; they are written as a serial line has them.
for file in "${@:-*.t links/*.t}"; do
    for one in $file; do
        case $one in
            *links/*)
                scratch=$(mktemp -d)
                LINK=usart ./for_link.sh "$one" >"$scratch/${one##*/}"
                cram3 --shell=/bin/bash --interactive --yes "$scratch/${one##*/}" || true
                sed -e 's/^  USART Connect/  @LINK@ Connect/' \
                    -e 's/^  Unrecognized device.*again $/  @GONE@/' "$scratch/${one##*/}" >"$one"
                rm -r "$scratch"
                ;;
            *) cram3 --shell=/bin/bash --interactive --yes "$one" || true ;;
        esac
    done
done
git diff --stat -- .
