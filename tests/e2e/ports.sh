# Sourced with the name of a link: how the simulated chip and the console are told of it.
#
# port_option  the simulator's words      port_words  the console's words
# port_env     what stands before a program that is to find the port; set anew by find_port
# quick        words for a short time limit, where the link takes them
# sim_env      what stands before the simulator
# bus_on, bus_off  what has to run beside the chip

# find_port [LIBRARY]: sets port_env; LIBRARY is to be preloaded besides.
find_port() {
    port_env=(env ${1:+LD_PRELOAD="$1"})
}
quick=()
sim_env=(env)
bus_on() { :; }
bus_off() { :; }

# Emulated nodes live in a directory that the simulator makes, $nodes.
find_nodes() {
    port_env=(env UMOCKDEV_DIR="$nodes" LD_PRELOAD="libumockdev-preload.so.0${1:+:$1}")
}

case "$1" in
    usart)
        port_option=(--usart "$PWD/port")
        port_words=(-com --pn "$PWD/port")
        quick=(--to 1)
        ;;
    tty)
        port_option=(--tty ttyUSB0)
        port_words=(-com --pn ttyUSB0)
        find_port() { find_nodes "$@"; }
        ;;
    dfu)
        port_option=(--dfu)
        port_words=(-dfu)
        export RESTART_SPEED=5
        find_port() { find_nodes "$@"; }
        ;;
    i2c)
        port_option=(--i2c i2c-1)
        port_words=(-i2c --pn i2c-1)
        find_port() { find_nodes "$@"; }
        ;;
    spi)
        port_option=(--spi spidev0.0)
        port_words=(-spi --pn spidev0.0)
        find_port() { find_nodes "$@"; }
        ;;
    slcan)
        port_option=(--slcan "$PWD/port")
        # The library gives an adapter no more than the bus can carry, so a fast bus.
        port_words=(-can --pn "$PWD/port" --speed 1000000)
        ;;
    can)
        port_option=(--can can0)
        port_words=(-can --pn can0)
        # bus_rate: frames take their time, so many bits a second; not without it.
        bus_rate=
        # Opened for both directions, so that the bus never sees the end of its commands.
        bus_on() {
            [ -z "${bus_pid:-}" ] || return 0
            mkdir bus; mkfifo bus/commands
            "$BUILD/doubles/can-bus" "$PWD/bus/can0" $bus_rate <>bus/commands >bus/out &
            bus_pid=$!
            until grep -qs ready bus/out; do sleep 0.01; done
        }
        # bus_told COMMAND: as on its standard input
        bus_told() { echo "$*" >bus/commands; }
        bus_off() { [ -z "${bus_pid:-}" ] || kill "$bus_pid"; }
        shim=$BUILD/doubles/libcan_shim.so
        sim_env=(env CAN_SHIM_DIR="$PWD/bus" LD_PRELOAD="$shim")
        find_port() {
            port_env=(env CAN_SHIM_DIR="$PWD/bus" LD_PRELOAD="$shim${1:+:$1}")
        }
        ;;
    *)
        echo "no link \"$1\"" >&2
        return 1
        ;;
esac
