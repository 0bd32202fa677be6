Every chip that the simulator knows is known by a map, and shows itself:

  $ . "$SETUP"
  $ for chip in $(zv32-sim --list | awk '{print $1}'); do
  >     chip_on $chip
  >     isp -com --pn $PWD/port | grep -v -e Connect -e '^$'
  >     chip_off; rm -f chip.state
  > done

An image that fills the flash to its last byte goes in, is verified, and comes back the same, on one
chip of each sector size and of each length of identifier:

  $ for chip in ZV32F421_64K ZV32F403_2_256K ZV32F407_512K ZV32F437_4032K; do
  >     chip_on $chip
  >     kb=${chip##*_}; head -c $((${kb%K} * 1024)) /dev/urandom > full.bin
  >     isp -com --pn $PWD/port -e --all -d --fn ./full.bin --v -u --fn ./back.bin | tail -1
  >     cmp full.bin back.bin && echo "$chip: equal"
  >     chip_off; rm -f chip.state
  > done

Two families erase nothing by "-d" alone: it ends before anything is sent to the flash. Behind "-e" it
works.

  $ chip_on ZV32F435_448K
  $ head -c 5000 /dev/urandom > part.bin
  $ isp -com --pn $PWD/port -d --fn ./part.bin
  $ isp -com --pn $PWD/port -e --sec 0-2 -d --fn ./part.bin --v
