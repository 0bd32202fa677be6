Behind "-r" the chip runs its program: the bootloader is not there until the reset button is pressed.

  $ . "$SETUP"
  $ chip_on ZV32F421_64K
  $ head -c 3000 /dev/urandom > program.bin
  $ line -d --fn ./program.bin --v -r | tail -1
  Your code is running... (0x08000000)
  $ isp "${port_words[@]}" >out
  [2]
  $ tail -1 out
  @GONE@
  $ press_reset
  $ line -r --addr 08000400
  Your code is running... (0x08000400)
  $ press_reset

In RAM, and where nothing is:

  $ line -r --addr 20000100
  Your code is running... (0x20000100)
  $ press_reset
  $ line -r --addr 40000000
  Your code is running... (0x40000000)
  [12]
  $ line -u --sec 0-2 --fn ./back.bin | tail -1; cmp -n 3000 program.bin back.bin && echo equal
  Upload successfully!
  equal
