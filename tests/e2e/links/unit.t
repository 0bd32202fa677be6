A unit over each link, by the process that makes it for zv32-line; the console is the witness.

  $ . "$SETUP"
  $ chip_on ZV32F457_256K
  $ case $LINK in dfu) at=1-1 ;; i2c) at=/dev/i2c-1 ;; spi) at=/dev/spidev0.0 ;; can) at=can0 ;; *) at=$PWD/port ;; esac
  $ unit() { find_port "$BUILD/doubles/libshort_sleep.so"; "$ROOT/tests/line/unit.py" $LINK $at ZV32F457_256K "$@" -- "${port_env[@]}" "$BUILD/libexec/zv32-unit"; }
  $ seq 1 2000 | head -c 5000 >fw.bin
  $ unit --image fw.bin@08000000 'sectors=[0,1,2]' verify='"both"' options='{"data0":18}' protect='[6]'
  connect
  identify
  erase
  write
  verify
  options
  protect
  pass
  $ line -u --sec 0-2 --fn ./back.bin | tail -n 1
  Upload successfully!
  $ cmp -n 5000 fw.bin back.bin
  $ near zv32-look options "${port_words[@]}" --toml
  [options]
  data = { 0 = 0x12 }
  protect = "6-7"

It stops between two sectors where it is told to, and says so; what can't be undone is asked for.

  $ unit --image fw.bin@08000000 'sectors=[0,1,2]' --stop erase
  connect
  identify
  erase
  interrupted
  $ unit --image fw.bin@08000000 'sectors=[0,1,2]' 'otp=[{"block":1,"bytes":"01020304","lock":true}]' --refuse
  connect
  identify
  erase
  write
  verify
  irreversible: otp, otp locks
  interrupted
  $ unit --image fw.bin@08000000 'sectors=[0,1,2]' 'otp=[{"block":1,"bytes":"01020304","lock":true}]' access='"on"'
  connect
  identify
  erase
  write
  verify
  irreversible: otp, otp locks
  otp
  access
  pass
  $ unit --image fw.bin@08000000 'sectors=[0,1,2]'
  connect
  identify
  fail protected The device is access protection!
  $ chip_off
  $ unit --image fw.bin@08000000 | sed -E 's/(no-port|no-answer)$/gone/; s/(no-port|no-answer) .*/gone/'
  connect
  fail gone
