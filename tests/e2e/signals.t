A signal in the middle of an upload ends the console as it ends any program, and leaves the old file.

  $ . "$SETUP"
  $ chip_on ZV32F403A_1024K --baud-pace
  $ echo old > keep.bin
  $ for signal in INT TERM KILL; do
  >     env ZVBL_TRACE=$PWD/trace.$signal bash -c 'trap - INT; exec ZV32_ISP_Console "$@"' console \
  >         -com --pn $PWD/port --br 1000000 -u --sec 0-255 --fn $PWD/keep.bin >/dev/null &
  >     console=$!
  >     until [ "$(grep -c . trace.$signal 2>/dev/null)" -gt 60 ]; do sleep 0.01; done
  >     kill -$signal $console; wait $console 2>/dev/null; echo "$signal: status $?"
  >     cat keep.bin; ls
  > done
