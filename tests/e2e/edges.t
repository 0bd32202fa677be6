Words without a chip.

  $ . "$SETUP"

  $ ZV32_ISP_Console | head -8
  /bin/bash: line 4: ZV32_ISP_Console: command not found
  $ ZV32_ISP_Console '-?' | cmp - <(ZV32_ISP_Console) && echo the same
  /bin/bash: line 6: ZV32_ISP_Console: command not found
  /bin/bash: line 6: ZV32_ISP_Console: command not found
  the same
  $ isp foo
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ isp foo -dfu
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ isp -d --fn /a/b.hex
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ isp -u --fn /a/b.hex
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ isp -p --dfap
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ isp -usd --get --fn /a/b.hex
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ isp -enspim
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ isp -otp --fn /a/b.zvtp
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ isp -r
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]

Nothing goes to standard error:

  $ ZV32_ISP_Console -com --pn /dev/null foo bar 2>err >/dev/null
  [127]
  $ cat err
  /bin/bash: line 26: ZV32_ISP_Console: command not found

A chip, and files that can't be:

  $ chip_on ZV32F403_2_256K
  /work/main/tests/e2e/setup.sh: line 9: zv32-sim: command not found
  [1]
  $ line -d
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ line -d --fn a.hex
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ line -d --fn ./none.hex
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ line -d --fn ./a.elf
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ line -d --fn -e
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ line -d --fn ./x
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ echo hello > text.hex; line -d --fn ./text.hex
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ head -n -1 <(make-image.sh whole.hex; cat whole.hex) > cut.hex; line -d --fn ./cut.hex
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ mkdir dir.bin; line -d --fn ./dir.bin
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ line -u --sec 0-1
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ line -d --fn
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]

The last byte of the flash, and one byte too many:

  $ head -c 262144 /dev/urandom > full.bin; head -c 262145 /dev/urandom > over.bin
  $ line -d --fn ./full.bin --v
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ line -u --fn ./back.bin
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ cmp full.bin back.bin && echo equal
  cmp: back.bin: No such file or directory
  [2]
  $ line -d --fn ./over.bin
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ line -d --fn ./full.bin --addr 08000800
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ line -d --fn ./full.bin --addr 08400000
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]

An address in the middle, without the prefix, and the word that the help text gives, which has no effect:

  $ head -c 3000 /dev/urandom > part.bin
  $ line -d --fn ./part.bin --addr 8004000 --v
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ line -u --sec 8-9 --fn ./back.bin
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ cmp -n 3000 part.bin back.bin && echo equal
  cmp: back.bin: No such file or directory
  [2]
  $ line -d --fn ./part.bin --a 0x08006000 --v
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ line -u --sec 0-1 --fn ./back.bin
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ cmp -n 3000 part.bin back.bin && echo equal
  cmp: back.bin: No such file or directory
  [2]
