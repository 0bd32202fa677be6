What an installation looks like:

  $ . "$SETUP"
  $ cmake --install $BUILD --prefix $PWD/there >/dev/null
  $ (cd there && find . -type f -o -type l | grep -v -e ./share -e zvbl-config- | sort)
  ./bin/ZV32_ISP_Console
  ./bin/zv32-check-map
  ./bin/zv32-line
  ./bin/zv32-look
  ./bin/zv32-sim
  ./bin/zv32-sim-dev
  ./include/zv32-isp/device/FilesInc.h
  ./include/zv32-isp/foundation/LibraryTypes.h
  ./include/zv32-isp/link/ZVBLLIB.h
  ./lib/cmake/zvbl/zvbl-config.cmake
  ./lib/libFiles.so
  ./lib/libFiles.so.1
  ./lib/libFiles.so.1.0.0
  ./lib/libZVBLLIB.so
  ./lib/libZVBLLIB.so.1
  ./lib/libZVBLLIB.so.1.0.0
  ./lib/pkgconfig/zvbl.pc
  ./lib/pkgconfig/zvfiles.pc
  ./lib/udev/rules.d/70-zv32-isp.rules
  ./libexec/zv32-unit
  $ diff -r there/share/zv32-isp-console/Map "$ROOT/Map" && echo all maps
  all maps
  $ there/bin/zv32-check-map there/share/zv32-isp-console/Map/*.ZVmap && echo nothing wrong
  nothing wrong
  $ cmp there/share/zv32-isp-console/unit-record.schema.json "$ROOT/line/books/unit-record.schema.json"

It finds its libraries beside itself, wherever it is moved, by a RUNPATH:

  $ mv there elsewhere
  $ readelf -d elsewhere/bin/ZV32_ISP_Console | grep -e RUNPATH -e RPATH -e 'SHARED.*lib[ZF]'
   0x000000000000001d (RUNPATH)            Library runpath: [$ORIGIN/../lib]
  $ chip_on ZV32F421_64K
  $ elsewhere/bin/ZV32_ISP_Console -com --pn $PWD/port | tail -3
  PID:  50020109      BID:  0201    Version:  2.0
  Device connected Successfully
  

A directory in LD_LIBRARY_PATH goes first: here stand builds of the two libraries that write down what
they are asked.

  $ LD_LIBRARY_PATH=$BUILD/doubles/zvbl ZVBL_DOUBLE_LOG=$PWD/log elsewhere/bin/ZV32_ISP_Console -com --pn ttyS3 | tail -3
  PID:  70050347      BID:  1234    Version:  2.1
  Device connected Successfully
  
  $ head -3 log
  TARGET_SetComIntType type=0
  SetCOMSettings h=0 port=3 name="ttyS3" baud=115200 bits=8 parity=2 stop=1.0
  SetCOMSettings h=1001 port=3 name="ttyS3" baud=115200 bits=8 parity=2 stop=1.0

Nothing of Qt in the libraries and the simulator:

  $ for file in elsewhere/lib/*.so.1 elsewhere/bin/zv32-sim; do readelf -d $file | grep -c 'NEEDED.*Qt'; done
  0
  0
  0
  [1]
