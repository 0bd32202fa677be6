On a ZV32F403 a download restarts the chip before it is verified. Every restart takes the line away and
back: two seconds, then a new connect.

  $ . "$SETUP"
  $ chip_on ZV32F403_1_1024K
  $ head -c 5000 /dev/urandom > part.bin
  $ start=$SECONDS; ZV32_ISP_Console -com --pn $PWD/port -d --fn ./part.bin --v | sed 's/.*\r//'
  ------------------------------------------------------------
  Zelvor ISP Programmer V3.0.14
  Support USART and DFU
  ------------------------------------------------------------
  
  USART Connect......
  Device:  ZV32F403_1    Flash:  1024 KB
  PID:  70050341      BID:  0003    Version:  2.0
  Device connected Successfully
  
  Erase
  Running...100%
  Download
  ./part.bin     5000B
  Running...100%
  Verify
  ./part.bin     5000B
  Running...100%
  Download successfully!
  $ [ $((SECONDS - start)) -ge 2 ] && echo 'two seconds at least'
  two seconds at least
  $ isp -com --pn $PWD/port -u --sec 0-2 --fn ./back.bin
  USART Connect......
  Device:  ZV32F403_1    Flash:  1024 KB
  PID:  70050341      BID:  0003    Version:  2.0
  Device connected Successfully
  
  Upload
  ./back.bin     6144B
  Running...100%
  Upload successfully!
  $ cmp -n 5000 part.bin back.bin && echo equal
  equal
