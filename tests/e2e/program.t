A real image of 243,852 bytes, in the three kinds of file, through the whole road: erase, write,
verify, read back. The image comes out of srec_cat, which has never seen our file library.

  $ . "$SETUP"
  $ chip_on ZV32F403A_1024K
  /work/main/tests/e2e/setup.sh: line 9: zv32-sim: command not found
  [1]
  $ make-image.sh firmware.hex; make-image.sh firmware.bin; make-image.sh firmware.s19
  $ stat -c %s firmware.bin
  243852

  $ line -d --fn ./firmware.hex --v
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ line -u --sec 0-119 --fn ./back.bin
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ cmp -n 243852 firmware.bin back.bin && echo equal
  cmp: back.bin: No such file or directory
  [2]

Behind the image the last sector is erased:

  $ tail -c +243853 back.bin | tr -d '\377' | wc -c
  tail: cannot open 'back.bin' for reading: No such file or directory
  0

The same as S-record and as binary, onto flash that holds the image already:

  $ line -d --fn ./firmware.s19 --v
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ line -d --fn ./firmware.bin --addr 08000000 --v --o
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ line -u --sec 0-119 --fn ./back.hex
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ line -u --sec 0-119 --fn ./back.srec
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ srec_cat back.hex -intel -crop 0x08000000 0x0803b88c -offset -0x08000000 -o from-hex.bin -binary
  srec_cat: back.hex: open: No such file or directory
  [1]
  $ cmp firmware.bin from-hex.bin && echo equal
  cmp: from-hex.bin: No such file or directory
  [2]
  $ objcopy -I srec -O binary back.srec from-srec.bin
  objcopy: 'back.srec': No such file
  [1]
  $ cmp -n 243852 firmware.bin from-srec.bin && echo equal
  cmp: from-srec.bin: No such file or directory
  [2]

What was read back can be programmed again:

  $ line -e --all -d --fn ./back.hex --v
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]

The chip remembers without power:

  $ chip_off
  $ chip_on ZV32F403A_1024K
  /work/main/tests/e2e/setup.sh: line 9: zv32-sim: command not found
  [1]
  $ line -u --fn ./all.bin
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ stat -c %s all.bin
  stat: cannot statx 'all.bin': No such file or directory
  [1]
  $ cmp -n 243852 firmware.bin all.bin && echo equal
  cmp: all.bin: No such file or directory
  [2]
