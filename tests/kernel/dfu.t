The chip's own USB on the kernel's bus: libusb and usbfs as they are.

  $ . "$KERNEL/setup.sh" dfu
  $ chip_on ZV32F403A_1024K
  $ cat sim.out
  ready /dev/bus/usb/001/002
  $ isp "${port_words[@]}"
  DFU Connect......
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

An independent program sees the same:

  $ dfu-util -l | grep '^Found'
  Found DFU: [1209:0001] ver=0210, devnum=2, cfg=1, intf=0, path="1-1", alt=0, name="@Internal Flash  /0x08000000/512*002Kg", serial="59A1BED7A33C9C89DBBF1BF2"
  $ dfu-util -a 0 -s 0x08000000:8192 -U witness.bin 2>&1 | grep 'Upload done'
  Upload done.
  $ cmp small.bin witness.bin && echo equal
  equal

Behind a reset the device is another one to the kernel, at the same port, and the line goes on:

  $ line -p --eepp 511-511 -p --depp -u --sec 0-3 --fn ./again.bin | grep success
  Enable erase and program protection successfully!
  Disable erase and program protection successfully!
  Upload successfully!
  $ cmp small.bin again.bin && echo equal
  equal
  $ cat sim.out
  ready /dev/bus/usb/001/002
  ready /dev/bus/usb/001/003
  ready /dev/bus/usb/001/004

A user who may not open the device is told so by the trace:

  $ by_nobody "${port_words[@]}"
  DFU Connect......
  Open DFU device error!
  [2]
  $ cat remarks
  dfu # device 0: usb 1-1 cannot be opened: Permission denied
  dfu0 # cannot open: Permission denied

Unplugged in the middle of a download, and there again:

  $ chip_off; chip_on ZV32F403A_1024K --verbose --fault hangup@5000:200
  $ line -d --fn ./small.bin --addr 08000000 --v
  Erase
  Running...100%
  Download
  ./small.bin     8192B
  Running...50%
  send over serial port fail!
  [3]
  $ replugged
  $ there_and_back | tail -1
  equal

Without a device:

  $ chip_off
  $ isp "${port_words[@]}"
  DFU Connect......
  Unable to get DFU device
  [2]
