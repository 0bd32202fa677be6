#!/bin/bash
# Runs one transcript, or the console blocks of one page of the documentation.
#
# usage: run.sh SOURCE-DIR BUILD-DIR FILE.t|FILE.md   (LINK: at which link the chip sits, usart without)
set -eu
here=$(cd "$(dirname "$0")" && pwd)
. "$here/environment.sh" "$1" "$2"
file=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export TMPDIR=$scratch
case "$file" in
    *.md)
        python3 "$here/blocks.py" "$file" >"$scratch/$(basename "$file" .md).t"
        file=$scratch/$(basename "$file" .md).t
        ;;
    *)  # cram leaves FILE.err beside a transcript that failed: not in the source tree
        "$here/for_link.sh" "$file" >"$scratch/$(basename "$file")"
        file=$scratch/$(basename "$file")
        ;;
esac
cram3 --shell=/bin/bash "$file"
