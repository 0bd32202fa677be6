A restart of the chip in the middle of a line takes the link away and back: in front of the verify of these
chips, and behind every change of protection and of option bytes.

  $ . "$SETUP"
  $ chip_on ZV32F403_1_1024K --verbose
  $ head -c 5000 /dev/urandom > part.bin
  $ line -d --fn ./part.bin --v
  Erase
  Running...100%
  Download
  ./part.bin     5000B
  Running...100%
  Verify
  ./part.bin     5000B
  Running...100%
  Download successfully!
  $ grep -c '^reset' sim.err
  1
  $ line -p --eepp 511-511 -p --depp -p --efap -p --dfap | grep success
  Enable erase and program protection successfully!
  Disable erase and program protection successfully!
  Enable access protection successfully!
  Disable access protection successfully!
  $ grep -c '^reset' sim.err
  5
  $ line -d --fn ./part.bin --v -u --sec 0-2 --fn ./back.bin | tail -1
  Upload successfully!
  $ cmp -n 5000 part.bin back.bin && echo equal
  equal
