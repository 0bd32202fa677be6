# Sourced by the transcripts: one simulated chip, and the console as a terminal shows it.

ln -s "$MAPS" Map
trap 'chip_off' EXIT

# chip_on NAME [OPTION...]: starts a simulated chip at ./port and waits until it is ready. Its memory
# is kept in ./chip.state from one start to the next.
chip_on() {
    zv32-sim --chip "$1" --usart "$PWD/port" --state "$PWD/chip.state" "${@:2}" >sim.out 2>sim.err &
    chip_pid=$!
    until grep -q ready sim.out; do
        kill -0 $chip_pid 2>/dev/null || { cat sim.out sim.err; return 1; }
        sleep 0.01
    done
}

# chip_off: takes the chip's power.
chip_off() {
    [ -z "${chip_pid:-}" ] || { kill "$chip_pid" 2>/dev/null; wait "$chip_pid" 2>/dev/null; }
    chip_pid=
}

# isp WORD...: the console without its banner; of a line that is overwritten by carriage returns, what
# stands there in the end.
isp() {
    ZV32_ISP_Console "$@" | sed -u -e '1,5d' -e 's/.*\r//'
    return "${PIPESTATUS[0]}"
}
