A real image of 243,852 bytes, in the three kinds of file, through the whole road: erase, write,
verify, read back. The image comes out of srec_cat, which has never seen our file library.

  $ . "$SETUP"
  $ chip_on ZV32F403A_1024K
  $ make-image.sh firmware.hex; make-image.sh firmware.bin; make-image.sh firmware.s19
  $ stat -c %s firmware.bin

  $ isp -com --pn $PWD/port -d --fn $PWD/firmware.hex --v
  $ isp -com --pn $PWD/port -u --sec 0-119 --fn $PWD/back.bin
  $ cmp -n 243852 firmware.bin back.bin && echo equal

Behind the image the last sector is erased:

  $ tail -c +243853 back.bin | tr -d '\377' | wc -c

The same as S-record and as binary, onto flash that holds the image already:

  $ isp -com --pn $PWD/port -d --fn $PWD/firmware.s19 --v
  $ isp -com --pn $PWD/port -d --fn $PWD/firmware.bin --addr 08000000 --v --o
  $ isp -com --pn $PWD/port -u --sec 0-119 --fn $PWD/back.hex
  $ isp -com --pn $PWD/port -u --sec 0-119 --fn $PWD/back.srec
  $ srec_cat back.hex -intel -crop 0x08000000 0x0803b88c -offset -0x08000000 -o from-hex.bin -binary
  $ cmp firmware.bin from-hex.bin && echo equal
  $ objcopy -I srec -O binary back.srec from-srec.bin
  $ cmp -n 243852 firmware.bin from-srec.bin && echo equal

What was read back can be programmed again:

  $ isp -com --pn $PWD/port -e --all -d --fn $PWD/back.hex --v

The chip remembers without power:

  $ chip_off
  $ chip_on ZV32F403A_1024K
  $ isp -com --pn $PWD/port -u --fn $PWD/all.bin
  $ stat -c %s all.bin
  $ cmp -n 243852 firmware.bin all.bin && echo equal
