One record is 38 bytes: offset, 32 bytes, lock flag, write flag. A flag of 0 means: do it.

  $ . "$SETUP"
  $ chip_on ZV32M412_256K
  $ record() { printf "\\x00\\x00\\x00\\x$1"; head -c 32 /dev/zero | tr '\0' "$2"; printf "\\x$3\\x$4"; }

Two records: the first one is written and locked. A file of two records yields one of them, so a third
stands behind.

  $ { record 00 A 00 00; record 20 B 01 00; record 40 C 01 01; } > data.zvtp
  $ line -otp --fn ./data.zvtp
  Set OTP data to device
  running...
  set OTP data to device successfully!
  $ line -otp --fn ./data.zvtp
  Set OTP data to device
  running...
  Write OTP data failed!
  [64]

A locked block can't be written again; one that is not locked can't be written twice either.

  $ { record 00 D 01 00; head -c 2 /dev/zero; } > again.ZVTP
  $ line -otp --fn ./again.ZVTP
  Set OTP data to device
  running...
  Write OTP data failed!
  [64]
  $ { record 40 C 00 00; head -c 2 /dev/zero; } > third.zvtp
  $ line -otp --fn ./third.zvtp
  Set OTP data to device
  running...
  Write OTP lock failed!
  [64]

A file of 38 bytes holds no record, and one that does not exist holds none either:

  $ record 60 E 00 00 > short.zvtp
  $ line -otp --fn ./short.zvtp
  Set OTP data to device
  running...
  set OTP data to device successfully!
  $ line -otp --fn ./none.zvtp
  Set OTP data to device
  running...
  set OTP data to device successfully!
  $ line -otp
  set OTP data to device successfully!

Names:

  $ line -otp --fn ./data.bin
  Set OTP data to device
  running...
  bad parameter "./data.bin"
  [1]
  $ line -otp --fn ./data.bin -e
  Set OTP data to device
  running...
  bad parameter "./data.bin"
  bad parameter ./data.bin
  [1]
  $ line -otp --fn zvtp
  Set OTP data to device
  running...
  bad parameter "zvtp"
  [1]
  $ line -otp --fn
  Set OTP data to device
  running...
  bad parameter " (no-eol)
  $ line -otp foo
  foo
  [1]

A family without OTP: the writes go to low addresses, and the chip refuses them.

  $ chip_new ZV32F403A_1024K
  $ line -otp --fn ./data.zvtp
  Set OTP data to device
  running...
  Write OTP data failed!
  [64]
