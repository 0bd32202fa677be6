A serial-line adapter takes frames faster than the bus carries them. It is never given more than it can
hold: a refused frame would stand in its log.

  $ . "$SETUP"
  $ chip_on ZV32F421_64K --baud-pace
  $ head -c 8192 /dev/urandom > image.bin
  $ for speed in 0 1 3 1000000; do
  >     isp -can --pn $PWD/port --speed $speed -d --fn ./image.bin --v -u --sec 0-7 --fn ./back.bin | tail -1
  >     cmp image.bin back.bin
  >     kill -USR1 $chip_pid; sleep 0.1
  > done
  Upload successfully!
  Upload successfully!
  Upload successfully!
  Upload successfully!
  $ grep -v '^refused: adapter: "C": the channel is closed' sim.err
  [1]
