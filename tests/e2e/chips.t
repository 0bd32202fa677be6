One chip of each layout and of each length of identifier shows itself. tests/matrix does this, and much
more, with every chip.

  $ . "$SETUP"
  $ for chip in ZV32F403_2_256K ZV32F403A_1024K ZV32F415_128K ZV32L021_64K ZV32F457_1024K ZV32F437_4032K ZV32F422_64K; do
  >     chip_on $chip
  >     isp -com --pn $PWD/port | grep -v -e Connect -e connected -e '^$'
  >     chip_off; rm -f chip.state
  > done
  Device:  ZV32F403_2    Flash:  256 KB
  PID:  0242      BID:  NA    Version:  1.0
  Device:  ZV32F403A    Flash:  1024 KB
  PID:  70050347      BID:  1234    Version:  2.1
  Device:  ZV32F415    Flash:  128 KB
  PID:  700301C5      BID:  4601    Version:  2.2
  Device:  ZV32L021    Flash:  64 KB
  PID:  10010110      BID:  2102    Version:  2.0
  Device:  ZV32F457    Flash:  1024 KB
  PID:  70016350      BID:  4507    Version:  2.0
  Device:  ZV32F437    Flash:  4032 KB
  PID:  70083541      BID:  4307    Version:  2.1
  Device:  ZV32F422    Flash:  64 KB
  PID:  5008111F      BID:  4202    Version:  2.0

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
