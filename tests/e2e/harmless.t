Nothing that a file, a hook, an operator or a chip says reaches the terminal as anything but text: here all of them try
to clear the screen, by ESC and by the control character of eight bits, and to turn what follows round.

  $ . "$SETUP"
  $ printf abcd >fw.bin
  $ evil=$(printf '\033[2J\302\2332J\342\200\256')
  $ job() { printf 'format = 1\nname = "%s"\nquantity = 20\n[chip]\nname = "ZV32F421_16K"\n[image]\nfile = "fw.bin"\nverify = "crc"\n' "$1"; }
  $ station() { printf 'format = 1\nstation = "one"\nregister = "%s/units.db"\nretries = 0\n[link]\nkind = "usart"\n[[nest]]\nname = "A1"\nport = "%s/port"\n[hook.before]\nrun = ["%s/hook"]\nseconds = 5\n' "$PWD" "$PWD" "$PWD"; }
  $ harmful() { LC_ALL=C grep -c -a -P '[\x00-\x08\x0b-\x1f\x7f]|\xc2[\x80-\x9f]|\xe2\x80\xae' told; }
  $ say() { "$@" >told 2>&1 </dev/null; echo "status $?, harmful lines: $(harmful)"; sed "s,$PWD/,," told | tail -n 1 | cut -c 1-100; }
  $ harmful_itself() { printf '%s\n' "$evil" >told; harmful; }
  $ harmful_itself
  1

In files: as a value, as a key, as a name of a file, and where TOML does not allow it.

  $ job 'a\u001b[2J' >job.toml
  $ say zv32-line check job.toml
  status 2, harmful lines: 0
  zv32-line: job.toml:2: name: is empty, or holds control characters
  $ job a | sed 's/^quantity/"\\u001b[2J" = 1\nquantity/' >job.toml
  $ say zv32-line check job.toml
  status 2, harmful lines: 0
  zv32-line: job.toml:3: ?[2J: no such key
  $ job "$evil" >job.toml
  $ say zv32-line check job.toml
  status 2, harmful lines: 0
  zv32-line: job.toml:2: Error while parsing string: unescaped control characters other than TAB (U+00
  $ job a | sed 's/fw.bin/\\u001b[2J\\u009b2J/' >job.toml
  $ say zv32-line check job.toml
  status 2, harmful lines: 0
  zv32-line: job.toml:7: image.file: is empty, or holds control characters
  $ say zv32-line check "none$evil.toml"
  status 2, harmful lines: 0
  zv32-line: none?[2J?2J?.toml: No such file or directory
  $ cp fw.bin "fw$evil.bin"
  $ say zv32-look image "fw$evil.bin" --json
  status 0, harmful lines: 0
  }
  $ station | sed 's/"A1"/"A\\u009b2J"/' >station.toml
  $ job a >job.toml
  $ say zv32-line check job.toml --station station.toml
  status 2, harmful lines: 0
  zv32-line: station.toml:8: nest[0].name: is empty, or holds control characters

By the operator, and by a hook: why a unit may not be made, what it complains of, and what it supplies.

  $ station >station.toml
  $ chmod go-w .
  $ hook() { printf '#!/bin/sh\n%s\n' "$1" >hook; chmod 755 hook; }
  $ chip_on ZV32F421_16K
  $ hook 'echo "{\"ok\":false,\"why\":\"\\\\u001b[2J\\\\u009b2J\\\\u007f\\\\u202e\"}"'
  $ say zv32-line make job.toml --station station.toml --order "$evil"
  status 1, harmful lines: 0
  zv32-line: --order: holds control characters
  $ say zv32-line make job.toml --station station.toml
  status 4, harmful lines: 0
  A1 REFUSED not allowed: ?[2J?2J??
  $ say zv32-line make job.toml --station station.toml --json
  status 4, harmful lines: 0
  * (glob)
  $ grep -o '"text":"[^"]*"' told
  "text":"\u001b[2J\u009b2J\u007f\u202e"
  $ hook 'printf "\\033[2J\\302\\2332J\\342\\200\\256" >&2; exit 1'
  $ say zv32-line make job.toml --station station.toml
  status 4, harmful lines: 0
  A1 REFUSED not allowed: hook: exit status 1: ?[2J?2J?
  $ { job a; printf '[[unit]]\nat = 0x08000100\nvalue = "supply"\nsupply = "text"\nas = "ascii"\nsize = 20\n'; } >supply.toml
  $ hook 'echo "{\"ok\":true,\"supply\":{\"text\":\"\\\\u001b[2J\"}}"'
  $ say zv32-line make supply.toml --station station.toml
  status 4, harmful lines: 0
  A1 FAIL not allowed: unit[0].at: what the hook supplies is empty, or no printable ASCII

By the name of a chip, which its map file tells.

  $ mkdir maps && cp "$MAPS"/*.ZVmap maps && chmod u+w maps/*
  $ sed -i "s/^Name=.*/Name=$evil/" maps/ZV32F421_16K.ZVmap
  $ job a | sed 's/F421_16K/F421_32K/' >other.toml
  $ ZV32_MAP_DIR=$PWD/maps say zv32-line rehearse job.toml
  status 4, harmful lines: 0
  FAIL wrong-chip: it is a ?[2J\xc3\x82?2J\xc3\xa2?\xc2\xae_16K (esc)
  $ ZV32_MAP_DIR=$PWD/maps say zv32-line rehearse job.toml --json
  status 4, harmful lines: 0
  }
  $ hook 'echo "{\"ok\":true}"'
  $ ZV32_MAP_DIR=$PWD/maps say zv32-line make other.toml --station station.toml
  status 4, harmful lines: 0
  A1 FAIL another chip: it is a ?[2J??2J???_16K
