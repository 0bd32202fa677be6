A real image of 243,852 bytes through the whole road: erase, write, verify, read back. The image comes out
of srec_cat, which has never seen our file library.

  $ . "$SETUP"
  $ chip_on ZV32F403A_256K
  $ make-image.sh firmware.hex; make-image.sh firmware.bin
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

The chip remembers without power:

  $ chip_off
  $ chip_on ZV32F403A_256K
  $ line -u --sec 60-62 --fn ./part.bin
  Upload
  ./part.bin     6144B
  Running...100%
  Upload successfully!
  $ cmp -n 6144 -i 122880:0 firmware.bin part.bin && echo equal
  equal
