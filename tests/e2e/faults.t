What goes wrong on the line, once, in the middle of a job that is safe to repeat, is mended, and what is
in the chip in the end is the image.

  $ . "$SETUP"
  $ head -c 4096 /dev/urandom > image.bin
  $ try() {
  >     chip_new ZV32F421_64K --fault "$1"
  >     printf '%s: ' "$1"
  >     line --to 1 -d --fn ./image.bin --v | tail -1
  >     line -u --sec 0-3 --fn ./back.bin >/dev/null && cmp image.bin back.bin && echo '  equal'
  >     grep 'fault:' sim.err || echo '  the fault did not happen'
  > }

A command refused, and one refused at its last answer:

  $ try nack@1:31
  nack@1:31: Download successfully!
    equal
  fault: nack@1:31
  $ try nack@3:31:1
  nack@3:31:1: Download successfully!
    equal
  fault: nack@3:31:1
  $ try nack@2:31:2
  nack@2:31:2: Download successfully!
    equal
  fault: nack@2:31:2
  $ try nack@2:11
  nack@2:11: Download successfully!
    equal
  fault: nack@2:11

What is not safe to repeat ends the line at once: an erase, a jump.

  $ chip_new ZV32F421_64K --fault nack@1:44
  $ line -e --sec 0-0
  Erase
  
  The cmd not allowed!
  [51]
  $ line -e --sec 0-0
  Erase
  Running...100%
  Erase successfully!
  $ chip_new ZV32F421_64K --fault nack@1:21
  $ line -r
  Your code is running... (0x08000000)
  [12]

A chip that falls silent, and a port that goes away: the right text and status, no partial file, and a
second run succeeds.

  $ chip_new ZV32F421_64K --fault silence@76
  $ isp -com --pn $PWD/port --to 1 -u --fn ./part.bin | tail -5
  Running...20%
  No response from the device...
  Please verify the boot mode configuration.
  Check the UART cable.
  Reset the device then run again.
  $ ls part.bin
  ls: cannot access 'part.bin': No such file or directory
  [2]
  $ kill -USR1 $chip_pid
  $ line -u --fn ./part.bin | tail -1
  Upload successfully!

  $ chip_new ZV32F421_64K --fault hangup@700:300
  $ line -d --fn ./image.bin --v
  Erase
  Running...100%
  Download
  ./image.bin     4096B
  
  send over serial port fail!
  [3]
  $ until [ "$(grep -c ready sim.out)" = 2 ]; do sleep 0.01; done
  $ line -d --fn ./image.bin --v | tail -1
  Download successfully!
