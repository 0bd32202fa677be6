  $ . "$SETUP"
  $ chip_on ZV32F403A_1024K
  /work/main/tests/e2e/setup.sh: line 9: zv32-sim: command not found
  [1]
  $ head -c 8192 /dev/zero | tr '\0' 'Z' > four.bin
  $ line -d --fn ./four.bin
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]

Sectors 1 and 2 of the four that hold the image:

  $ line -e --sec 1-2 -u --sec 0-3 --fn ./back.bin
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ od -Ax -tx1 back.bin
  od: back.bin: No such file or directory
  [1]

A lone number is a range only when it is 0; anything else is refused, and nothing is erased:

  $ line -e --sec 3
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ line -e --sec 3-1
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ line -e --sec 0-99999
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ line -e --sec 511-512
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ line -e --bogus
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]

The last sector, and several ranges in one word:

  $ line -e --sec 511-511 --sec 0-0
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]

Nothing behind "--sec" is sector 0:

  $ line -e --sec
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]

"-e" alone erases nothing:

  $ line -e -u --sec 3-3 --fn ./back.bin
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ od -Ax -tx1 back.bin
  od: back.bin: No such file or directory
  [1]

Everything, in two banks:

  $ line -e --all
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ line -u --fn ./back.bin
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ od -Ax -tx1 back.bin
  od: back.bin: No such file or directory
  [1]

Without a connection word there is nothing to erase:

  $ isp -e --all
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
