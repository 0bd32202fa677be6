The SPI flash behind the chip: 16 MB from 08400000.

  $ . "$SETUP"
  $ chip_on ZV32F403A_1024K
  /work/main/tests/e2e/setup.sh: line 10: zv32-sim: command not found
  [1]
  $ head -c 10000 /dev/urandom > data.bin

  $ line -d --fn ./data.bin --addr 08400000
  /work/main/tests/e2e/setup.sh: line 34: ZV32_ISP_Console: command not found
  [127]
  $ line -enspim --ft 1 --fs 16 -d --fn ./data.bin --addr 08400000 --v
  /work/main/tests/e2e/setup.sh: line 34: ZV32_ISP_Console: command not found
  [127]
  $ line -enspim --ft 1 --fs 16 -u --sec 32768-32770 --fn ./back.bin
  /work/main/tests/e2e/setup.sh: line 34: ZV32_ISP_Console: command not found
  [127]
  $ cmp -n 10000 data.bin back.bin && echo equal
  cmp: back.bin: No such file or directory
  [2]
  $ line -enspim --ft 1 --fs 16 -e --sec 32769-32769 -u --sec 32768-32770 --fn ./back.bin
  /work/main/tests/e2e/setup.sh: line 34: ZV32_ISP_Console: command not found
  [127]
  $ cmp data.bin back.bin | cut -d, -f1
  cmp: back.bin: No such file or directory
  $ line -enspim --ft 1 --fs 16 -e --all -u --sec 32768-32768 --fn ./back.bin
  /work/main/tests/e2e/setup.sh: line 34: ZV32_ISP_Console: command not found
  [127]
  $ tr -d '\377' < back.bin | wc -c
  /bin/bash: line 22: back.bin: No such file or directory
  0

Type 2, remap, an address where encryption begins:

  $ line -enspim --ft 2 --fs 8 --remap 1 --fda 08000000
  /work/main/tests/e2e/setup.sh: line 34: ZV32_ISP_Console: command not found
  [127]
  $ line -enspim --ft 2 --fs 8 --fda 100000
  /work/main/tests/e2e/setup.sh: line 34: ZV32_ISP_Console: command not found
  [127]

A size of 0, which is what no size and a trailing "--fs" are, is all that the board has. The range test of
a download does not know it:

  $ line -enspim
  /work/main/tests/e2e/setup.sh: line 34: ZV32_ISP_Console: command not found
  [127]
  $ line -enspim --fs
  /work/main/tests/e2e/setup.sh: line 34: ZV32_ISP_Console: command not found
  [127]
  $ line -enspim -d --fn ./data.bin --addr 08400000
  /work/main/tests/e2e/setup.sh: line 34: ZV32_ISP_Console: command not found
  [127]

What does not fit:

  $ line -enspim --fs 32
  /work/main/tests/e2e/setup.sh: line 34: ZV32_ISP_Console: command not found
  [127]
  $ line -enspim --fda
  /work/main/tests/e2e/setup.sh: line 34: ZV32_ISP_Console: command not found
  [127]
  $ line -enspim --ft 1 --fs 1 -d --fn ./data.bin --addr 084FFFFF
  /work/main/tests/e2e/setup.sh: line 34: ZV32_ISP_Console: command not found
  [127]
  $ line -enspim foo
  /work/main/tests/e2e/setup.sh: line 34: ZV32_ISP_Console: command not found
  [127]

A family without the four that know sectors of SPIM:

  $ chip_new ZV32F457_1024K
  /work/main/tests/e2e/setup.sh: line 10: zv32-sim: command not found
  [1]
  $ line -enspim --ft 1 --fs 16 -e --sec 0-1
  /work/main/tests/e2e/setup.sh: line 34: ZV32_ISP_Console: command not found
  [127]
  $ line -enspim --ft 1 --fs 16 -d --fn ./data.bin --addr 08400000 --v
  /work/main/tests/e2e/setup.sh: line 34: ZV32_ISP_Console: command not found
  [127]

With SPIM, a ZV32F403 enables it a second time behind its restart:

  $ chip_new ZV32F403_1_1024K
  /work/main/tests/e2e/setup.sh: line 10: zv32-sim: command not found
  [1]
  $ line -enspim --ft 1 --fs 16 -d --fn ./data.bin --addr 08400000 --v
  /work/main/tests/e2e/setup.sh: line 34: ZV32_ISP_Console: command not found
  [127]

A chip without SPIM:

  $ chip_new ZV32F421_64K
  /work/main/tests/e2e/setup.sh: line 10: zv32-sim: command not found
  [1]
  $ line -enspim --ft 1 --fs 16
  /work/main/tests/e2e/setup.sh: line 34: ZV32_ISP_Console: command not found
  [127]
