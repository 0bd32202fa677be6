What stands in front of everything else: the link's own line, then the chip. A second run finds the chip in
its command state.

  $ . "$SETUP"
  $ chip_on ZV32F403A_1024K
  $ for run in 1 2; do isp "${port_words[@]}"; done
  @LINK@ Connect......
  Device:  ZV32F403A    Flash:  1024 KB
  PID:  70050347      BID:  1234    Version:  2.1
  Device connected Successfully
  
  @LINK@ Connect......
  Device:  ZV32F403A    Flash:  1024 KB
  PID:  70050347      BID:  1234    Version:  2.1
  Device connected Successfully
  

The oldest chips have identifiers of two bytes, sector numbers of one byte, and few commands:

  $ chip_new ZV32F403_2_256K
  $ isp "${port_words[@]}" -e --all
  @LINK@ Connect......
  Device:  ZV32F403_2    Flash:  256 KB
  PID:  0242      BID:  NA    Version:  1.0
  Device connected Successfully
  
  Erase
  Running...100%
  Erase successfully!
  $ head -c 6000 /dev/urandom > image.bin
  $ line -d --fn ./image.bin --v | tail -1
  Download successfully!

A chip that no map knows:

  $ rm Map
  $ isp "${port_words[@]}"
  @LINK@ Connect......
  Init Device Failed!
  [2]
