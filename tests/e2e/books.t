What the register has of units, told by zv32-line and by others.

  $ check() { "$ROOT/tests/line/books_check.py" "$ROOT/line/books/unit-record.schema.json" "$@"; }
  $ sql() { sqlite3 -readonly units.db "$@"; }
  $ stats() { zv32-line stats --station station.toml --json "$@" >stats.json; }
  $ told() { python3 -c 'import json, sys; print(eval("lambda s: " + sys.argv[1])(json.load(open("stats.json"))))' "$1"; }
  $ printf 'format = 1\nstation = "one"\nregister = "%s/units.db"\n' "$PWD" >station.toml
  $ zv32-line units --station station.toml
  zv32-line: *units.db: unable to open database file (glob)
  [6]
  $ "$BUILD/bin/fill-register" units.db 1200

Records are what the schema says, and the table says what they do.

  $ zv32-line units --station station.toml --json >all.jsonl
  $ zv32-line units --station station.toml --csv >all.csv
  $ check all.jsonl all.csv
  1200 records
  $ sql 'SELECT text FROM record ORDER BY attempt' >by-hand.jsonl
  $ python3 -c 'import json; print([json.loads(l) for l in open("all.jsonl")] == [json.loads(l) for l in open("by-hand.jsonl")])'
  True

No control character that a hook has said gets to the terminal.

  $ grep -c 'on hold' all.jsonl all.csv
  all.jsonl:11
  all.csv:11
  $ grep -cP '[\x00-\x08\x0B-\x1F\x7F]|\xC2[\x80-\x9F]' all.jsonl all.csv
  all.jsonl:0
  all.csv:0
  [1]
  $ zv32-line units --station station.toml | grep -cP '[\x00-\x09\x0B-\x1F\x7F]|\xC2[\x80-\x9F]'
  0
  [1]

Some of them.

  $ zv32-line units --station station.toml --uid 0000000059A1BED7A33C9018
   attempt  started (UTC)        nest      result       series        number      uid                       cause              order
        23  2026-01-01 00:05:01  A8        fail                                   0000000059a1bed7a33c9018  verify-differs
        24  2026-01-01 00:05:14  A9        pass         ZX100         100024      0000000059a1bed7a33c9018                     PO-88
  $ zv32-line units --station station.toml --number 100024 --csv | cut -d, -f1,3,9-11,20
  attempt,nest,uid,series,number,result
  24,A9,0000000059a1bed7a33c9018,ZX100,100024,pass
  $ for words in '--order PO-88' '--result fail' '--since 2026-01-01T02:00' '--since 2026-01-01T02:00 --order PO-88 --result pass'; do
  >   zv32-line units --station station.toml --json $words | wc -l
  > done
  400
  21
  651
  207
  $ sql "SELECT count(*) FROM attempt WHERE order_name = 'PO-88'" "SELECT count(*) FROM attempt WHERE result = 'fail'" \
  >   "SELECT count(*) FROM attempt WHERE started >= '2026-01-01T02:00'" \
  >   "SELECT count(*) FROM attempt WHERE started >= '2026-01-01T02:00' AND order_name = 'PO-88' AND result = 'pass'"
  400
  21
  651
  207
  $ zv32-line units --station station.toml --order none --json
  [5]
  $ zv32-line units --station station.toml --since 2030-01-01 --json
  [5]

Words that are none.

  $ zv32-line units --since yesterday 2>&1 | head -n 1
  --since: is no time in UTC as 2026-11-21 or 2026-11-21T18:04
  $ zv32-line units --uid 12 2>&1 | head -n 1
  --uid: is no identifier of 24 hexadecimal digits
  $ zv32-line units --csv --json
  zv32-line: --csv and --json exclude each other
  [1]

Counts are those of SQL that is typed by hand.

  $ stats
  $ told '[s[k] for k in ("attempts", "pass", "fail", "refused", "interrupted", "open", "undelivered")]'
  [1200, 1148, 21, 11, 20, 0, 2]
  $ sql "SELECT count(*), sum(result = 'pass'), sum(result = 'fail'), sum(result = 'refused'), sum(result = 'interrupted'), sum(result = 'open') FROM attempt" \
  >   "SELECT count(*) FROM delivery WHERE delivered IS NULL"
  1200|1148|21|11|20|0
  2
  $ told 's["chips"]'
  {'made': 1148, 'passed': 1148, 'first': 1117}
  $ sql "SELECT count(DISTINCT uid) FROM attempt WHERE uid IS NOT NULL AND result NOT IN ('refused', 'open')" \
  >   "SELECT count(DISTINCT uid) FROM attempt WHERE result = 'pass'" \
  >   "SELECT count(*) FROM attempt WHERE result = 'pass' AND id IN (SELECT min(id) FROM attempt WHERE result NOT IN ('refused', 'open') GROUP BY uid)"
  1148
  1148
  1117
  $ told '"\n".join(f"{c}|{n}" for c, n in s["causes"].items())'
  no-answer|10
  not-allowed|11
  station-died|10
  verify-differs|11
  $ sql "SELECT cause, count(*) FROM attempt WHERE cause IS NOT NULL GROUP BY cause ORDER BY cause"
  no-answer|10
  not-allowed|11
  station-died|10
  verify-differs|11
  $ stats --order PO-88 --since 2026-01-01T01:30
  $ told '"\n".join("%s|%d|%d|%d" % (n, c["attempts"], c["pass"], c["ms"]) for n, c in sorted(s["nests"].items()))' >nests
  $ sql "SELECT nest, count(*), sum(result = 'pass'), (sum(CASE result WHEN 'pass' THEN CAST(round((julianday(ended) - julianday(started)) * 86400000) AS INTEGER) END) * 2 + sum(result = 'pass')) / (sum(result = 'pass') * 2) FROM attempt WHERE order_name = 'PO-88' AND started >= '2026-01-01T01:30' GROUP BY nest ORDER BY nest" | diff - nests && wc -l <nests
  16
  $ zv32-line stats --station station.toml --order PO-88 --since 2026-01-01T04:20
  nest      attempts         pass         fail      refused  interrupted         open       s/unit
  A1               1            1            0            0            0            0         10.3
  A8               1            1            0            0            0            0         10.4
  A11              1            1            0            0            0            0         10.4
  A14              1            1            0            0            0            0         10.4
  all              4            4            0            0            0            0         10.4
  
  chips          4
  passed         4
  at first       4 (100.0 %)
  not delivered  2

Nothing is written, nor made, by reading. Who may only read can do so, beside a line that has written one thing and
nothing since, and where a copy of the file is all there is.

  $ own=$(TMPDIR=/tmp mktemp -d) # others do not get into the directory here
  $ trap 'rm -rf "$own"' EXIT
  $ mkdir "$own/line" && mv units.db* "$own/line" && cp "$BUILD/bin/zv32-line" "$own"
  $ sed "s,\"/.*/,\"$own/line/," station.toml >"$own/station.toml"
  $ sha256sum "$own"/line/* >before
  $ export ASAN_OPTIONS="$ASAN_OPTIONS:detect_leaks=0" # which is no friend of strace
  $ strace -f -qq -e trace=file,ftruncate,pwrite64 -o trace zv32-line stats --station "$own/station.toml" >first.txt
  $ grep -c 'line/units.db' trace | sed 's/[0-9][0-9]*/traced/'
  traced
  $ grep -v '/tsan[.]' trace | grep -E 'units\.db(-shm)?", O_(WRONLY|RDWR)|ftruncate|pwrite|unlink'
  [1]
  $ sha256sum "$own"/line/* | diff before - && ls "$own/line"
  units.db
  units.db-shm
  units.db-wal
  $ reader=
  $ if [ "$(id -u)" = 0 ]; then
  >   chmod 755 "$own" && chgrp -R 4711 "$own/line" && chmod 750 "$own/line" && chmod 640 "$own"/line/*
  >   reader='setpriv --reuid 65534 --regid 65534 --groups 4711'
  > fi
  $ $reader "$own/zv32-line" stats --station "$own/station.toml" | diff first.txt -
  $ mkfifo hold
  $ "$BUILD/bin/fill-register" "$own/line/units.db" 0 --hold <hold >held &
  $ exec 7>hold
  $ for i in $(seq 500); do grep -q ready held && break; sleep 0.01; done; cat held
  ready
  $ $reader "$own/zv32-line" stats --station "$own/station.toml" | diff first.txt -
  $ exec 7>&-; wait
  $ mkdir copy && cp "$own/line/units.db" copy && sed 's,/units.db,/copy/units.db,' station.toml >copy.toml && chmod 555 copy
  $ zv32-line units --station copy.toml --json | wc -l
  1200
  $ ls copy
  units.db
  $ chmod 755 copy
