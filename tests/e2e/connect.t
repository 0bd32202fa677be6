  $ . "$SETUP"
  $ chip_on ZV32F403A_1024K
  /work/main/tests/e2e/setup.sh: line 9: zv32-sim: command not found
  [1]

The banner, then the chip:

  $ ZV32_ISP_Console -com --pn $PWD/port
  /bin/bash: line 6: ZV32_ISP_Console: command not found
  [127]

A chip that is already in its command state answers at once:

  $ isp -com --pn $PWD/port
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]

Two connection words on one line: the second one finds the port held by the first.

  $ isp -com --pn $PWD/port -com --pn $PWD/port
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]

A trailing sub-option without a value connects, and is then a bad parameter in silence.

  $ isp -com --pn $PWD/port --br
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]

Names of sub-options may be in capitals; parity in any case.

  $ isp -com --PN $PWD/port --BR 9600 --pr none --TO 1
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]

A word that is none:

  $ isp -com --pn $PWD/port --xyz 1
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]

A port that another program holds:

  $ flock --no-fork $PWD/port sleep 5 & holder=$!
  $ sleep 0.2; isp -com --pn $PWD/port
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ kill $holder

A port that is not there, a directory, and no name at all:

  $ isp -com --pn $PWD/nothing
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ isp -com --pn $PWD
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ isp -com
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]

A chip whose program runs answers nothing until it is reset:

  $ isp -com --pn $PWD/port -r
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ isp -com --pn $PWD/port
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
  $ kill -USR1 $chip_pid
  /bin/bash: line 34: kill: (4071) - No such process
  [1]
  $ isp -com --pn $PWD/port --auto 0
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]

A chip that no map knows:

  $ rm Map
  $ isp -com --pn $PWD/port
  /work/main/tests/e2e/setup.sh: line 33: ZV32_ISP_Console: command not found
  [127]
