The chip on a virtual CAN bus of the kernel.

  $ . "$KERNEL/setup.sh" vcan
  $ chip_on ZV32F403A_1024K
  $ isp "${port_words[@]}"
  CAN Connect......
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

Independent programs on the same bus, the opening frame and GET_ID:

  $ candump -L -n 6 vcan0 >dump & dumper=$!
  $ until grep -q vcan0 /proc/net/can/rcvlist_all; do sleep 0.1; done
  $ cansend vcan0 07F#; until grep -q 17F# dump; do sleep 0.1; done; cansend vcan0 002#
  $ wait $dumper; sed 's/^([0-9.]*) //' dump
  vcan0 07F#
  vcan0 17F#1F
  vcan0 002#
  vcan0 102#79
  vcan0 102#04034770050732
  vcan0 102#79

A virtual bus has no speed, and the chip keeps its own:

  $ line --speed 1000000 -u --sec 0-3 --fn ./again.bin | tail -1
  Upload successfully!
  $ cmp small.bin again.bin && echo equal
  equal
  $ isp "${port_words[@]}" | sed -n 4p
  Device connected Successfully

The interface goes down, and away, in the middle of a download:

  $ slow_chip() { chip_off; chip_on ZV32F403A_1024K --verbose --flash-time=20,500000; }
  $ at_write() { until grep -q 'command: WRITE' sim.err; do sleep 0.1; done; "$@"; }
  $ slow_chip
  $ at_write ip link set vcan0 down & line -d --fn ./small.bin --addr 08000000
  Erase
  Running...100%
  Download
  ./small.bin     8192B
  
  send over serial port fail!
  [3]
  $ ip link set vcan0 up
  $ slow_chip
  $ at_write ip link del vcan0 & line -d --fn ./small.bin --addr 08000000
  Erase
  Running...100%
  Download
  ./small.bin     8192B
  
  send over serial port fail!
  [3]
  $ kill -0 $chip_pid && grep 'interface has' sim.err
  the interface has gone away

Without the interface, for the console and for the chip:

  $ isp "${port_words[@]}"
  CAN Connect......
  Cannot open the com port, the port not exist or may be used by another application
  [2]
  $ chip_off; chip_on ZV32F403A_1024K
  zv32-sim: there is no interface "vcan0"
  [1]
