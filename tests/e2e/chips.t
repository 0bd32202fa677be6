Every chip that the simulator knows is known by a map, and shows itself:

  $ . "$SETUP"
  $ for chip in $(zv32-sim --list | awk '{print $1}'); do
  >     chip_on $chip
  >     isp -com --pn $PWD/port | grep -v -e Connect -e '^$'
  >     chip_off; rm -f chip.state
  > done
  Device:  ZV32F403_1    Flash:  1024 KB
  PID:  70050341      BID:  0003    Version:  2.0
  Device connected Successfully
  Device:  ZV32F403_2    Flash:  256 KB
  PID:  0242      BID:  NA    Version:  1.0
  Device connected Successfully
  Device:  ZV32F413    Flash:  256 KB
  PID:  70030244      BID:  1301    Version:  2.1
  Device connected Successfully
  Device:  ZV32F403A    Flash:  1024 KB
  PID:  70050347      BID:  1234    Version:  2.1
  Device connected Successfully
  Device:  ZV32F407    Flash:  512 KB
  PID:  700502C8      BID:  0102    Version:  2.1
  Device connected Successfully
  Device:  ZV32F415    Flash:  256 KB
  PID:  70030245      BID:  4602    Version:  2.2
  Device connected Successfully
  Device:  ZV32F415    Flash:  128 KB
  PID:  700301C5      BID:  4601    Version:  2.2
  Device connected Successfully
  Device:  ZV32WB415    Flash:  256 KB
  PID:  70041251      BID:  4701    Version:  2.2
  Device connected Successfully
  Device:  ZV32F421    Flash:  64 KB
  PID:  50020109      BID:  0201    Version:  2.0
  Device connected Successfully
  Device:  ZV32F425    Flash:  64 KB
  PID:  5009010F      BID:  2501    Version:  2.0
  Device connected Successfully
  Device:  ZV32L021    Flash:  64 KB
  PID:  10010110      BID:  2102    Version:  2.0
  Device connected Successfully
  Device:  ZV32M412    Flash:  256 KB
  PID:  50042259      BID:  4102    Version:  2.0
  Device connected Successfully
  Device:  ZV32F405    Flash:  256 KB
  PID:  70053253      BID:  4005    Version:  2.0
  Device connected Successfully
  Device:  ZV32F457    Flash:  1024 KB
  PID:  70016350      BID:  4507    Version:  2.0
  Device connected Successfully
  Device:  ZV32F435    Flash:  4032 KB
  PID:  70084540      BID:  4305    Version:  2.1
  Device connected Successfully
  Device:  ZV32F435    Flash:  448 KB
  PID:  70084583      BID:  4305    Version:  2.1
  Device connected Successfully
  Device:  ZV32F437    Flash:  4032 KB
  PID:  70083541      BID:  4307    Version:  2.1
  Device connected Successfully
  Device:  ZV32F437    Flash:  1024 KB
  PID:  70083342      BID:  4307    Version:  2.1
  Device connected Successfully
  Device:  ZV32F422    Flash:  64 KB
  PID:  5008111F      BID:  4202    Version:  2.0
  Device connected Successfully

An image that fills the flash to its last byte goes in, is verified, and comes back the same, on one
chip of each sector size and of each length of identifier:

  $ for chip in ZV32F421_64K ZV32F403_2_256K ZV32F407_512K ZV32F437_4032K; do
  >     chip_on $chip
  >     kb=${chip##*_}; head -c $((${kb%K} * 1024)) /dev/urandom > full.bin
  >     line -e --all -d --fn ./full.bin --v -u --fn ./back.bin | tail -1
  >     cmp full.bin back.bin && echo "$chip: equal"
  >     chip_off; rm -f chip.state
  > done
  Upload successfully!
  ZV32F421_64K: equal
  Upload successfully!
  ZV32F403_2_256K: equal
  Upload successfully!
  ZV32F407_512K: equal
  Upload successfully!
  ZV32F437_4032K: equal

Two families erase nothing by "-d" alone: it ends before anything is sent to the flash. Behind "-e" it
works.

  $ chip_on ZV32F435_448K
  $ head -c 5000 /dev/urandom > part.bin
  $ line -d --fn ./part.bin
  
  Unknown error!
  [3]
  $ line -e --sec 0-2 -d --fn ./part.bin --v
  Erase
  Running...100%
  Erase successfully!
  Download
  ./part.bin     5000B
  Running...100%
  Verify
  ./part.bin     5000B
  Running...100%
  Download successfully!
