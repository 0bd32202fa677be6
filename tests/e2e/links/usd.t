Option bytes to a file and back, on a chip of each layout.

  $ . "$SETUP"
  $ for chip in ZV32F403A_1024K ZV32F415_128K ZV32F415_256K ZV32L021_64K ZV32F457_1024K ZV32F437_1024K ZV32F437_4032K ZV32F422_64K; do
  >     chip_new $chip
  >     echo "== $chip"
  >     line -usd --get --fn ./factory.bin | tail -1
  >     pairs 3 < factory.bin; stat -c %s factory.bin
  >     # another user data byte, with its complement, at compact byte 3
  >     cp factory.bin new.bin; printf '\x5a\xa5' | dd of=new.bin bs=1 seek=6 conv=notrunc status=none
  >     line -usd --set --fn ./new.bin | tail -1
  >     line -usd --get --fn ./back.bin | tail -1
  >     cmp new.bin back.bin && echo same
  >     # set what was read leaves everything as it is, also through a hex file
  >     line -o --get --fn ./back.hex --set --fn ./back.hex | tail -1
  >     line -usd --get --fn ./again.bin | tail -1
  >     cmp new.bin again.bin && echo same
  > done
  == ZV32F403A_1024K
  Get user system data to file succeed!
   a5 5a ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00
   ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00
   ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00
  4096
  Set user system data to device successfully!
  Get user system data to file succeed!
  same
  Set user system data to device successfully!
  Get user system data to file succeed!
  same
  == ZV32F415_128K
  Get user system data to file succeed!
   a5 5a ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00
   ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00
   ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00
  4096
  Set user system data to device successfully!
  Get user system data to file succeed!
  same
  Set user system data to device successfully!
  Get user system data to file succeed!
  same
  == ZV32F415_256K
  Get user system data to file succeed!
   a5 5a ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00
   ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00
   ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00
  4096
  Set user system data to device successfully!
  Get user system data to file succeed!
  same
  Set user system data to device successfully!
  Get user system data to file succeed!
  same
  == ZV32L021_64K
  Get user system data to file succeed!
   a5 5a ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00
   ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00
   ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00
  4096
  Set user system data to device successfully!
  Get user system data to file succeed!
  same
  Set user system data to device successfully!
  Get user system data to file succeed!
  same
  == ZV32F457_1024K
  Get user system data to file succeed!
   a5 5a ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00
   ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00
   ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00
  4096
  Set user system data to device successfully!
  Get user system data to file succeed!
  same
  Set user system data to device successfully!
  Get user system data to file succeed!
  same
  == ZV32F437_1024K
  Get user system data to file succeed!
   a5 5a ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00
   ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00
   ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00
  4096
  Set user system data to device successfully!
  Get user system data to file succeed!
  same
  Set user system data to device successfully!
  Get user system data to file succeed!
  same
  == ZV32F437_4032K
  Get user system data to file succeed!
   a5 5a ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00
   ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00
   ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00
  4096
  Set user system data to device successfully!
  Get user system data to file succeed!
  same
  Set user system data to device successfully!
  Get user system data to file succeed!
  same
  == ZV32F422_64K
  Get user system data to file succeed!
   a5 5a ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00
   ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00
   ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00 ff 00
  4096
  Set user system data to device successfully!
  Get user system data to file succeed!
  same
  Set user system data to device successfully!
  Get user system data to file succeed!
  same

Wrong complements are accepted, a file that is too short is refused:

  $ chip_new ZV32F403A_1024K
  $ line -usd --get --fn ./good.bin >/dev/null
  $ cp good.bin wrong.bin; printf '\x33\x33' | dd of=wrong.bin bs=1 seek=6 conv=notrunc status=none
  $ line -usd --set --fn ./wrong.bin
  Set user system data to device
  running...
  Set user system data to device successfully!
  $ line -usd --get --fn ./back.bin >/dev/null; pairs 1 < back.bin
   a5 5a ff 00 ff 00 33 cc ff 00 ff 00 ff 00 ff 00
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
