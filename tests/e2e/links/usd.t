Option bytes to a file and back, on a chip of each layout.

  $ . "$SETUP"
  $ printf '\377\0%.0s' {1..2048} > blank.bin
  $ chip_on ZV32F403A_1024K
  $ line -usd --get --fn ./factory.bin --set --fn ./factory.bin
  Get user system data to file
  running...
  Get user system data to file succeed!
  Set user system data to device
  running...
  Set user system data to device successfully!

What a new chip holds; what another user data byte, with its complement, changes; and that what was read and is
set again, through a HEX file, changes nothing:

  $ for chip in ZV32F403A_1024K ZV32F415_128K ZV32F415_256K ZV32L021_64K ZV32F457_1024K ZV32F437_1024K ZV32F437_4032K ZV32F422_64K; do
  >     chip_new $chip; echo "== $chip"
  >     line -usd --get --fn ./factory.bin >out && changed blank.bin factory.bin
  >     cp factory.bin new.bin; printf '\x5a\xa5' | dd of=new.bin bs=1 seek=6 conv=notrunc status=none
  >     line -usd --set --fn ./new.bin >out && line -usd --get --fn ./back.bin >out && changed factory.bin back.bin
  >     line -o --get --fn ./back.hex --set --fn ./back.hex >out && line -usd --get --fn ./again.bin >out && cmp back.bin again.bin
  > done
  == ZV32F403A_1024K
  0: ff 00 -> a5 5a
  3: ff 00 -> 5a a5
  == ZV32F415_128K
  0: ff 00 -> a5 5a
  3: ff 00 -> 5a a5
  == ZV32F415_256K
  0: ff 00 -> a5 5a
  3: ff 00 -> 5a a5
  == ZV32L021_64K
  0: ff 00 -> a5 5a
  3: ff 00 -> 5a a5
  == ZV32F457_1024K
  0: ff 00 -> a5 5a
  3: ff 00 -> 5a a5
  == ZV32F437_1024K
  0: ff 00 -> a5 5a
  3: ff 00 -> 5a a5
  == ZV32F437_4032K
  0: ff 00 -> a5 5a
  3: ff 00 -> 5a a5
  == ZV32F422_64K
  0: ff 00 -> a5 5a
  3: ff 00 -> 5a a5

Wrong complements are accepted, a file that is too short is refused:

  $ chip_new ZV32F403A_1024K
  $ line -usd --get --fn ./good.bin >/dev/null
  $ cp good.bin wrong.bin; printf '\x33\x33' | dd of=wrong.bin bs=1 seek=6 conv=notrunc status=none
  $ line -usd --set --fn ./wrong.bin
  Set user system data to device
  running...
  Set user system data to device successfully!
  $ line -usd --get --fn ./back.bin >/dev/null; changed good.bin back.bin
  3: ff 00 -> 33 cc
  $ head -c 47 good.bin > short.bin; line -usd --set --fn ./short.bin
  Set user system data to device
  running...
  Set user system data to device failed!
  [6]
  $ head -c 48 good.bin > enough.bin; line -usd --set --fn ./enough.bin
  Set user system data to device
  running...
  Set user system data to device successfully!

Words:

  $ line -usd
  $ line -usd --get
  $ line -usd --get /x/a.bin
  bad parameter " (no-eol)
  [7]
  $ line -usd --get /x/a.bin -e
  bad parameter "-e"
  [7]
  $ line -usd --set --fn a.bin
  bad parameter "a.bin"
  [6]
  $ line -usd --set --fn /nowhere/a.bin
  Set user system data to device
  running...
  Set user system data to device failed!
  [6]
  $ line -usd foo
  foo
  [1]
  $ line -usd --speed 5
