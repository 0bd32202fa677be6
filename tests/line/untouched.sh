#!/bin/bash
# check opens nothing but regular files, to read them, and changes nothing.
#
# usage: untouched.sh PROGRAM MAPS
set -eu
export ZV32_MAP_DIR=$2 ASAN_OPTIONS=detect_leaks=0 # which is no friend of strace
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
printf 'abcd' >fw.bin
ln -s /dev/null device.bin
mkfifo fifo.bin
for file in fw.bin device.bin fifo.bin; do
    printf 'format = 1\nname = "a"\nquantity = 1\n[chip]\nname = "ZV32F403A_1024K"\n[image]\nfile = "%s"\nverify = "crc"\n' \
        "$file" >job.toml
    status=0
    strace -f -o trace -e trace=desc,file,network "$1" check job.toml >told 2>&1 || status=$?
    [ "$status" = "$([ $file = fw.bin ] && echo 0 || echo 2)" ] || { cat told; exit 1; }
    grep -q 'job.toml' trace || { echo "nothing traced"; exit 1; }
    # Only the answer is written. A sanitizer looks at memory by writing it into a pipe of its own.
    pipes=$(sed -nE 's/.*pipe2?\(\[[0-9]+, ([0-9]+)\].*/|\1/p' trace | sort -u | tr -d '\n')
    if grep -E 'O_(WRONLY|RDWR|CREAT|TRUNC)|/dev/|open.*(device|fifo)\.bin|socket|unlink|rename|mkdir|creat\(|f?chmod|ftruncate' trace ||
        grep -E '\bp?writev?[0-9]*\(' trace | grep -vE "write\((1|2$pipes),"; then
        exit 1
    fi
done
[ "$(ls)" = "$(printf 'device.bin\nfifo.bin\nfw.bin\njob.toml\ntold\ntrace')" ]
