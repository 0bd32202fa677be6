A real image of 243,852 bytes, in the three kinds of file, through the whole road: erase, write,
verify, read back. The image comes out of srec_cat, which has never seen our file library.

  $ . "$SETUP"
  $ chip_on ZV32F403A_256K
  $ make-image.sh firmware.hex; make-image.sh firmware.bin; make-image.sh firmware.s19
  $ stat -c %s firmware.bin
  243852

  $ line -d --fn ./firmware.hex --v
  Erase
  Running...100%
  Download
  ./firmware.hex     243852B
  Running...100%
  Verify
  ./firmware.hex     243852B
  Running...100%
  Download successfully!
  $ line -u --sec 0-119 --fn ./back.bin
  Upload
  ./back.bin     245760B
  Running...100%
  Upload successfully!
  $ cmp -n 243852 firmware.bin back.bin && echo equal
  equal

Behind the image the last sector is erased:

  $ tail -c +243853 back.bin | tr -d '\377' | wc -c
  0

The same as S-record and as binary, onto flash that holds the image already:

  $ line -d --fn ./firmware.s19 --v
  Erase
  Running...100%
  Download
  ./firmware.s19     243852B
  Running...100%
  Verify
  ./firmware.s19     243852B
  Running...100%
  Download successfully!
  $ line -d --fn ./firmware.bin --addr 08000000 --v --o
  Erase
  Running...100%
  Download
  ./firmware.bin     243852B
  Running...100%
  Verify
  ./firmware.bin     243852B
  Running...100%
  Download successfully!
  $ line -u --sec 0-119 --fn ./back.hex
  Upload
  ./back.hex     245760B
  Running...100%
  Upload successfully!
  $ line -u --sec 0-119 --fn ./back.srec
  Upload
  ./back.srec     245760B
  Running...100%
  Upload successfully!
  $ srec_cat back.hex -intel -crop 0x08000000 0x0803b88c -offset -0x08000000 -o from-hex.bin -binary
  $ cmp firmware.bin from-hex.bin && echo equal
  equal
  $ objcopy -I srec -O binary back.srec from-srec.bin
  $ cmp -n 243852 firmware.bin from-srec.bin && echo equal
  equal

What was read back can be programmed again:

  $ line -e --all -d --fn ./back.hex --v
  Erase
  Running...100%
  Erase successfully!
  Download
  ./back.hex     245760B
  Running...100%
  Verify
  ./back.hex     245760B
  Running...100%
  Download successfully!

The chip remembers without power:

  $ chip_off
  $ chip_on ZV32F403A_256K
  $ line -u --fn ./all.bin
  Upload
  ./all.bin     262144B
  Running...100%
  Upload successfully!
  $ stat -c %s all.bin
  262144
  $ cmp -n 243852 firmware.bin all.bin && echo equal
  equal
