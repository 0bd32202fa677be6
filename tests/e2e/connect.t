  $ . "$SETUP"
  $ chip_on ZV32F403A_1024K

The banner, then the chip:

  $ ZV32_ISP_Console -com --pn $PWD/port

A chip that is already in its command state answers at once:

  $ isp -com --pn $PWD/port

Two connection words on one line: the second one finds the port held by the first.

  $ isp -com --pn $PWD/port -com --pn $PWD/port

A trailing sub-option without a value connects, and is then a bad parameter in silence.

  $ isp -com --pn $PWD/port --br

Names of sub-options may be in capitals; parity in any case.

  $ isp -com --PN $PWD/port --BR 9600 --pr none --TO 1

A word that is none:

  $ isp -com --pn $PWD/port --xyz 1

A port that another program holds:

  $ flock --no-fork $PWD/port sleep 5 & holder=$!
  $ sleep 0.2; isp -com --pn $PWD/port
  $ kill $holder

A port that is not there, a directory, and no name at all:

  $ isp -com --pn $PWD/nothing
  $ isp -com --pn $PWD
  $ isp -com

A chip whose program runs answers nothing until it is reset:

  $ isp -com --pn $PWD/port -r
  $ isp -com --pn $PWD/port
  $ kill -USR1 $chip_pid
  $ isp -com --pn $PWD/port --auto 0

A chip that no map knows:

  $ rm Map
  $ isp -com --pn $PWD/port
