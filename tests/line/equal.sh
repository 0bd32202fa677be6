#!/bin/bash
# The same job by zv32-line and by the console, each on a chip of its own: afterwards the two chips are equal, cell by
# cell, option bytes and protection included. Also what stands in a chip beforehand is the same for both.
#
# usage: equal.sh SOURCE-DIR BUILD-DIR CHIP...|all|everywhere   (LINK)
#   all         every chip that has a map
#   everywhere  every chip over a serial line, and one of each layout of option bytes over each other link
set -u
set -- "$(realpath "$1")" "$(realpath "$2")" "${@:3}"
. "$1/tests/e2e/environment.sh" "$1" "$2" || exit 1
link=${LINK:-usart}
chips=("${@:3}")
if [ "${chips[*]}" = everywhere ]; then
    failed=0
    LINK=usart "$0" "$1" "$2" all || failed=1
    for other in dfu i2c can slcan spi; do
        LINK=$other "$0" "$1" "$2" ZV32F{403A_256K,415_256K,421_64K,457_256K,435_448K,426_64K} || failed=1
    done
    exit "$failed"
fi
if [ "${chips[*]}" = all ]; then
    chips=()
    for map in "$MAPS"/*.ZVmap; do
        map=${map##*/}
        chips+=("${map%.ZVmap}")
    done
fi
export ZV32_MAP_DIR=$MAPS
short=$BUILD/doubles/libshort_sleep.so
failed=0
compared=0 # an error of this script itself would end the loop in the middle

fail() {
    echo "$chip over $link: $*"
    failed=1
    return 1
}

# Runs the words on the chip by the console.
console() {
    line "$@" >out || fail "console: $*: $(tail -n 1 out)"
}

by_console() {
    chip_on "$chip" 2>&1 || return 1
    # Two families take an image only after an erase on the same line.
    console -e --sec 0-2 --sec "$last-$last" -d --fn ./fw.hex --v &&
        console -usd --get --fn ./options.bin || return 1
    printf '\x5a\xa5' | dd of=options.bin bs=1 seek=6 conv=notrunc status=none
    console -usd --set --fn ./options.bin || return 1
    near zv32-look options "${port_words[@]}" --toml >options.toml || fail "options" || return 1
    console -p --eepp 4-5 && console -p --efap
    chip_off
}

by_line() {
    printf 'format = 1\nname = "equal"\nquantity = 1\n[chip]\nname = "%s"\n[image]\nfile = "fw.hex"\nverify = "crc"\n' \
        "$chip" >job.toml
    { cat options.toml; echo 'protect = "4-5"'; printf '[finish]\naccess = "on"\n'; } >>job.toml
    LD_PRELOAD=$short zv32-line rehearse job.toml --keep "$PWD/chip.state" >out || fail "zv32-line: $(tail -n 1 out)"
}

# The same over any link: the order that zv32-line gives, by hand.
by_unit() {
    local options port
    options=$(python3 -c 'import json, tomllib, sys
print(json.dumps({key + number: value for key, list in tomllib.load(open("options.toml", "rb"))["options"].items()
    for number, value in (list.items() if isinstance(list, dict) else [("", list)])}))')
    case $link in dfu) port=1-1 ;; i2c) port=/dev/i2c-1 ;; spi) port=/dev/spidev0.0 ;; can) port=can0 ;; *) port=$PWD/port ;; esac
    chip_on "$chip" && find_port "$short"
    "$ROOT/tests/line/unit.py" "$link" "$port" "$chip" --image start.bin@08000000 --image "end.bin@$end" \
        "sectors=[0,1,2,$last]" "options=$options" 'protect=[4,5]' 'access="on"' \
        -- "${port_env[@]}" "$BUILD/libexec/zv32-unit" >out || fail "zv32-unit: $(tail -n 1 out)"
    [ "$(tail -n 1 out)" = pass ] || fail "zv32-unit: $(tail -n 1 out)"
    chip_off
}

for chip in "${chips[@]}"; do
    [ -f "$MAPS/$chip.ZVmap" ] || fail "no map" || continue
    scratch=$(mktemp -d)
    cd "$scratch" || exit 1
    . "$SETUP" || exit 1
    trap 'chip_off; bus_off; rm -rf "$scratch"' EXIT
    flash=$(sed 's/.*_\([0-9]*\)K$/\1/' <<<"$chip")
    size=$(sed -n 's/^Size=//p' "$MAPS/$chip.ZVmap" | head -n 1)
    last=$((flash * 1024 / 16#$size - 1))
    end=$(printf %08X $((0x08000000 + flash * 1024 - 100)))
    head -c $((2 * 16#$size + 300)) /dev/urandom >start.bin
    head -c 100 /dev/urandom >end.bin
    srec_cat start.bin -binary -offset 0x08000000 end.bin -binary -offset "0x$end" -o fw.hex -intel
    if by_console; then
        mv chip.state console.state
        if [ "$link" = usart ]; then by_line; else by_unit; fi
        cmp chip.state console.state || fail "the chips differ"
        compared=$((compared + 1))
    else
        failed=1
    fi
    chip_off
    bus_off
    bus_pid=
    cd / && rm -rf "$scratch"
done
[ "$failed" != 0 ] || [ "$compared" = "${#chips[@]}" ] || { echo "only $compared chips were compared"; failed=1; }
[ "$failed" != 0 ] || echo "equal over $link: ${#chips[@]} chips"
exit "$failed"
