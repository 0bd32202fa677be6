  $ . "$SETUP"
  $ chip_on ZV32F403A_1024K
  $ head -c 8192 /dev/zero | tr '\0' 'Z' > four.bin
  $ line -d --fn ./four.bin
  Erase
  Running...100%
  Download
  ./four.bin     8192B
  Running...100%
  Download successfully!

Sectors 1 and 2 of the four that hold the image:

  $ line -e --sec 1-2 -u --sec 0-3 --fn ./back.bin
  Erase
  Running...100%
  Erase successfully!
  Upload
  ./back.bin     8192B
  Running...100%
  Upload successfully!
  $ od -Ax -tx1 back.bin
  000000 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a
  *
  000800 ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff
  *
  001800 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a
  *
  002000

A lone number is a range only when it is 0; anything else is refused, and nothing is erased:

  $ line -e --sec 3
  bad parameter 3
  [51]
  $ line -e --sec 3-1
  bad parameter 3-1
  [51]
  $ line -e --sec 0-99999
  bad parameter 0-99999
  [51]
  $ line -e --sec 511-512
  bad parameter 511-512
  [51]
  $ line -e --bogus
  bad parameter "--bogus"
  [1]

The last sector, and several ranges in one word:

  $ line -e --sec 511-511 --sec 0-0
  Erase
  Running...100%
  Erase successfully!
  Erase
  Running...100%
  Erase successfully!

Nothing behind "--sec" is sector 0:

  $ line -e --sec
  Erase
  Running...100%
  Erase successfully!

"-e" alone erases nothing:

  $ line -e -u --sec 3-3 --fn ./back.bin
  Upload
  ./back.bin     2048B
  Running...100%
  Upload successfully!
  $ od -Ax -tx1 back.bin
  000000 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a
  *
  000800

Everything, in two banks:

  $ line -d --fn ./four.bin --addr 0807f800 | tail -1
  Download successfully!
  $ line -u --sec 254-259 --fn ./back.bin | tail -1; tr -d '\377' <back.bin | wc -c
  Upload successfully!
  8192
  $ line -e --all
  Erase
  Running...100%
  Erase successfully!
  $ for sectors in 0-3 254-259 510-511; do
  >     line -u --sec $sectors --fn ./back.bin | tail -1
  >     tr -d '\377' <back.bin | wc -c
  > done
  Upload successfully!
  0
  Upload successfully!
  0
  Upload successfully!
  0

Without a connection word there is nothing to erase:

  $ isp -e --all
  [2]
