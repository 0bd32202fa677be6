One unit on a simulated chip, read back by the console: it holds the image with the unit's data in it.

  $ . "$SETUP"
  $ seq 1 2000 | head -c 5003 >fw.bin
  $ job() { printf 'format = 1\nname = "ZX100"\nquantity = 5\n[chip]\nname = "ZV32F403A_1024K"\n[image]\nfile = "fw.bin"\nverify = "%s"\n[[unit]]\nat = 0x08001389\nvalue = "text"\ntext = "ZX-{number:06}/{order}"\nseries = "ZX100"\nas = "ascii"\nsize = 17\n[[unit]]\nat = 0x08000100\nvalue = "uid"\nas = "hex"\n[finish]\naccess = "%s"\n' $1 $2; }
  $ job both leave >job.toml
  $ printf 'format = 1\nstation = "one"\n[series.ZX100]\nfirst = 4711\nlast = 5000\n' >station.toml
  $ zv32-line rehearse job.toml --station station.toml --order PO-88 --keep chip.state
  connect
  identify
  erase
  write
  verify
  PASS number 4711 uid 59a1bed7a33c9c89dbbf1bf2
  $ chip_on ZV32F403A_1024K
  $ line -u --fn ./all.bin | tail -n 1
  Upload successfully!
  $ printf '\x59\xa1\xbe\xd7\xa3\x3c\x9c\x89\xdb\xbf\x1b\xf2' >uid.bin
  $ printf 'ZX-004711/PO-88\0\0' >text.bin
  $ srec_cat '(' fw.bin -binary -exclude 0x100 0x10C -exclude 0x1389 0x139A uid.bin -binary -offset 0x100 text.bin -binary -offset 0x1389 ')' -fill 0xFF 0 0x100000 -o wanted.bin -binary
  $ cmp all.bin wanted.bin
  $ chip_off

A chip that is protected is refused, or erased where the job says so.

  $ rm chip.state
  $ export LD_PRELOAD="$BUILD/doubles/libshort_sleep.so"
  $ job crc on >job.toml
  $ zv32-line rehearse job.toml --keep chip.state --json | grep -E '"(status|result|cause|number|access)"' | sed 's/: [0-9]*$/: N/'
    "status": 0,
    "result": "pass",
    "cause": null,
    "number": 1,
      "access": N
  $ zv32-line rehearse job.toml --keep chip.state
  connect
  identify
  FAIL protected: The device is access protection!
  [4]
  $ zv32-line rehearse job.toml --keep chip.state >/dev/full
  zv32-line: the report can't be written
  [4]
  $ sed 's/^\[image\]/protected = "erase"\n[image]/' job.toml >erase.toml
  $ zv32-line rehearse erase.toml --keep chip.state | tail -n 1
  PASS number 1 uid 59a1bed7a33c9c89dbbf1bf2
  $ unset LD_PRELOAD

What the unit's data have no room for is not made. Nothing is left behind.

  $ mkdir tmp
  $ TMPDIR=$PWD/tmp zv32-line rehearse job.toml --order a-long-order
  connect
  identify
  zv32-line: unit[0].at: "ZX-000001/a-long-order" has no room in 17 bytes
  [4]
  $ ls tmp

Nothing that is no printable ASCII gets into a chip as an order, and no control character gets anywhere.

  $ zv32-line rehearse job.toml --order $'PO-88\n'
  zv32-line: --order: holds control characters
  [1]
  $ zv32-line make job.toml --station station.toml --order $'PO-88\e[2J'
  zv32-line: --order: holds control characters
  [1]
  $ zv32-line make job.toml --station station.toml --order PÖ-88
  zv32-line: --order: job.toml:10: unit[0].at: the chip gets it, and it is no printable ASCII
  [1]
  $ sed '/^text/s/\/{order}//' job.toml >other.toml
  $ zv32-line make other.toml --station station.toml --order PÖ-88
  zv32-line: the station has no [[nest]]
  [2]

Without a simulated chip beside it.

  $ cp "$BUILD/bin/zv32-line" alone
  $ ./alone rehearse job.toml 2>&1 | sed 's,line: /.*/,line: /,'
  zv32-line: /zv32-sim: gives no simulated ZV32F403A_1024K
  $ "$BUILD/libexec/zv32-unit" 3>&-
  zv32-unit: only zv32-line starts it
  [1]
