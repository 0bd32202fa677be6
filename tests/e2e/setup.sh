# Sourced by the transcripts: one simulated chip, and the console as a terminal shows it. LINK tells at
# which link the chip sits: usart, dfu, i2c, can, slcan or spi.

ln -s "$MAPS" Map
trap 'chip_off; bus_off' EXIT
. "$ROOT/tests/e2e/ports.sh" "${LINK:-usart}"

# chip_on NAME [OPTION...]: starts a simulated chip and waits until it is ready. Its memory is kept in
# ./chip.state from one start to the next.
chip_on() {
    bus_on || return 1
    rm -f sim.out
    "${sim_env[@]}" zv32-sim --chip "$1" "${port_option[@]}" --state "$PWD/chip.state" "${@:2}" >sim.out 2>sim.err &
    chip_pid=$!
    until grep -qs ready sim.out; do
        kill -0 $chip_pid 2>/dev/null || { cat sim.out sim.err; return 1; }
        sleep 0.01
    done
    # After the name of an emulated node stands the directory that it lives in.
    nodes=$(sed -n '1s/^ready [^ ]* *//p' sim.out)
}

# board_on WIRING NAME [OPTION...]: the same on a board whose pins are wired to DTR and RTS of a serial
# port, as --wiring tells; "" for not at all.
board_on() {
    . "$ROOT/tests/e2e/ports.sh" tty
    chip_on "$2" ${1:+--wiring "$1"} "${@:3}"
}

# chip_off: takes the chip's power.
chip_off() {
    [ -z "${chip_pid:-}" ] || { kill "$chip_pid" 2>/dev/null; wait "$chip_pid" 2>/dev/null; }
    chip_pid=
}

# chip_new NAME [OPTION...]: another chip, fresh from the factory, in the place of this one.
chip_new() {
    chip_off
    rm -f chip.state
    chip_on "$@"
}

# replugged: waits until a chip that was unplugged by a fault is back.
replugged() {
    until [ "$(grep -c ready sim.out)" = 2 ]; do sleep 0.01; done
}

# press_reset: the reset button; the chip has started after it.
press_reset() {
    kill -USR1 $chip_pid
    sleep 0.3 # a busy machine is late
}

# near WORD...: a program that finds the port.
near() {
    find_port
    "${port_env[@]}" "$@"
}

# isp WORD...: the console without its banner; of a line that is overwritten by carriage returns, what
# stands there in the end. Sleeps are short.
isp() {
    find_port "$BUILD/doubles/libshort_sleep.so"
    "${port_env[@]}" ZV32_ISP_Console "$@" | sed -u -e '1,5d' -e 's/.*\r//'
    return "${PIPESTATUS[0]}"
}

# line WORD...: isp on the chip, without the lines of the connect.
line() {
    isp "${port_words[@]}" "$@" | sed -u -e '1,/^$/d'
    return "${PIPESTATUS[0]}"
}

# changed FILE FILE: the option bytes that differ between two files, by their number in the chip, each as value and
# complement.
changed() {
    paste -d ' ' <(od -An -v -tx1 -w2 "$1") <(od -An -v -tx1 -w2 "$2") |
        awk '$1 != $3 || $2 != $4 { print NR - 1 ": " $1 " " $2 " -> " $3 " " $4 }'
}
