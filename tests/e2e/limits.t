What does not fit. Where the console sees it, nothing that changes a chip is sent; where only the chip
can refuse it, nothing outside the sectors of the image changes.

  $ . "$SETUP"
  $ chip_on ZV32F413_64K
  $ head -c 65536 /dev/urandom > full.bin; line -d --fn ./full.bin --v | tail -1
  Download successfully!

unsent WORD...: the words, and whether an erase or a write went out; untouched FIRST LAST: what the
sectors hold is still that of full.bin.

  $ unsent() {
  >     rm -f trace; ZVBL_TRACE=$PWD/trace line "$@"; local status=$?
  >     grep -q '> 02 FD' trace && ! grep -q -e '> 44 BB' -e '> 31 CE' -e '> E2 1D' -e '> 63 9C' trace && echo "nothing sent"
  >     return $status
  > }
  $ untouched() {
  >     rm -f part.bin; line -u --sec $1-$2 --fn ./part.bin >/dev/null
  >     cmp part.bin <(tail -c +$(($1 * 1024 + 1)) full.bin | head -c $((($2 - $1 + 1) * 1024))) && echo untouched
  > }

One byte too many, as a binary, as a HEX file and as S-records:

  $ head -c 65537 /dev/urandom > over.bin; head -c 3 over.bin > three.bin
  $ unsent -d --fn ./over.bin
  Error:  The file download address or file size out of flash range!
  nothing sent
  [3]
  $ unsent -d --fn ./three.bin --addr 0800FFFE
  Error:  The file download address or file size out of flash range!
  nothing sent
  [3]
  $ srec_cat three.bin -binary -offset 0x0800FFFE -o over.hex -intel
  $ unsent -d --fn ./over.hex
  Error:  The file download address or file size out of flash range!
  nothing sent
  [3]
  $ srec_cat three.bin -binary -offset 0x0800FFFE -o over.s19 -motorola
  $ unsent -d --fn ./over.s19
  Error:  The file download address or file size out of flash range!
  nothing sent
  [3]

The last byte of it fits:

  $ line -d --fn ./three.bin --addr 0800FFFD --v | tail -1
  Download successfully!

One sector too high:

  $ unsent -e --sec 64-64
  bad parameter 64-64
  nothing sent
  [51]
  $ unsent -e --sec 63-64
  bad parameter 63-64
  nothing sent
  [51]
  $ unsent -u --sec 64-64 --fn ./part.bin
  bad parameter "64-64"
  nothing sent
  [4]
  $ unsent -p --eepp 64-64
  bad parameter "64-64"
  nothing sent
  [36]

Below the flash: no check of the console, the chip has no such place.

  $ line -d --fn ./three.bin --addr 07FFFFFE
  Erase
  
  Unknown error!
  [3]
  $ untouched 0 62
  untouched
  $ line -d --fn ./three.bin --addr 0
  Erase
  
  Unknown error!
  [3]
  $ untouched 0 62
  untouched
  $ srec_cat three.bin -binary -offset 0x07FFF000 -o below.hex -intel
  $ line -d --fn ./below.hex
  Erase
  
  Unknown error!
  [3]
  $ untouched 0 62
  untouched

One that reaches into the flash from below, also behind an erase:

  $ head -c 4096 /dev/urandom > across.bin
  $ line -d --fn ./across.bin --addr 07FFF800
  Erase
  
  Unknown error!
  [3]
  $ untouched 0 62
  untouched
  $ line -e --sec 63-63 -d --fn ./across.bin --addr 07FFF800
  Erase
  Running...100%
  Erase successfully!
  Download
  ./across.bin     4096B
  
  Unknown error!
  [3]
  $ untouched 0 62
  untouched

A HEX file with program, and with data in the option bytes or in RAM:

  $ head -c 100 full.bin > piece.bin
  $ for place in 1FFFF800 20000000; do
  >     srec_cat piece.bin -binary -offset 0x08000000 three.bin -binary -offset 0x$place -o mixed.hex -intel
  >     unsent -d --fn ./mixed.hex
  > done
  Error:  No operation can be performed without using SPIM!
  nothing sent
  Error:  No operation can be performed without using SPIM!
  nothing sent
  [3]
  $ untouched 0 62
  untouched
  $ line -enspim --ft 1 --fs 16 -d --fn ./mixed.hex
  Enable Bank3
  Running...
  Operation finished successfully!
  Error:  The file download address or file size out of SPIM range!
  [3]
  $ untouched 0 62
  untouched

A binary there:

  $ unsent -d --fn ./three.bin --addr 1FFFF800
  Error:  No operation can be performed without using SPIM!
  nothing sent
  [3]
  $ unsent -d --fn ./three.bin --addr 20000000
  Error:  No operation can be performed without using SPIM!
  nothing sent
  [3]

The SPIM ends as well:

  $ line -enspim --ft 1 --fs 16 -d --fn ./three.bin --addr 093FFFFE
  Enable Bank3
  Running...
  Operation finished successfully!
  Error:  The file download address or file size out of SPIM range!
  [3]

A chip that no map knows; and one whose PID is known, but not with this series:

  $ rm Map; mkdir Map
  $ isp -com --pn $PWD/port
  USART Connect......
  Init Device Failed!
  [2]
  $ sed s/=04/=07/ "$MAPS/ZV32F413_64K.ZVmap" > Map/other.ZVmap; isp -com --pn $PWD/port
  USART Connect......
  Init Device Failed!
  [2]
  $ touch Map/empty.ZVmap; head -c 100000 /dev/urandom > Map/garbage.ZVmap; mkdir Map/x.ZVmap
  $ printf '\0\0\0\0' > Map/null.ZVmap; ln -s nowhere Map/link.ZVmap; mkfifo Map/fifo.ZVmap
  $ echo '[Product]' > Map/product.ZVmap; yes 'PID=' | head -c 3000000 > Map/long.ZVmap
  $ printf '[Product]\nPID=@Variant(\\0\\0\\0\\x7f\\0\\0\\0\\x2X\\0)\nSerial=04\n' > Map/a.ZVmap; truncate -s 1G Map/b.ZVmap
  $ isp -com --pn $PWD/port
  USART Connect......
  Init Device Failed!
  [2]

Beside all of these the right one is found:

  $ cp "$MAPS/ZV32F413_64K.ZVmap" Map/
  $ line -e --sec 0-0 | tail -1
  Erase successfully!

Damaged ones under the chip's own name: a key that the sector table does not stand on counts as missing, and
without a table nothing is erased.

  $ damaged() {
  >     sed "$@" "$MAPS/ZV32F413_64K.ZVmap" > Map/ZV32F413_64K.ZVmap
  >     isp -com --pn $PWD/port -d --fn ./three.bin >out; echo "status $?: $(tail -1 out)"
  > }
  $ damaged s/^Size=.*/Size=0/
  status 3: Input parameters error!
  $ damaged s/^Size=.*/Size=FFFFFFFF/
  status 3: Input parameters error!
  $ damaged s/^Size=.*/Size=FFFFFFFFFFFFFFFFFFFF/
  status 3: Input parameters error!
  $ damaged s/^Count=.*/Count=2000000/
  status 3: Input parameters error!
  $ damaged s/^Count=.*/Count=-1/
  status 3: Input parameters error!
  $ damaged s/^Address=.*/Address=FFFFFFFF/
  status 3: Input parameters error!
  $ damaged s/^SectorsPerSector=.*/SectorsPerSector=0/
  status 0: Download successfully!
  $ damaged s/^PacketSize=.*/PacketSize=-1/
  status 0: Download successfully!
  $ damaged s/Sector0/Sector1/
  status 3: Input parameters error!
  $ damaged '/Sector0/,$d'
  status 3: Input parameters error!
  $ damaged '$a garbage'
  status 3: Input parameters error!

Nothing can be selected there for an upload either, and the old file stays:

  $ echo old > back.bin; line -u --fn ./back.bin
  Upload
  ./back.bin     0B
  
  File's bad paramer!
  [4]
  $ cat back.bin
  old
  $ rm Map/ZV32F413_64K.ZVmap; mkdir Map/ZV32F413_64K.ZVmap
  $ isp -com --pn $PWD/port
  USART Connect......
  Init Device Failed!
  [2]
  $ rm -r Map; ln -s "$MAPS" Map
  $ untouched 1 62
  untouched
