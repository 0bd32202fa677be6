The power fails in the middle of a write of the option bytes. A pair that was not written does not match
its complement and reads as FF; where it is the access protection byte, the chip takes itself for
protected. Disabling the protection erases the flash, restores the option bytes, and the chip is as new.

  $ . "$SETUP"
  $ for cut in 0 1 5 23; do
  >     echo "== behind pair $cut"
  >     chip_new ZV32F403A_1024K
  >     line -usd --get --fn ./factory.bin >/dev/null
  >     chip_off; chip_on ZV32F403A_1024K --fault powercut@$cut:options
  >     line --to 1 -usd --set --fn ./factory.bin
  >     line -usd --get --fn ./back.bin | tail -1
  >     line -p --dfap | tail -1
  >     line -usd --get --fn ./back.bin | tail -1; cmp factory.bin back.bin && echo repaired
  > done
  == behind pair 0
  Set user system data to device
  running...
  Set user system data to device failed!
  Get user system data to file failed!
  Disable access protection successfully!
  Get user system data to file succeed!
  repaired
  == behind pair 1
  Set user system data to device
  running...
  Set user system data to device failed!
  Get user system data to file succeed!
  Disable access protection successfully!
  Get user system data to file succeed!
  repaired
  == behind pair 5
  Set user system data to device
  running...
  Set user system data to device failed!
  Get user system data to file succeed!
  Disable access protection successfully!
  Get user system data to file succeed!
  repaired
  == behind pair 23
  Set user system data to device
  running...
  Set user system data to device failed!
  Get user system data to file succeed!
  Disable access protection successfully!
  Get user system data to file succeed!
  repaired

The command refused, and the line lost, in the middle of the same write:

  $ chip_new ZV32F403A_1024K --fault nack@1:E2
  $ line --to 1 -usd --set --fn ./factory.bin
  Set user system data to device
  running...
  Set user system data to device failed!
  [6]
  $ line --to 1 -usd --set --fn ./factory.bin
  Set user system data to device
  running...
  Set user system data to device successfully!

  $ chip_new ZV32F403A_1024K --fault hangup@50:50
  $ line --to 1 -usd --set --fn ./factory.bin
  Set user system data to device
  running...
  Set user system data to device failed!
  [6]
  $ until [ "$(grep -c ready sim.out)" = 2 ]; do sleep 0.01; done
  $ line --to 1 -usd --set --fn ./factory.bin
  Set user system data to device
  running...
  Set user system data to device successfully!
  $ line -usd --get --fn ./back.bin | tail -1; cmp factory.bin back.bin && echo same
  Get user system data to file succeed!
  same
