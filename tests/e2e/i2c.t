The words of I2C: what is left out is 0, and 0 is 3C, 400,000 Hz and 2:1. No program sets the rate of a bus
on Linux; what was asked for stands in the trace.

  $ . "$SETUP"
  $ chip_on ZV32F421_64K
  $ near i2cdetect -y 1 | grep -o " 3c"
   3c
  $ asked() {
  >     rm -f trace; ZVBL_TRACE=$PWD/trace isp -i2c --pn i2c-1 "$@" >out && grep -o 'asked for.*' trace
  > }
  $ asked
  asked for 400000 Hz, 2:1; the bus runs as its driver set it
  $ asked --addr 3C --rate 100000 --dc 16:9
  asked for 100000 Hz, 16:9; the bus runs as its driver set it
  $ asked --addr 0x3c --dc 2:1
  asked for 400000 Hz, 2:1; the bus runs as its driver set it

Addresses are of seven bits, and some of them mean something else:

  $ for address in 78 80 7; do isp -i2c --pn i2c-1 --addr $address | tail -1; done
  Unrecognized device...Please, reset your device then try again 
  Unrecognized device...Please, reset your device then try again 
  Unrecognized device...Please, reset your device then try again 

A bus that is not there, and one that another console holds:

  $ isp -i2c --pn i2c-7
  I2C Connect......
  Cannot open the com port, the port not exist or may be used by another application
  [2]
  $ isp -i2c --pn i2c-1 -i2c --pn i2c-1 | tail -2
  I2C Connect......
  Cannot open the com port, the port not exist or may be used by another application
