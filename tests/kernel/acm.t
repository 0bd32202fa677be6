A serial port of the kernel's driver for USB modems.

  $ . "$KERNEL/setup.sh" acm
  $ chip_on ZV32F403A_1024K --verbose
  $ cat sim.out
  ready /dev/ttyACM0
  $ isp "${port_words[@]}"
  USART Connect......
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

The adapter was told rate and format:

  $ line --br 460800 -u --sec 0-3 --fn ./again.bin | tail -1
  Upload successfully!
  $ grep 'line coding' sim.err | uniq
  line coding: 9600 8N
  line coding: 115200 8E
  line coding: 460800 8E

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

The control lines reach the board's reset and boot pins; without them a chip in its application stays there:

  $ auto() {
  >     chip_off; chip_on ZV32F403A_1024K --verbose --wiring "$2"
  >     isp "${port_words[@]}" --to 1 --auto "$1" | sed -n 4p
  > }
  $ auto 0 reset=dtr:low,boot=rts:low
  $ auto 2 reset=dtr:low,boot=rts:low
  Device connected Successfully
  $ auto 6 reset=dtr:high,boot=rts:high
  Device connected Successfully
  $ auto 9 reset=rts:low,boot=dtr:high
  Device connected Successfully
  $ auto 11 reset=rts:high,boot=dtr:low
  Device connected Successfully
  $ grep lines: sim.err
  lines: DTR high, RTS high
  lines: DTR low, RTS high
  lines: DTR low, RTS low
  lines: DTR high, RTS low

What the adapter itself needs, and says:

  $ chip_off
  $ setpriv --reuid=65534 --regid=65534 --clear-groups zv32-sim --chip ZV32F403A_1024K --vhci-acm
  zv32-sim: cannot plug a device into vhci_hcd: Permission denied; that takes root
  [1]
  $ busybox rmmod vhci_hcd
  $ zv32-sim --chip ZV32F403A_1024K --vhci-acm
  zv32-sim: the kernel has no vhci_hcd: modprobe vhci-hcd
  [1]
