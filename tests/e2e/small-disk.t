A disk without room, and one that can't be written. (Where nobody may mount one, there is nothing to see.)

  $ unshare -rm true 2>/dev/null || exit 80
  $ mkdir disk map; cp "$ROOT"/Map/ZV32F403A_1024K.ZVmap map/
  $ cat >within <<'END'
  > export LD_LIBRARY_PATH=$BUILD/doubles/zvbl ZV32_MAP_DIR=$PWD/map
  > read_to() { ZV32_ISP_Console -com --pn ttyS3 -u --sec 0-3 --fn disk/$1 | tail -1; echo "status ${PIPESTATUS[0]}"; ls -A disk; }
  > mount -t tmpfs -o size=8k none disk && echo old >disk/keep.bin
  > read_to keep.bin
  > cat disk/keep.bin
  > mount -o remount,size=64k disk
  > read_to keep.bin
  > mount -o remount,ro disk
  > read_to keep.bin
  > read_to new.bin
  > stat -c %s disk/keep.bin
  > END
  $ unshare -rm bash within
  Unknown error!
  status 4
  keep.bin
  old
  Upload successfully!
  status 0
  keep.bin
  Cannot open file!
  status 4
  keep.bin
  Cannot open temporary file!
  status 4
  keep.bin
  8192
