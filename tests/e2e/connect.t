  $ . "$SETUP"
  $ chip_on ZV32F403A_1024K

The banner, then the chip:

  $ ZV32_ISP_Console -com --pn $PWD/port
  ------------------------------------------------------------
  Zelvor ISP Programmer V3.0.14
  Support USART and DFU
  ------------------------------------------------------------
  
  USART Connect......
  Device:  ZV32F403A    Flash:  1024 KB
  PID:  70050347      BID:  1234    Version:  2.1
  Device connected Successfully
  

A chip that is already in its command state answers at once:

  $ isp -com --pn $PWD/port
  USART Connect......
  Device:  ZV32F403A    Flash:  1024 KB
  PID:  70050347      BID:  1234    Version:  2.1
  Device connected Successfully
  

Two connection words on one line: the second one finds the port held by the first.

  $ isp -com --pn $PWD/port -com --pn $PWD/port
  USART Connect......
  Device:  ZV32F403A    Flash:  1024 KB
  PID:  70050347      BID:  1234    Version:  2.1
  Device connected Successfully
  
  USART Connect......
  Cannot open the com port, the port not exist or may be used by another application
  [2]

A trailing sub-option without a value connects, and is then a bad parameter in silence.

  $ isp -com --pn $PWD/port --br
  USART Connect......
  Device:  ZV32F403A    Flash:  1024 KB
  PID:  70050347      BID:  1234    Version:  2.1
  Device connected Successfully
  
  [1]

Names of sub-options may be in capitals; parity in any case.

  $ isp -com --PN $PWD/port --BR 9600 --pr none --TO 1
  USART Connect......
  Device:  ZV32F403A    Flash:  1024 KB
  PID:  70050347      BID:  1234    Version:  2.1
  Device connected Successfully
  

A word that is none:

  $ isp -com --pn $PWD/port --xyz 1
  USART Connect......
  bad parameter "--xyz"
  [2]

A port that another program holds:

  $ flock --no-fork $PWD/port sleep 5 & holder=$!
  $ sleep 0.2; isp -com --pn $PWD/port
  USART Connect......
  Cannot open the com port, the port not exist or may be used by another application
  [2]
  $ kill $holder

A port that is not there, a directory, and no name at all:

  $ isp -com --pn $PWD/nothing
  USART Connect......
  Cannot open the com port, the port not exist or may be used by another application
  [2]
  $ isp -com --pn $PWD
  USART Connect......
  Cannot open the com port, the port not exist or may be used by another application
  [2]
  $ isp -com
  USART Connect......
  Cannot open the com port, the port not exist or may be used by another application
  [2]

A chip whose program runs answers nothing until it is reset:

  $ isp -com --pn $PWD/port -r
  USART Connect......
  Device:  ZV32F403A    Flash:  1024 KB
  PID:  70050347      BID:  1234    Version:  2.1
  Device connected Successfully
  
  Your code is running... (0x08000000)
  $ isp -com --pn $PWD/port
  USART Connect......
  Unrecognized device...Please, reset your device then try again 
  [2]
  $ kill -USR1 $chip_pid
  $ isp -com --pn $PWD/port --auto 0
  USART Connect......
  Device:  ZV32F403A    Flash:  1024 KB
  PID:  70050347      BID:  1234    Version:  2.1
  Device connected Successfully
  

A chip that no map knows:

  $ rm Map
  $ isp -com --pn $PWD/port
  USART Connect......
  Init Device Failed!
  [2]
