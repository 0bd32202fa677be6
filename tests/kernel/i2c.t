The chip on an I2C bus of the kernel, behind a USB adapter that the kernel drives.

  $ . "$KERNEL/setup.sh" i2c
  $ chip_on ZV32F403A_1024K
  $ cat sim.out
  ready /dev/i2c-0
  $ isp "${port_words[@]}"
  I2C Connect......
  Device:  ZV32F403A    Flash:  1024 KB
  PID:  70050347      BID:  1234    Version:  2.1
  Device connected Successfully
  
  $ there_and_back
  Erase
  Running...100%
  Download
  ./small.bin     8192B
  Running...100%
  Verify
  ./small.bin     8192B
  Running...100%
  Download successfully!
  Upload
  ./back.bin     8192B
  Running...100%
  Upload successfully!
  equal

Independent programs find it, and speak with it: GET_ID.

  $ i2cdetect -y 0 | grep 30:
  30: -- -- -- -- -- -- -- -- -- -- -- -- 3c -- -- -- 
  $ i2ctransfer -y 0 w2@0x3c 0x02 0xfd; i2ctransfer -y 0 r1@0x3c; i2ctransfer -y 0 r6@0x3c; i2ctransfer -y 0 r1@0x3c
  0x79
  0x04 0x03 0x47 0x70 0x05 0x07
  0x79
  $ i2ctransfer -y 0 r1@0x3d
  Error: Sending messages failed: No such device or address
  [1]

Unplugged in the middle of a download, and there again:

  $ chip_off; chip_on ZV32F403A_1024K --verbose --fault hangup@3000:200
  $ line -d --fn ./small.bin --addr 08000000 --v
  Erase
  Running...100%
  Download
  ./small.bin     8192B
  Running...25%
  send over serial port fail!
  [3]
  $ replugged
  $ there_and_back | tail -1
  equal
