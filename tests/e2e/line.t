The words.

  $ zv32-line --version
  zv32-line 3.0.14
  $ zv32-line check
  JOB is required
  Run with --help for more information.
  [1]
  $ zv32-line mak job.toml
  A subcommand is required
  Run with --help for more information.
  [1]

A job and its plan. The hash is that of the plan's text.

  $ ln -s "$MAPS" Map
  $ printf abcd >fw.bin
  $ job() { printf 'format = 1\nname = "ZX100"\nquantity = 5\n[chip]\nname = "ZV32F403A_1024K"\n[image]\nfile = "fw.bin"\nverify = "both"\n[[unit]]\nat = 0x08000800\nvalue = "number"\nseries = "ZX100"\nas = "u32le"\n[finish]\naccess = "%s"\n' $1; }
  $ job on >job.toml
  $ zv32-line check job.toml
  plan 1
  name         "ZX100"
  quantity     5
  chip         ZV32F403A_1024K, a protected one is refused
  again        refuse
  image        sha256 88d4266fd4e6338d13b845fcf289579d209c897823b9217da3e161936f031589 4 bytes 08000000-08000003
  unit         08000800 4 number "ZX100" u32le
  erase        sectors 0-1
  verify       both
  access       on (can be removed; removal erases the flash)
  run          no
  irreversible nothing
  
  hash         5e434d58eb8020762d20a9715c676390a7c136919288c4af002a4e64476e06be
  approval     not needed
  $ hash() { zv32-line check "$@" --plan | sha256sum | cut -d ' ' -f 1; }
  $ [ "$(hash job.toml)" = "$(zv32-line check job.toml | sed -n 's/^hash *//p')" ]

Neither the place nor the station changes it; a station has the series of its jobs.

  $ mkdir -m 755 sub approved
  $ cp job.toml fw.bin sub
  $ station() { printf 'format = 1\nstation = "%s"\napproved = "%s/approved"\n[series.ZX100]\nfirst = 1\nlast = 9\n' "$1" "$PWD"; }
  $ station one >one.toml
  $ station two | sed 's/last = 9/last = 99/' >two.toml
  $ for words in job.toml sub/job.toml "--station one.toml job.toml" "--station two.toml job.toml"; do hash $words; done | uniq | wc -l
  1
  $ station one | sed 's/ZX100/ZX200/' >other.toml
  $ zv32-line check job.toml --station other.toml
  zv32-line: job.toml:10: unit[0].at: the station has no series "ZX100"
  [2]
  $ station one | sed 's/^last = 9/last = 0/' >other.toml
  $ zv32-line check job.toml --station other.toml
  zv32-line: other.toml:6: series.ZX100.last: is not within 1 and 4294967295
  [2]
  $ station one | sed 's/^approved = "[^"]*/approved = "approved/' >other.toml
  $ zv32-line check job.toml --station other.toml
  zv32-line: other.toml:3: approved: must be an absolute path
  [2]

Nobody is shown what could tell a terminal something.

  $ printf 'a\033[2J = 1\n' | cat - job.toml >bad.toml
  $ zv32-line check bad.toml 2>&1 | tr -d '[:print:]\n' | wc -c
  0
  $ printf '"a\\u001b[2J" = 1\n' | cat - job.toml >bad.toml
  $ zv32-line check bad.toml
  zv32-line: bad.toml:1: a?[2J: no such key
  [2]

What can't be undone needs the approval of exactly this plan, by root.

  $ as_root() { if [ "$(id -u)" = 0 ]; then "$@"; else unshare -r "$@"; fi; }
  $ job high >job.toml
  $ state() { as_root zv32-line check job.toml --station one.toml | sed -n 's/^approval *//p'; }
  $ state
  missing
  $ as_root zv32-line approve job.toml 1234 --station one.toml 2>&1 | sed 's/[0-9a-f]\{64\}/HASH/'
  zv32-line: 1234: is not the hash of this plan, which is HASH
  $ as_root zv32-line approve job.toml 1234 --station one.toml 2>/dev/null
  [3]
  $ ls approved
  $ as_root zv32-line approve job.toml $(hash job.toml) --station one.toml | sed 's/[0-9a-f]\{64\}/HASH/; s,/.*/,/,'
  approved HASH in /approved
  $ [ "$(ls approved)" = "$(hash job.toml)" ] && zv32-line check job.toml --plan | cmp - approved/*
  $ state
  given
  $ as_root zv32-line check job.toml --station one.toml --json | sed 's/[0-9a-f]\{64\}/HASH/' | head -n 5
  {
    "verb": "check",
    "status": 0,
    "hash": "HASH",
    "approval": "given",

Where the station says so, what can be undone needs one too.

  $ station one | sed '2a approval = "always"' >always.toml
  $ job on >plain.toml
  $ for file in one always; do zv32-line check plain.toml --station $file.toml | sed -n 's/^approval *//p'; done
  not needed
  missing

Another plan is not approved by it, nor is one whose approval somebody else could have written.

  $ printf abce >fw.bin
  $ state
  missing
  $ printf abcd >fw.bin
  $ chmod g+w approved/*
  $ state
  missing
  $ chmod g-w approved/*
  $ state
  given
  $ chmod o+w approved
  $ state
  missing
  $ as_root zv32-line approve job.toml $(hash job.toml) --station one.toml 2>&1 | sed 's,line: /.*/,line: /,'
  zv32-line: /approved: is no directory that belongs to root and that nobody else may write
  $ chmod o-w approved
  $ printf x >>approved/$(hash job.toml)
  $ state
  missing
  $ rm -r approved
  $ as_root zv32-line approve job.toml $(hash job.toml) --station one.toml 2>&1 | sed 's,line: /.*/,line: /,'
  zv32-line: /approved: No such file or directory
  $ zv32-line check job.toml >/dev/full
  zv32-line: the report can't be written
  [2]

What is plugged in is told as nests of a station file, whatever this machine has.

  $ zv32-line ports | grep -cv '^#\|^\[\[nest\]\]$\|^name = "A[0-9]*"$\|^port = "[^"]*"$\|^$'
  0
  [1]
  $ (printf 'format = 1\nstation = "x"\n[link]\nkind = "usart"\n'; zv32-line ports | sed -n '/^# usart/,/^port/p') >ports.toml
  $ zv32-line check plain.toml --station ports.toml | sed -n 's/^approval *//p'
  zv32-line: plain.toml:10: unit[0].at: the station has no series "ZX100"
  $ zv32-line ports --json | grep '"verb"'
    "verb": "ports",
  $ zv32-line ports --station none.toml
  zv32-line: none.toml: No such file or directory
  [2]
