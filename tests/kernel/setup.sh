# Sourced by the transcripts with the name of a port on a stock kernel: what those of tests/e2e have, with
# the chip there.
#
# usage: . setup.sh pty|vcan|slcan|dfu|acm|i2c

. "$SETUP"

case "$1" in
    pty) ;; # the same as without a kernel of our own
    vcan)
        port_option=(--can vcan0)
        port_words=(-can --pn vcan0)
        ip link add vcan0 type vcan
        ip link set vcan0 up
        ;;
    slcan)
        # A network interface in front of the adapter's tty.
        port_option=(--slcan "$PWD/adapter")
        port_words=(-can --pn can0)
        ;;
    dfu)
        port_option=(--vhci-dfu)
        port_words=(-dfu)
        ;;
    acm)
        port_option=(--vhci-acm)
        port_words=(-com --pn ttyACM0)
        ;;
    i2c)
        port_option=(--vhci-i2c)
        port_words=(-i2c --pn i2c-0)
        ;;
    *)
        echo "no port \"$1\"" >&2
        return 1
        ;;
esac

# Nothing is preloaded: the programs are as they are, and wait as long as they do.
find_port() { port_env=(env); }

# by_nobody WORD...: isp, by a user who may nothing; what the library has remarked is in ./remarks.
by_nobody() {
    mkdir -p -m 777 /run/nobody && ln -sfn "$MAPS" /run/nobody/Map && rm -f /run/nobody/trace
    isp_by_nobody "$@"
    local status=$?
    sed -n 's/^[^ ]* \([^ ]* #\)/\1/p' /run/nobody/trace >remarks
    return $status
}
isp_by_nobody() (
    cd /run/nobody
    find_port() { port_env=(env ZVBL_TRACE=trace setpriv --reuid=65534 --regid=65534 --clear-groups); }
    isp "$@"
)

# small_image: writes ./small.bin, 8 KB in which no two packets are equal.
small_image() {
    seq 100000 101170 | head -c 8192 >small.bin
}

# there_and_back: downloads it, verifies, uploads, compares.
there_and_back() {
    small_image
    line -d --fn ./small.bin --addr 08000000 --v
    line -u --sec 0-3 --fn ./back.bin
    cmp small.bin back.bin && echo equal
}
