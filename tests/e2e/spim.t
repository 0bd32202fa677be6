The SPI flash behind the chip: 16 MB from 08400000.

  $ . "$SETUP"
  $ chip_on ZV32F403A_1024K
  $ head -c 10000 /dev/urandom > data.bin

  $ line -d --fn ./data.bin --addr 08400000
  $ line -enspim --ft 1 --fs 16 -d --fn ./data.bin --addr 08400000 --v
  $ line -enspim --ft 1 --fs 16 -u --sec 32768-32770 --fn ./back.bin
  $ cmp -n 10000 data.bin back.bin && echo equal
  $ line -enspim --ft 1 --fs 16 -e --sec 32769-32769 -u --sec 32768-32770 --fn ./back.bin
  $ cmp data.bin back.bin | head -1
  $ line -enspim --ft 1 --fs 16 -e --all -u --sec 32768-32768 --fn ./back.bin
  $ tr -d '\377' < back.bin | wc -c

Type 2, remap, an address where encryption begins:

  $ line -enspim --ft 2 --fs 8 --remap 1 --fda 08000000
  $ line -enspim --ft 2 --fs 8 --fda 100000

What does not fit:

  $ line -enspim
  $ line -enspim --fs 32
  $ line -enspim --fs
  $ line -enspim --fda
  $ line -enspim --ft 1 --fs 1 -d --fn ./data.bin --addr 084FFFFF
  $ line -enspim foo

A family without the four that know sectors of SPIM:

  $ chip_new ZV32F457_1024K
  $ line -enspim --ft 1 --fs 16 -e --sec 0-1
  $ line -enspim --ft 1 --fs 16 -d --fn ./data.bin --addr 08400000 --v

With SPIM, a ZV32F403 enables it a second time behind its restart:

  $ chip_new ZV32F403_1_1024K
  $ line -enspim --ft 1 --fs 16 -d --fn ./data.bin --addr 08400000 --v

A chip without SPIM:

  $ chip_new ZV32F421_64K
  $ line -enspim --ft 1 --fs 16
