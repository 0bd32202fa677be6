A signal in the middle of an upload ends the console as it ends any program, and leaves the old file.

  $ . "$SETUP"
  $ chip_on ZV32F403A_1024K --baud-pace
  $ echo old > keep.bin
  $ for signal in INT TERM KILL; do
  >     rm -f out
  >     env --default-signal=INT ZV32_ISP_Console \
  >         -com --pn $PWD/port --br 1000000 -u --sec 0-255 --fn $PWD/keep.bin >out &
  >     console=$!
  >     until grep -qs Upload out || ! kill -0 $console; do sleep 0.01; done
  >     kill -$signal $console; wait $console 2>/dev/null; echo "$signal: status $?"
  >     wc -c < keep.bin; ls *bin* .??* 2>/dev/null
  > done
  INT: status 130
  4
  keep.bin
  TERM: status 143
  4
  keep.bin
  KILL: status 137
  4
  keep.bin
  [2]
  $ line --br 1000000 -u --sec 0-0 --fn ./keep.bin | tail -1
  Upload successfully!

