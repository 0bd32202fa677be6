Words without a chip.

  $ . "$SETUP"

  $ ZV32_ISP_Console | head -8
  ------------------------------------------------------------
  Zelvor ISP Programmer V3.0.14
  Support USART and DFU
  ------------------------------------------------------------
  
  Zelvor ISP Programmer V3.0.14
   Usage : 
      ZV32_ISP_Console  [options] [Agrument][[options] [Agrument]...] 
  $ ZV32_ISP_Console '-?' | cmp - <(ZV32_ISP_Console) && echo the same
  the same
  $ isp foo
  [1]
  $ isp foo -dfu
  bad parameter foo
  [1]
  $ isp -d --fn /a/b.hex
  [3]
  $ isp -u --fn /a/b.hex
  [4]
  $ isp -p --dfap
  [2]
  $ isp -usd --get --fn /a/b.hex
  [2]
  $ isp -enspim
  [8]
  $ isp -otp --fn /a/b.zvtp
  [2]
  $ isp -r
  [12]

Nothing goes to standard error:

  $ ZV32_ISP_Console -com --pn /dev/null foo bar 2>err >/dev/null
  [2]
  $ cat err

A chip, and files that can't be:

  $ chip_on ZV32F403_2_256K
  $ line -d
  Error:  Please select download file! File Name is 
  [3]
  $ line -d --fn a.hex
  bad parameter "a.hex"
  [3]
  $ line -d --fn ./none.hex
  Error:  Please select download file! File Name is ./none.hex
  [3]
  $ line -d --fn ./a.elf
  bad parameter "./a.elf"
  [3]
  $ line -d --fn -e
  bad parameter "-e"
  [3]
  $ line -d --fn ./x
  bad parameter "./x"
  [3]
  $ echo hello > text.hex; line -d --fn ./text.hex
  Error:  Download file open failed!
  [3]
  $ head -n -1 <(make-image.sh whole.hex; cat whole.hex) > cut.hex; line -d --fn ./cut.hex
  Error:  Download file open failed!
  [3]
  $ mkdir dir.bin; line -d --fn ./dir.bin
  Error:  Download file open failed!
  [3]
  $ line -u --sec 0-1
  Upload file name error.
  [4]
  $ line -d --fn
  bad parameter " (no-eol)
  [3]

The last byte of the flash, and one byte too many:

  $ head -c 262144 /dev/urandom > full.bin; head -c 262145 /dev/urandom > over.bin
  $ line -d --fn ./full.bin --v
  Erase
  Running...100%
  Download
  ./full.bin     262144B
  Running...100%
  Verify
  ./full.bin     262144B
  Running...100%
  Download successfully!
  $ line -u --fn ./back.bin
  Upload
  ./back.bin     262144B
  Running...100%
  Upload successfully!
  $ cmp full.bin back.bin && echo equal
  equal
  $ line -d --fn ./over.bin
  Error:  The file download address or file size out of flash range!
  [3]
  $ line -d --fn ./full.bin --addr 08000800
  Error:  The file download address or file size out of flash range!
  [3]
  $ line -d --fn ./full.bin --addr 08400000
  Error:  No operation can be performed without using SPIM!
  [3]

An address in the middle, without the prefix, and the word that the help text gives, which has no effect:

  $ head -c 3000 /dev/urandom > part.bin
  $ line -d --fn ./part.bin --addr 8004000 --v
  Erase
  Running...100%
  Download
  ./part.bin     3000B
  Running...100%
  Verify
  ./part.bin     3000B
  Running...100%
  Download successfully!
  $ line -u --sec 8-9 --fn ./back.bin
  Upload
  ./back.bin     4096B
  Running...100%
  Upload successfully!
  $ cmp -n 3000 part.bin back.bin && echo equal
  equal
  $ line -d --fn ./part.bin --a 0x08006000 --v
  Erase
  Running...100%
  Download
  ./part.bin     3000B
  Running...100%
  Verify
  ./part.bin     3000B
  Running...100%
  Download successfully!
  $ line -u --sec 0-1 --fn ./back.bin
  Upload
  ./back.bin     4096B
  Running...100%
  Upload successfully!
  $ cmp -n 3000 part.bin back.bin && echo equal
  equal
