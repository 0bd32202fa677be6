The speed of SPI is 150,000 Hz unless it is told.

  $ . "$SETUP"
  $ chip_on ZV32F421_64K
  $ speed() {
  >     rm -f trace; ZVBL_TRACE=$PWD/trace isp -spi --pn spidev0.0 "$@" >out && grep -o '[0-9]* Hz' trace
  > }
  $ speed
  150000 Hz
  $ speed --speed 0
  150000 Hz
  $ speed --speed 4000000
  4000000 Hz
  $ isp -spi --pn spidev0.0 --speed -1
  SPI Connect......
  Unrecognized device...Please, reset your device then try again 
  [2]
  $ isp -spi --pn spidev7.7
  SPI Connect......
  Cannot open the com port, the port not exist or may be used by another application
  [2]
