#!/bin/sh
# Makes a program image at the chip's flash out of a real firmware that Debian ships (MicroPython for
# another microcontroller, linked to address 0): 243,852 bytes from 0x08000000.
#
# usage: tools/make-image.sh FILE.hex|FILE.bin|FILE.s19
set -eu
source=/usr/share/firmware-microbit-micropython/firmware.hex
at_flash="$source -intel -crop 0 0x10000000 -offset 0x08000000"
case "$1" in
    *.hex) srec_cat $at_flash -o "$1" -intel -line-length=44 ;;
    *.s19) srec_cat $at_flash -o "$1" -motorola -header "firmware" ;;
    *.bin) srec_cat $source -intel -crop 0 0x10000000 -o "$1" -binary ;;
    *) echo "usage: $0 FILE.hex|FILE.bin|FILE.s19" >&2; exit 2 ;;
esac
