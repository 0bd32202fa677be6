#!/bin/bash
# Installs what is missing, builds, and programs a simulated chip with a real firmware image over a
# serial line: erase, download with verify, read back, compare. It works in build/try, and leaves there what README.md
# goes on with.
set -eu
cd "$(dirname "$0")"
root=$PWD

echo "== 1 of 4: packages"
tools/install-packages.sh build

echo "== 2 of 4: build; what cmake and the compiler say goes into build/release.log"
# Not the tests: what they need is not installed here. Any other configuring switches them on again.
tools/build.sh release -DBUILD_TESTING=OFF --target ZV32_ISP_Console zv32-sim zv32-look

chip=
trap '[ -z "$chip" ] || kill "$chip" 2>/dev/null' EXIT

# The console looks for ./Map/ in the directory that it is started from.
work=$root/build/try
mkdir -p "$work"
cd "$work"
ln -sfn ../../Map Map
rm -f back.bin
export PATH="$root/build/release/bin:$PATH"

echo "== 3 of 4: program a simulated ZV32F403A, at 460800 baud and with a flash that takes its time, and verify"
zv32-sim --chip ZV32F403A_1024K --usart "$work/port" --baud-pace --flash-time >sim.out &
chip=$!
until grep -q ready sim.out; do
    kill -0 "$chip"
    sleep 0.05
done

"$root/tools/make-image.sh" firmware.hex
"$root/tools/make-image.sh" firmware.bin

ZV32_ISP_Console -com --pn "$work/port" --br 460800 -d --fn "$work/firmware.hex" --v

echo "== 4 of 4: read it back and compare"
sectors=$((($(stat -c %s firmware.bin) + 2047) / 2048))
ZV32_ISP_Console -com --pn "$work/port" --br 460800 -u --sec "0-$((sectors - 1))" --fn "$work/back.bin"
# The last sector is read whole: after the image stands erased flash.
cmp -n "$(stat -c %s firmware.bin)" firmware.bin back.bin
echo "equal: $(stat -c %s firmware.bin) bytes, $(sha256sum <firmware.bin | cut -c1-16)"

cat <<TEXT

== done
the programs:         $root/build/release/bin (ZV32_ISP_Console, zv32-sim, zv32-look)
a place to try them:  $work (Map, firmware.hex, firmware.bin)

Next, "A first session" in README.md. It begins with
    export PATH="$root/build/release/bin:$root/tools:\$PATH"
    cd "$work"
TEXT
