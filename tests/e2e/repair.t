The power fails in the middle of a write of the option bytes. The pair that was not finished does not
match its complement, and the chip takes itself for protected. Disabling the protection erases the
flash, restores the option bytes, and the chip is as new.

  $ . "$SETUP"
  $ for cut in 0 1 5 23; do
  >     echo "== behind pair $cut"
  >     chip_new ZV32F403A_1024K
  >     line -usd --get --fn ./factory.bin >/dev/null
  >     chip_off; chip_on ZV32F403A_1024K --fault powercut@$cut:options
  >     line -usd --set --fn ./factory.bin
  >     line -usd --get --fn ./back.bin | tail -1
  >     line -p --dfap | tail -1
  >     line -usd --get --fn ./back.bin | tail -1; cmp factory.bin back.bin && echo repaired
  > done

The command refused, and the line lost, in the middle of the same write:

  $ chip_new ZV32F403A_1024K --fault nack@1:E2
  $ line -usd --set --fn ./factory.bin
  $ line -usd --set --fn ./factory.bin

  $ chip_new ZV32F403A_1024K --fault hangup@150:50
  $ line -usd --set --fn ./factory.bin
  $ sleep 0.2
  $ line -usd --set --fn ./factory.bin
  $ line -usd --get --fn ./back.bin | tail -1; cmp factory.bin back.bin && echo same
