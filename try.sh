#!/bin/bash
# Installs what is missing, builds, and programs a simulated chip with a real firmware image over a
# serial line: erase, download with verify, read back, compare.
set -eu
cd "$(dirname "$0")"
root=$PWD

tools/install-packages.sh build

echo "== build"
# Not the tests: what they need is not installed here. Any other configuring switches them on again.
tools/build.sh release -DBUILD_TESTING=OFF --target ZV32_ISP_Console zv32-sim

work=$(mktemp -d)
chip=
trap '[ -z "$chip" ] || kill "$chip" 2>/dev/null; rm -rf "$work"' EXIT

# The console looks for ./Map/ in the directory that it is started from.
cd "$work"
ln -s "$root/Map" Map
export PATH="$root/build/release/bin:$PATH"

echo "== a simulated ZV32F403A, at 460800 baud and with a flash that takes its time"
zv32-sim --chip ZV32F403A_1024K --usart "$work/port" --baud-pace --flash-time >sim.out &
chip=$!
until grep -q ready sim.out; do
    kill -0 "$chip"
    sleep 0.05
done

"$root/tools/make-image.sh" firmware.hex
"$root/tools/make-image.sh" firmware.bin

echo "== program it and verify"
ZV32_ISP_Console -com --pn "$work/port" --br 460800 -d --fn "$work/firmware.hex" --v

echo "== read it back and compare"
sectors=$((($(stat -c %s firmware.bin) + 2047) / 2048))
ZV32_ISP_Console -com --pn "$work/port" --br 460800 -u --sec "0-$((sectors - 1))" --fn "$work/back.bin"
# The last sector is read whole: after the image stands erased flash.
cmp -n "$(stat -c %s firmware.bin)" firmware.bin back.bin
echo "equal: $(stat -c %s firmware.bin) bytes, $(sha256sum <firmware.bin | cut -c1-16)"
