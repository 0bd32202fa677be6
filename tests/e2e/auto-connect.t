DTR and RTS take a chip into its bootloader. Each row of --auto is for boards that are wired like it: its
number, the wiring, and another row that does not reach such a board.

  $ . "$SETUP"
  $ cat > boards <<END
  > 1 reset=dtr:low 7
  > 2 reset=dtr:low,boot=rts:low 3
  > 3 reset=dtr:low,boot=rts:high 2
  > 4 reset=dtr:high 1
  > 5 reset=dtr:high,boot=rts:low 6
  > 6 reset=dtr:high,boot=rts:high 5
  > 7 reset=rts:low 1
  > 8 reset=rts:low,boot=dtr:low 9
  > 9 reset=rts:low,boot=dtr:high 8
  > 10 reset=rts:high 7
  > 11 reset=rts:high,boot=dtr:low 12
  > 12 reset=rts:high,boot=dtr:high 11
  > END

Its own row reaches the chip whatever that does behind its power-on, and starts its program. The program goes
on when the console ends, or is held in reset as soon as somebody opens the port. So the chip does not answer
to a line without --auto, with row 0, which moves nothing, and with the wrong row. Its own row brings it back.

  $ try() {
  >     isp "${port_words[@]}" "$@" >out; local status=$?
  >     printf ' %s' $status
  >     case $status in
  >         0) grep -q '^Device connected Successfully' out ;;
  >         2) grep -q '^Unrecognized device...Please, reset your device then try again $' out ;;
  >     esac || cat out
  > }
  $ board() (
  >     mkdir board$1; cd board$1; ln -s "$MAPS" Map; trap chip_off EXIT
  >     board_on "$2" ZV32F421_64K
  >     printf '%2d %-28s' $1 $2
  >     try --auto $1 -r; try; try --auto 0; try --auto $3; try --auto $1; echo
  > )
  $ while read row; do board $row >${row%% *}.out 2>&1 & done < boards; wait
  $ cat $(seq -f %g.out 12)
   1 reset=dtr:low                0 2 2 2 0
   2 reset=dtr:low,boot=rts:low   0 2 2 2 0
   3 reset=dtr:low,boot=rts:high  0 2 2 2 0
   4 reset=dtr:high               0 2 2 2 0
   5 reset=dtr:high,boot=rts:low  0 2 2 2 0
   6 reset=dtr:high,boot=rts:high 0 2 2 2 0
   7 reset=rts:low                0 2 2 2 0
   8 reset=rts:low,boot=dtr:low   0 2 2 2 0
   9 reset=rts:low,boot=dtr:high  0 2 2 2 0
  10 reset=rts:high               0 2 2 2 0
  11 reset=rts:high,boot=dtr:low  0 2 2 2 0
  12 reset=rts:high,boot=dtr:high 0 2 2 2 0

The lines one by one, and what they do to the chip. Opening the port raises both:

  $ board_on reset=dtr:low,boot=rts:high ZV32F403A_1024K --verbose
  $ line --auto 3 -r
  Your code is running... (0x08000000)
  $ isp "${port_words[@]}" --auto 2 | tail -1
  Unrecognized device...Please, reset your device then try again 
  $ chip_off; grep -v -e command -e bytes sim.err
  held in reset
  lines: DTR high, RTS high
  released
  lines: DTR low, RTS high
  held in reset
  lines: DTR high, RTS high
  released
  lines: DTR high, RTS low
  the chip runs its own code
  lines: DTR high, RTS high
  lines: DTR low, RTS high
  held in reset
  lines: DTR low, RTS low
  lines: DTR high, RTS low
  released
  the chip runs its own code
  lines: DTR high, RTS high

Row 0 is for a board that is reset by hand. A number that is no row moves nothing either, and is no failure:

  $ board_on "" ZV32F403A_1024K --verbose
  $ for row in 0 13 -1; do try --auto $row -r; try --auto $row; press_reset; done; echo
   0 2 0 2 0 2
  $ chip_off; grep -c lines: sim.err
  1

Who resets the chip by a command has to take it into the bootloader again. This chip restarts before it is
verified, and RTS then says that it is to start its program:

  $ head -c 5000 /dev/urandom > image.bin
  $ rm chip.state
  $ board_on reset=dtr:low,boot=rts:high ZV32F403_1_1024K --verbose
  $ line --auto 3 -d --fn ./image.bin --v | tail -1
  Download successfully!
  $ grep -e RESET -e reset -e released -e runs sim.err; chip_off
  held in reset
  released
  held in reset
  released
  reset
  the chip runs its own code
  held in reset
  released

Unplugged in the middle of a download, and plugged in again:

  $ board_on reset=rts:high,boot=dtr:low ZV32F403_1_1024K --fault hangup@4000:50
  $ line --auto 11 -d --fn ./image.bin | tail -1
  send over serial port fail!
  $ replugged
  $ line --auto 11 -d --fn ./image.bin | tail -1
  Download successfully!
