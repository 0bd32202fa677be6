A serial-line CAN adapter behind the kernel's own driver for such: a CAN interface with a bit rate, and the
chip at the adapter's bus.

  $ . "$KERNEL/setup.sh" slcan
  $ N_SLCAN=17 # the line discipline
  $ plug_in() {
  >     setsid ldattach $N_SLCAN "$PWD/adapter"
  >     until ip link show can0 >/dev/null 2>&1; do sleep 0.1; done
  >     up 250000
  > }
  $ up() { ip link set can0 down; ip link set can0 type can bitrate $1 && ip link set can0 up; }
  $ chip_on ZV32F403A_1024K
  $ plug_in
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

Another speed for the time of a line, by rtnetlink:

  $ ZVBL_TRACE=$PWD/trace line --speed 1000000 -u --sec 0-3 --fn ./again.bin | tail -1
  Upload successfully!
  $ cmp small.bin again.bin && echo equal
  equal
  $ grep -o '[0-9]* bit/s' trace
  250000 bit/s
  1000000 bit/s
  $ ip -d link show can0 | grep -o 'bitrate [0-9]*'
  bitrate 250000

An interface at another speed is brought to the chip's for the time of a line:

  $ up 500000
  $ isp "${port_words[@]}" | sed -n 4p
  Device connected Successfully
  $ ip -d link show can0 | grep -o 'bitrate [0-9]*'
  bitrate 500000

A user who may not do that can use the bus as it is:

  $ by_nobody "${port_words[@]}" --to 1
  CAN Connect......
  Unrecognized device...Please, reset your device then try again 
  [2]
  $ up 250000
  $ by_nobody "${port_words[@]}" | sed -n 4p
  Device connected Successfully
  $ by_nobody "${port_words[@]}" --speed 1000000; cat remarks
  CAN Connect......
  Unrecognized device...Please, reset your device then try again 
  can0 # open, 250000 bit/s
  can0 # the bus stays at 250000 bit/s: Operation not permitted
  can0 # closed
  $ ip -d link show can0 | grep -o 'bitrate [0-9]*'
  bitrate 250000

Unplugged in the middle of a download, and there again:

  $ chip_off; chip_on ZV32F403A_1024K --verbose --fault hangup@3000:200
  $ plug_in
  $ line -d --fn ./small.bin --addr 08000000 --v
  Erase
  Running...100%
  Download
  ./small.bin     8192B
  Running...25%
  send over serial port fail!
  [3]
  $ replugged
  $ plug_in
  $ there_and_back | tail -1
  equal
