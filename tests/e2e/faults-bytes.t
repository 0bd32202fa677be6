What goes wrong on the line, once, in the middle of a job that is safe to repeat, is mended, and what is
in the chip in the end is the image.

  $ . "$SETUP"
  $ export ZVBL_VERIFY_BY=read # so that there is much to harm on the way to the host
  $ seq 1 2000 | head -c 4096 >image.bin # one of 256 images would make the check byte of a harmed packet right
  $ try() {
  >     chip_new ZV32F421_64K --fault "$1"
  >     printf '%s: ' "$1"
  >     line --to 1 -d --fn ./image.bin --v | tail -1
  >     grep 'fault:' sim.err || echo '  the fault did not happen'
  >     line -u --sec 0-3 --fn ./back.bin >/dev/null && cmp image.bin back.bin && echo '  equal'
  > }

A byte from the host, and one to it, in a write (the first ones) and in the verify:

  $ for fault in rx-lost@1500 rx-damage@1500 rx-double@1500 rx-late@1500:1500; do try $fault; done
  rx-lost@1500: Download successfully!
  fault: rx-lost@1500
    equal
  rx-damage@1500: Download successfully!
  fault: rx-damage@1500
    equal
  rx-double@1500: Download successfully!
  fault: rx-double@1500
    equal
  rx-late@1500:1500: Download successfully!
  fault: rx-late@1500:1500
    equal
  $ for fault in tx-lost@600 tx-damage@600 tx-double@600 tx-late@600:1500; do try $fault; done
  tx-lost@600: Download successfully!
  fault: tx-lost@600
    equal
  tx-damage@600: Download successfully!
  fault: tx-damage@600
    equal
  tx-double@600: Download successfully!
  fault: tx-double@600
    equal
  tx-late@600:1500: Download successfully!
  fault: tx-late@600:1500
    equal
  $ for fault in tx-lost@2000 tx-double@2000 tx-late@2000:1500; do try $fault; done
  tx-lost@2000: Download successfully!
  fault: tx-lost@2000
    equal
  tx-double@2000: Download successfully!
  fault: tx-double@2000
    equal
  tx-late@2000:1500: Download successfully!
  fault: tx-late@2000:1500
    equal

A byte of an answer that is damaged on its way looks like a difference to a verify, which therefore
reads a packet that differs a second time:

  $ try tx-damage@2000
  tx-damage@2000: Download successfully!
  fault: tx-damage@2000
    equal
