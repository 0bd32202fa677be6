Words without a chip.

  $ . "$SETUP"

  $ ZV32_ISP_Console | head -8
  $ ZV32_ISP_Console '-?' | cmp - <(ZV32_ISP_Console) && echo the same
  $ isp foo
  $ isp foo -dfu
  $ isp -d --fn /a/b.hex
  $ isp -u --fn /a/b.hex
  $ isp -p --dfap
  $ isp -usd --get --fn /a/b.hex
  $ isp -enspim
  $ isp -otp --fn /a/b.zvtp
  $ isp -r

Nothing goes to standard error:

  $ ZV32_ISP_Console -com --pn /dev/null foo bar 2>err >/dev/null
  $ cat err

A chip, and files that can't be:

  $ chip_on ZV32F403_2_256K
  $ echo hello > text.hex
  $ isp -com --pn $PWD/port -d
  $ isp -com --pn $PWD/port -d --fn a.hex
  $ isp -com --pn $PWD/port -d --fn ./none.hex
  $ isp -com --pn $PWD/port -d --fn ./a.elf
  $ isp -com --pn $PWD/port -d --fn -e
  $ isp -com --pn $PWD/port -d --fn ./x
  $ isp -com --pn $PWD/port -u --sec 0-1
  $ isp -com --pn $PWD/port -d --fn

The last byte of the flash, and one byte too many:

  $ head -c 262144 /dev/urandom > full.bin; head -c 262145 /dev/urandom > over.bin
  $ isp -com --pn $PWD/port -d --fn ./full.bin --v
  $ isp -com --pn $PWD/port -u --fn ./back.bin
  $ cmp full.bin back.bin && echo equal
  $ isp -com --pn $PWD/port -d --fn ./over.bin
  $ isp -com --pn $PWD/port -d --fn ./full.bin --addr 08000800
  $ isp -com --pn $PWD/port -d --fn ./full.bin --addr 08400000

An address in the middle, without the prefix, and the word that the help text gives, which has no effect:

  $ head -c 3000 /dev/urandom > part.bin
  $ isp -com --pn $PWD/port -d --fn ./part.bin --addr 8004000 --v
  $ isp -com --pn $PWD/port -u --sec 8-9 --fn ./back.bin
  $ cmp -n 3000 part.bin back.bin && echo equal
  $ isp -com --pn $PWD/port -d --fn ./part.bin --a 0x08006000 --v
  $ isp -com --pn $PWD/port -u --sec 0-1 --fn ./back.bin
  $ cmp -n 3000 part.bin back.bin && echo equal
