What an interface of the kernel does to a job: it is taken down, it is unplugged, the controller leaves
the bus.

  $ . "$SETUP"
  $ bus_rate=250000
  $ chip_on ZV32F421_64K
  $ head -c 16384 /dev/urandom > image.bin
  $ strike() {
  >     rm -f out; line -d --fn ./image.bin --v >out & job=$!
  >     until grep -qs '^Download' out; do sleep 0.01; done
  >     bus_told "$1"
  >     wait $job; echo "status $?"; tail -1 out
  >     isp -can --pn can0 -usd | tail -1
  >     bus_told "$2"
  >     line -d --fn ./image.bin --v | tail -1
  > }
  $ strike down up
  status 3
  send over serial port fail!
  Cannot open the com port, the port not exist or may be used by another application
  Download successfully!
  $ strike unplug plug
  status 3
  send over serial port fail!
  Cannot open the com port, the port not exist or may be used by another application
  Download successfully!
  $ strike bus-off restart
  status 3
  send over serial port fail!
  Unrecognized device...Please, reset your device then try again 
  Download successfully!

A frame that is lost and one that comes twice are mended:

  $ for fault in "lose 1" "double 1"; do
  >     rm -f out; line -d --fn ./image.bin --v >out & job=$!
  >     until grep -qs '^Download' out; do sleep 0.01; done
  >     sleep 0.2; bus_told "$fault"
  >     wait $job; echo "status $?"; tail -1 out
  > done
  status 0
  Download successfully!
  status 0
  Download successfully!

Speeds: bits a second or a code; others are refused.

  $ for speed in 0 2 250000; do isp -can --pn can0 --speed $speed -usd | tail -2 | head -1; done
  Device connected Successfully
  Device connected Successfully
  Device connected Successfully
  $ for speed in 9 123456 -1; do isp -can --pn can0 --speed $speed; done
  CAN Connect......
  Unrecognized device...Please, reset your device then try again 
  CAN Connect......
  Unrecognized device...Please, reset your device then try again 
  CAN Connect......
  Unrecognized device...Please, reset your device then try again 
  [2]

No such interface, and no device of that name:

  $ isp -can --pn can7
  CAN Connect......
  Cannot open the com port, the port not exist or may be used by another application
  [2]
