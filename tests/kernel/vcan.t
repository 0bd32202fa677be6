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

  $ candump -L -n 6 vcan0 >dump &
  $ until ss -f can 2>/dev/null | grep -q vcan0 || grep -q vcan0 /proc/net/can/rcvlist_all; do sleep 0.1; done
  $ cansend vcan0 07F#; sleep 0.3; cansend vcan0 002#
  $ wait %2 && sed 's/^([0-9.]*) //' dump
  vcan0 07F#
  vcan0 17F#1F
  vcan0 002#
  vcan0 102#79
  vcan0 102#04034770050732
  vcan0 102#79

Speeds are not what a virtual bus has:

  $ line --speed 500000 -u --sec 0-3 --fn ./again.bin | tail -1
  Upload successfully!

Unplugged, as far as a bus can be: the interface goes away.

  $ chip_off; cp chip.state written.state
