What else goes on on the machine: others that want the same port or the same file, a map directory full of things, an
environment without anything, a disk without room.

  $ . "$SETUP"
  $ chip_on ZV32F421_64K
  $ head -c 4096 /dev/urandom > image.bin; line -d --fn ./image.bin --v | tail -1
  Download successfully!

Without HOME, PATH and everything else:

  $ env -i $BUILD/bin/ZV32_ISP_Console -com --pn $PWD/port -u --sec 0-3 --fn ./back.bin | tail -1
  Upload successfully!
  $ cmp image.bin back.bin && echo equal
  equal

A map directory of 10,000 files, with pipes, links that lead round in a circle and links to nothing among them:

  $ rm Map; mkdir Map; cp "$MAPS"/ZV32F421_64K.ZVmap Map/
  $ (cd Map; seq -f 'A%05g.ZVmap' 10000 | xargs touch; mkfifo A1.ZVmap; ln -s B.ZVmap A.ZVmap; ln -s A.ZVmap B.ZVmap)
  $ ln -s . Map/round; ln -s nowhere Map/C.ZVmap
  $ line -u --sec 0-3 --fn ./back.bin | tail -1; cmp image.bin back.bin && echo equal
  Upload successfully!
  equal
  $ rm -r Map; ln -s "$MAPS" Map

Nobody reads what it prints: it waits, and goes on when somebody does.

  $ { sleep 0.2; tail -n 1; } < <(ZV32_ISP_Console -com --pn $PWD/port -e --sec 4-5 -u --sec 0-3 --fn ./back.bin)
  Upload successfully!
  $ cmp image.bin back.bin && echo equal
  equal

Two consoles on one port: the second one is told, and the first one does not notice.

  $ chip_off; chip_on ZV32F421_64K --baud-pace
  $ ZV32_ISP_Console -com --pn $PWD/port -u --sec 0-3 --fn $PWD/slow.bin >first.out & first=$!
  $ until grep -qs Upload first.out; do sleep 0.01; done
  $ isp -com --pn $PWD/port -e --all; kill -0 $first && echo 'the first is still at work'
  USART Connect......
  Cannot open the com port, the port not exist or may be used by another application
  the first is still at work
  $ wait $first; cmp image.bin slow.bin && echo equal
  equal

Two consoles make one file: it is always whole, and that of one of them.

  $ both() { LD_LIBRARY_PATH=$BUILD/doubles/zvbl ZV32_ISP_Console -com --pn ttyS3 -u --sec 0-3 --fn ./one.bin >/dev/null; }
  $ for round in 1 2 3 4 5; do both & both & wait %+ %-; stat -c %s one.bin; done 2>/dev/null | uniq
  8192
  $ ls -A | grep tmp
  [1]

The machine's clock is set while a job runs, by days, forth and back. Only the trace tells the time of day.

  $ chip_off; chip_on ZV32F421_64K
  $ set_clock() { env LD_PRELOAD=$BUILD/doubles/libstepping_clock.so ZVBL_TRACE=$PWD/trace "$@"; }
  $ set_clock ZV32_ISP_Console -com --pn $PWD/port -d --fn ./image.bin --v -u --sec 0-3 --fn ./back.bin | tail -1
  Upload successfully!
  $ cmp image.bin back.bin && echo equal
  equal
  $ [ $(cut -c 1-10 trace | sort -u | wc -l) -gt 100 ] && echo 'more than 100 days'
  more than 100 days
