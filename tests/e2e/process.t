What the console does with the process that it is given.

  $ . "$SETUP"
  $ chip_on ZV32F403A_1024K

A limit on the size of files is a failure with a text and a status, and the old file stays:

  $ echo old > keep.bin
  $ (ulimit -f 4; line -u --sec 0-7 --fn ./keep.bin)
  Upload
  ./keep.bin     16384B
  Running...100%
  
  Unknown error!
  [4]
  $ cat keep.bin
  old
  $ (ulimit -f 4; line -usd --get --fn ./usd.bin | tail -1)
  Get user system data to file succeed!
  $ (ulimit -f 2; line -usd --get --fn ./usd.hex)
  Get user system data to file
  running...
  Get user system data to file failed!
  [7]

A file of OTP data that is none, or that is too large for any chip:

  $ mkfifo fifo.zvtp; mkdir dir.zvtp; truncate -s 1G sparse.zvtp
  $ line -otp --fn ./fifo.zvtp | tail -1
  set OTP data to device successfully!
  $ line -otp --fn ./dir.zvtp | tail -1
  set OTP data to device successfully!
  $ line -otp --fn ./sparse.zvtp
  Set OTP data to device
  running...
  Get OTP data from the configuration file failed!
  [64]
