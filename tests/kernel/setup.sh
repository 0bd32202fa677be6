# Sourced by the transcripts with the name of a port on a stock kernel: what those of tests/e2e have, with
# the chip there.
#
# usage: . setup.sh pty

. "$SETUP"

case "$1" in
    pty) ;; # the same as without a kernel of our own
    *)
        echo "no port \"$1\"" >&2
        return 1
        ;;
esac

# small_image: writes ./small.bin, 8 KB in which no two packets are equal.
small_image() {
    seq 100000 101170 | head -c 8192 >small.bin
}
