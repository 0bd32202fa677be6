#!/bin/sh
# Unmodified candump and cansend on a bus of can-bus: what the shim lets through, and what it refuses.
# usage: can.sh DOUBLES-DIR
set -eu
doubles=$1
command -v candump >/dev/null && command -v cansend >/dev/null || { echo "skipped: no can-utils"; exit 77; }
dir=$(mktemp -d)
cd "$dir"
mkfifo commands
: >heard
"$doubles/can-bus" "$dir/can0" <commands >replies & bus=$!
exec 9>commands
trap 'kill $bus $dump 2>/dev/null || true; rm -rf "$dir"' EXIT
dump=
export CAN_SHIM_DIR="$dir"
on_the_bus() { LD_PRELOAD="$doubles/libcan_shim.so" "$@"; }
# appears COUNT FILE: so many lines are there, within five seconds
appears() {
    for _ in $(seq 500); do
        [ "$(wc -l <"$2")" -ge "$1" ] && return
        sleep 0.01
    done
    echo "not in time: $2"; cat "$2"; exit 1
}
replied=1
tell() { echo "$*" >&9; replied=$((replied + 1)); appears $replied replies; }
appears 1 replies

LD_PRELOAD="$doubles/libcan_shim.so" stdbuf -oL candump can0,100:700,'#FFFFFFFF' >>heard 2>&1 & dump=$!
for _ in $(seq 500); do # candump says nothing when it is ready
    on_the_bus cansend can0 100#
    [ -s heard ] && break
    sleep 0.01
done
appears 1 heard
on_the_bus cansend can0 131#0102030405060708
on_the_bus cansend can0 231#01            # not for this filter
tell frame 20000040#0000000000000000      # bus-off, from nowhere
tell busy 1
on_the_bus cansend can0 132#01 2>>heard && exit 1
tell lose 1
on_the_bus cansend can0 133#01
tell double 1
on_the_bus cansend can0 134#01
on_the_bus cansend can1 135#01 2>>heard && exit 1
tell down
wait $dump || true
on_the_bus cansend can0 136#01 2>>heard && exit 1
grep -v 'can0  100 ' heard | LC_ALL=C sort >sorted
LC_ALL=C sort >expected <<'END'
  can0  131   [8]  01 02 03 04 05 06 07 08
  can0  20000040   [8]  00 00 00 00 00 00 00 00   ERRORFRAME
write: No buffer space available
  can0  134   [1]  01
  can0  134   [1]  01
if_nametoindex: No such device
read: Network is down
write: Network is down
END
diff expected sorted
