The SPI flash behind the chip: 16 MB from 08400000.

  $ . "$SETUP"
  $ chip_on ZV32F403A_1024K
  $ head -c 10000 /dev/urandom > data.bin

  $ line -d --fn ./data.bin --addr 08400000
  Error:  No operation can be performed without using SPIM!
  [3]
  $ line -enspim --ft 1 --fs 16 -d --fn ./data.bin --addr 08400000 --v
  Enable Bank3
  Running...
  Operation finished successfully!
  Enable Bank3
  Running...
  Erase
  Running...100%
  Download
  ./data.bin     10000B
  Running...100%
  Verify
  ./data.bin     10000B
  Running...100%
  Download successfully!
  $ line -enspim --ft 1 --fs 16 -u --sec 32768-32770 --fn ./back.bin
  Enable Bank3
  Running...
  Operation finished successfully!
  Upload
  ./back.bin     12288B
  Running...100%
  Upload successfully!
  $ cmp -n 10000 data.bin back.bin && echo equal
  equal
  $ line -enspim --ft 1 --fs 16 -e --sec 32769-32769 -u --sec 32768-32770 --fn ./back.bin
  Enable Bank3
  Running...
  Operation finished successfully!
  Erase
  Running...100%
  Erase successfully!
  Upload
  ./back.bin     12288B
  Running...100%
  Upload successfully!
  $ cmp data.bin back.bin | cut -d, -f1
  data.bin back.bin differ: char 4097
  $ line -enspim --ft 1 --fs 16 -e --all -u --sec 32768-32768 --fn ./back.bin
  Enable Bank3
  Running...
  Operation finished successfully!
  Erase
  Running...100%
  Erase successfully!
  Upload
  ./back.bin     4096B
  Running...100%
  Upload successfully!
  $ tr -d '\377' < back.bin | wc -c
  0

Type 2, remap, an address where encryption begins:

  $ line -enspim --ft 2 --fs 8 --remap 1 --fda 08000000
  Enable Bank3
  Running...
  Operation finished successfully!
  $ line -enspim --ft 2 --fs 8 --fda 100000
  Enable Bank3
  Running...
  Operation finished successfully!

A size of 0, which is what no size and a trailing "--fs" are, is all that the board has. The range test of
a download does not know it:

  $ line -enspim
  Enable Bank3
  Running...
  Operation finished successfully!
  $ line -enspim --fs
  Enable Bank3
  Running...
  Operation finished successfully!
  $ line -enspim -d --fn ./data.bin --addr 08400000
  Enable Bank3
  Running...
  Operation finished successfully!
  Error:  The file download address or file size out of SPIM range!
  [3]

What does not fit:

  $ line -enspim --fs 32
  Enable Bank3
  Running...
  
  Unknown error!
  [8]
  $ line -enspim --fda
  bad parameter " (no-eol)
  [8]
  $ line -enspim --ft 1 --fs 1 -d --fn ./data.bin --addr 084FFFFF
  Enable Bank3
  Running...
  Operation finished successfully!
  Error:  The file download address or file size out of SPIM range!
  [3]
  $ line -enspim foo
  bad parameter "foo"
  [8]

A family without the four that know sectors of SPIM:

  $ chip_new ZV32F457_1024K
  $ line -enspim --ft 1 --fs 16 -e --sec 0-1
  Enable Bank3
  Running...
  Operation finished successfully!
  bad parameter 0-1
  [51]
  $ line -enspim --ft 1 --fs 16 -d --fn ./data.bin --addr 08400000 --v
  Enable Bank3
  Running...
  Operation finished successfully!
  Enable Bank3
  Running...
  Erase
  Running...100%
  Download
  ./data.bin     10000B
  Running...100%
  Verify
  ./data.bin     10000B
  Running...100%
  Download successfully!

With SPIM, a ZV32F403 enables it a second time behind its restart:

  $ chip_new ZV32F403_1_1024K
  $ line -enspim --ft 1 --fs 16 -d --fn ./data.bin --addr 08400000 --v
  Enable Bank3
  Running...
  Operation finished successfully!
  Enable Bank3
  Running...
  Erase
  Running...100%
  Download
  ./data.bin     10000B
  Running...100%
  Enable Bank3
  Running...
  Verify
  ./data.bin     10000B
  Running...100%
  Download successfully!

A chip without SPIM:

  $ chip_new ZV32F421_64K
  $ line -enspim --ft 1 --fs 16
  Enable Bank3
  Running...
  
  The cmd not allowed!
  [8]

An access-protected chip answers for itself, also where its keys would decide:

  $ chip_new ZV32F413_256K
  $ line -p --efap >/dev/null
  $ line -enspim --ft 1 --fs 16 --fda 100000
  Enable Bank3
  Running...
  
  The cmd not allowed!
  [8]
