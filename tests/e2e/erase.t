  $ . "$SETUP"
  $ chip_on ZV32F403A_1024K
  $ head -c 8192 /dev/zero | tr '\0' 'Z' > four.bin
  $ isp -com --pn $PWD/port -d --fn ./four.bin

Sectors 1 and 2 of the four that hold the image:

  $ isp -com --pn $PWD/port -e --sec 1-2 -u --sec 0-3 --fn ./back.bin
  $ od -Ax -tx1 back.bin

A lone number is a range only when it is 0; anything else is refused, and nothing is erased:

  $ isp -com --pn $PWD/port -e --sec 3
  $ isp -com --pn $PWD/port -e --sec 3-1
  $ isp -com --pn $PWD/port -e --sec 0-99999
  $ isp -com --pn $PWD/port -e --sec 511-512
  $ isp -com --pn $PWD/port -e --bogus

The last sector, and several ranges in one word:

  $ isp -com --pn $PWD/port -e --sec 511-511 --sec 0-0

Nothing behind "--sec" is sector 0:

  $ isp -com --pn $PWD/port -e --sec

"-e" alone erases nothing:

  $ isp -com --pn $PWD/port -e -u --sec 3-3 --fn ./back.bin
  $ od -Ax -tx1 back.bin

Everything, in two banks:

  $ isp -com --pn $PWD/port -e --all
  $ isp -com --pn $PWD/port -u --fn ./back.bin
  $ od -Ax -tx1 back.bin

Without a connection word there is nothing to erase:

  $ isp -e --all
