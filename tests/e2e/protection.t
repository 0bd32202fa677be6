Access protection, proven by what the chip still does.

  $ . "$SETUP"
  $ chip_on ZV32F403A_1024K
  $ head -c 6000 /dev/urandom > image.bin
  $ line -d --fn ./image.bin
  $ line -p --efap
  $ line -u --sec 0-0 --fn ./back.bin
  $ line -e --sec 0-0
  $ line -d --fn ./image.bin
  $ line -r
  $ line -usd --get --fn ./usd.bin

Taking it off erases the flash:

  $ line -p --dfap
  $ line -u --sec 0-2 --fn ./back.bin >/dev/null; od -Ax -tx1 back.bin

The same by the other names:

  $ line -p --erp; line -u --sec 0-0 --fn ./back.bin >/dev/null
  $ line -p --drp; line -u --sec 0-0 --fn ./back.bin >/dev/null && echo readable
  $ line -p --efap1
  $ line -p --dfap

A chip without levels has no high one:

  $ line -p --efap2

Sector protection: two sectors a bit; what is protected can't be erased or written, its neighbours can.

  $ line -d --fn ./image.bin --v >/dev/null
  $ line -p --eepp 2-3
  $ line -e --sec 2-2
  $ line -e --sec 3-4
  $ line -e --all
  $ line -e --sec 0-1 --sec 4-511
  $ line -d --fn ./image.bin
  $ line -u --sec 2-2 --fn ./back.bin >/dev/null; cmp back.bin <(tail -c +4097 image.bin | head -c 2048; head -c 144 /dev/zero | tr '\0' '\377') | head -1
  $ line -p --ewp 8-8
  $ line -e --sec 2-2
  $ line -e --sec 9-9
  $ line -e --sec 10-10
  $ line -p --depp
  $ line -e --all
  $ line -p --ewp 0-0; line -p --dwp; line -e --sec 0-0

Ranges that can't be:

  $ line -p --eepp 3
  $ line -p --eepp 0-512
  $ line -p --foo
  $ line -p

The high level: it has to be confirmed, and nothing takes it off.

  $ chip_new ZV32F425_64K
  $ line -p --efap2
  $ line -p --efap2 --n
  $ line -e --sec 0-0
  $ line -p --efap1
  $ line -p --dfap
  $ line -p --efap2 --Y
  $ line -p --dfap
  $ line -u --sec 0-0 --fn ./back.bin
