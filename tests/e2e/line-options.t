What else a unit becomes: option bytes, sectors under protection, memory that is written once, data of a hook.

  $ . "$SETUP"
  $ export LD_PRELOAD="$BUILD/doubles/libshort_sleep.so"
  $ seq 1 2000 | head -c 5000 >fw.bin
  $ cat >job.toml <<'END'
  > format = 1
  > name = "all of it"
  > quantity = 3
  > [chip]
  > name = "ZV32F457_256K"
  > [image]
  > file = "fw.bin"
  > verify = "crc"
  > [[unit]]
  > at = 0x08001400
  > value = "supply"
  > supply = "mac"
  > as = "hex"
  > size = 6
  > [[unit]]
  > at = 0x08001408
  > value = "supply"
  > supply = "batch"
  > as = "u32be"
  > [options]
  > ssb = 0xF7
  > data = { 10 = 0x34, 9 = 0x12 }
  > protect = "0-3, 9"
  > [[otp]]
  > block = 2
  > hex = "0011223344556677"
  > lock = true
  > [[otp]]
  > block = 0
  > lock = true
  > END
  $ zv32-line check job.toml
  plan 1
  name         "all of it"
  quantity     3
  chip         ZV32F457_256K, a protected one is refused
  again        refuse
  image        sha256 828443b00a141f48dd7f702c57b5bffe6d8b5265990cfef97fc3aabca45428b5 5000 bytes 08000000-08001387
  unit         08001400 6 supply "mac" hex
  unit         08001408 4 supply "batch" u32be
  erase        sectors 0-2
  verify       crc
  options      ssb=F7 data9=12 data10=34 protect=0-3, 9
  otp          block 0 locked
  otp          block 2 0011223344556677 locked
  access       leave
  run          no
  irreversible otp, otp locks
  
  hash         1878ef7d129db6d86ed1099a98ef6e2ab8a24f2f42df32cf6f9abd0ae21ba846
  approval     missing
  $ rehearse() { zv32-line rehearse "$@" --keep chip.state --supply mac=020000A1b2c3 --supply batch=4711 | tail -n 1; }
  $ rehearse job.toml
  PASS uid ed4b91d7807d81da3f1b4233

The chip holds it, and what is named by no key is as it was.

  $ unset LD_PRELOAD
  $ chip_on ZV32F457_256K
  $ near zv32-look options "${port_words[@]}"
  access protection                   off (A5)
  protected sectors                   0-3, 8-9 (6 sectors)
  watchdog is started by the program  yes
  no reset at deep sleep              yes
  no reset at standby                 yes
  start from bank 1                   yes
  watchdog runs in deep sleep         yes
  watchdog runs in standby            yes
  RAM parity off                      yes
  bytes in all                        256
  bytes that are not FF
    byte  name    value
       0  FAP        A5
       1  SSB        F7
       4  EPP0       EC
      45  DATA9      12
      46  DATA10     34
  $ near zv32-look options "${port_words[@]}" --toml | tee pasted.toml
  [options]
  ssb = 0xF7
  data = { 9 = 0x12, 10 = 0x34 }
  protect = "0-3, 8-9"
  $ line -u --sec 2-2 --fn ./unit.bin | tail -n 1
  Upload successfully!
  $ od -An -tx1 -j 1024 -N 12 unit.bin
   02 00 00 a1 b2 c3 ff ff 00 00 12 67
  $ chip_off
  $ export LD_PRELOAD="$BUILD/doubles/libshort_sleep.so"

Made again it is not written twice: it has the same already. Its sectors are protected, which is refused or removed.

  $ zv32-line rehearse job.toml --keep chip.state
  connect
  identify
  FAIL protected: The device is erase and program protection!
  [4]
  $ sed 's/^\[image\]/protected = "erase"\n[image]/' job.toml >again.toml
  $ zv32-line rehearse again.toml --keep chip.state --supply mac=020000a1b2c3 --supply batch=1
  connect
  identify
  erase
  write
  verify
  options
  protect
  PASS uid ed4b91d7807d81da3f1b4233
  $ sed 's/556677/556678/' again.toml >other.toml
  $ cp chip.state before.state
  $ rehearse other.toml
  FAIL otp: the OTP memory holds something else
  $ cmp chip.state before.state

What the chip told pastes into a job.

  $ { sed -n '1,/^verify/p' job.toml; cat pasted.toml; } >pasted-job.toml
  $ zv32-line check --plan pasted-job.toml | grep options
  options      ssb=F7 data9=12 data10=34 protect=0-3, 8-9

The high level is for ever: the chip is refused from then on.

  $ { sed -n '1,/^verify/p' again.toml; printf '[finish]\naccess = "high"\n'; } >high.toml
  $ zv32-line check high.toml | grep -E 'access|irreversible|approval'
  access       high (can't be undone)
  irreversible access high
  approval     missing
  $ rm chip.state
  $ rehearse high.toml
  PASS uid ed4b91d7807d81da3f1b4233
  $ rehearse high.toml
  FAIL protected: The cmd not allowed!
  $ sed 's/ZV32F457_256K/ZV32F403A_256K/' high.toml >level.toml
  $ rm chip.state
  $ rehearse level.toml
  FAIL access: The cmd not allowed!

What a hook would have to supply.

  $ zv32-line rehearse job.toml | tail -n 1
  zv32-line: unit[0].at: the hook supplies no "mac"
  identify
  $ zv32-line rehearse job.toml --supply mac=02 | tail -n 1
  zv32-line: unit[0].at: what the hook supplies are not the digits of 6 bytes
  identify
  $ zv32-line rehearse job.toml --supply mac
  zv32-line: --supply: "mac" is not NAME=VALUE
  [1]
