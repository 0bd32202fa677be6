# Sourced by the transcripts: one simulated chip, and the console as a terminal shows it.

ln -s "$MAPS" Map
trap 'chip_off' EXIT

# chip_on NAME [OPTION...]: starts a simulated chip at ./port and waits until it is ready. Its memory
# is kept in ./chip.state from one start to the next.
chip_on() {
    rm -f sim.out
    zv32-sim --chip "$1" --usart "$PWD/port" --state "$PWD/chip.state" "${@:2}" >sim.out 2>sim.err &
    chip_pid=$!
    until grep -qs ready sim.out; do
        kill -0 $chip_pid 2>/dev/null || { cat sim.out sim.err; return 1; }
        sleep 0.01
    done
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

# isp WORD...: the console without its banner; of a line that is overwritten by carriage returns, what
# stands there in the end. Sleeps are short.
isp() {
    LD_PRELOAD=$BUILD/doubles/libshort_sleep.so ZV32_ISP_Console "$@" | sed -u -e '1,5d' -e 's/.*\r//'
    return "${PIPESTATUS[0]}"
}

# line WORD...: isp on the chip at ./port, without the lines of the connect.
line() {
    isp -com --pn "$PWD/port" "$@" | sed -u -e '1,/^$/d'
    return "${PIPESTATUS[0]}"
}

# pairs: shows the option bytes of a file as value and complement, two bytes a pair, from standard input.
pairs() {
    od -An -v -tx1 -w16 | head -n "${1:-4}"
}
