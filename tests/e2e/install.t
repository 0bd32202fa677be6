What an installation looks like:

  $ . "$SETUP"
  $ cmake --install $BUILD --prefix $PWD/there >/dev/null
  $ (cd there && find . -type f -o -type l | grep -v /Map/ | sort)
  $ find there -name '*.ZVmap' | wc -l | tr -d ' '; ls $ROOT/Map | wc -l

It finds its libraries beside itself, wherever it is moved, by a RUNPATH:

  $ mv there elsewhere
  $ readelf -d elsewhere/bin/ZV32_ISP_Console | grep -e RUNPATH -e RPATH -e 'SHARED.*lib[ZF]'
  $ chip_on ZV32F421_64K
  $ elsewhere/bin/ZV32_ISP_Console -com --pn $PWD/port | tail -3

A directory in LD_LIBRARY_PATH goes first: here stand builds of the two libraries that write down what
they are asked.

  $ LD_LIBRARY_PATH=$BUILD/doubles ZVBL_DOUBLE_LOG=$PWD/log elsewhere/bin/ZV32_ISP_Console -com --pn $PWD/port | tail -3
  $ head -3 log

Nothing of Qt in the libraries and the simulator:

  $ for file in elsewhere/lib/*.so.1 elsewhere/bin/zv32-sim; do readelf -d $file | grep -c 'NEEDED.*Qt'; done
