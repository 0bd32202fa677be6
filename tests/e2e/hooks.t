Programs of the site, asked and told while units are made.

  $ . "$SETUP"
  $ export LD_PRELOAD="$BUILD/doubles/libshort_sleep.so"
  $ site=$(TMPDIR=/tmp mktemp -d) # a directory that nobody else may write to, as all above it
  $ trap 'rm -rf "$site"' EXIT
  $ printf abcd >fw.bin
  $ printf 'format = 1\nname = "one"\nquantity = 100\n[chip]\nname = "ZV32F421_16K"\nagain = "make"\n[image]\nfile = "fw.bin"\nverify = "crc"\n' >job.toml
  $ printf 'format = 1\nstation = "one"\nregister = "%s/units.db"\nretries = 0\n[link]\nkind = "usart"\n[[nest]]\nname = "A1"\nport = "%s/port"\n[hook.before]\nrun = ["%s/may-i"]\nseconds = 1\n[hook.after]\nrun = ["%s/deliver"]\nseconds = 1\n' "$PWD" "$PWD" "$site" "$site" >station.toml
  $ hook() { printf '#!/bin/sh\n%s\n' "$2" >"$site/$1"; chmod 755 "$site/$1"; }
  $ zv32-sim --chip ZV32F421_16K --usart "$PWD/port" --verbose >ready 2>&1 & chip=$!
  $ for i in $(seq 500); do [ -s ready ] && break; sleep 0.01; done
  $ make() { zv32-line make job.toml --station station.toml --order PO-88 --json </dev/null >records; status=$?; python3 -c 'import json; r = json.loads(open("records").readline()); print(r["attempt"], r["result"], r["cause"], (r["text"] or "").replace("'"$site"'/", ""))'; return $status; }

One that says yes, and one that takes all.

  $ hook may-i "tee $site/asked | grep -q '\"order\":\"PO-88\"' && echo '{\"ok\":true}'"
  $ hook deliver "cat >>$site/told"
  $ make
  1 pass None 
  $ cmp records "$site/told"
  $ python3 -c 'import json, sys; r = json.load(open(sys.argv[1])); print(r["attempt"], r["result"], len(r["uid"]))' "$site/asked"
  None open 24

Whatever goes wrong with the first refuses this unit.

  $ hook may-i "echo '{\"ok\":false,\"why\":\"on hold\"}'"; make
  2 refused not-allowed on hold
  [4]
  $ hook may-i 'echo no ticket >&2; exit 3'; make
  3 refused not-allowed may-i: exit status 3: no ticket
  [4]
  $ hook may-i 'sleep 1000'; make
  4 refused not-allowed may-i: has not ended within 1 s
  [4]
  $ hook may-i yes; make
  5 refused not-allowed may-i: writes more than 64 KB
  [4]
  $ hook may-i 'echo maybe'; make
  6 refused not-allowed may-i: its answer is no JSON object
  [4]

Whatever goes wrong with the second leaves the record in its queue, and the unit as it is.

  $ hook may-i "echo '{\"ok\":true}'"
  $ for wrong in 'exit 1' 'sleep 1000' yes; do hook deliver "cat >>$site/tried; $wrong"; make; done
  7 pass None 
  8 pass None 
  9 pass None 
  $ zv32-line stats --station station.toml --json | grep undelivered
    "undelivered": 3,

After the repair every record is delivered, and one that comes again has its attempt.

  $ hook deliver "cat >>$site/told"; make
  10 pass None 
  $ zv32-line stats --station station.toml --json | grep undelivered
    "undelivered": 0,
  $ attempts() { sed 's/.*"attempt":\([0-9]*\).*/\1/' "$site/$1" | sort -nu | tr '\n' ' '; echo; }
  $ attempts told; attempts tried
  1 2 3 4 5 6 7 8 9 10 
  7 8 9 
  $ zv32-line units --station station.toml --json >all.jsonl
  $ zv32-line units --station station.toml --csv >all.csv
  $ "$ROOT/tests/line/books_check.py" "$ROOT/line/books/unit-record.schema.json" all.jsonl all.csv
  10 records
  $ sort -u "$site/told" | cmp - <(sort all.jsonl)

One that others may write to ends the line before it begins.

  $ chmod 775 "$site/deliver"
  $ zv32-line make job.toml --station station.toml 2>&1 | sed "s,$site,SITE,"
  zv32-line: station.toml:14: hook.after.run: SITE/deliver: others may write to it
  $ chmod 755 "$site/deliver"; chmod 777 "$site"
  $ zv32-line make job.toml --station station.toml 2>&1 | sed "s,$site,SITE,"
  zv32-line: station.toml:11: hook.before.run: SITE: others may write to it
  $ zv32-line units --station station.toml --json | wc -l
  10

One that has gone meanwhile has failed at once, however long it might take.

  $ chmod 755 "$site"; sed -i 's/^seconds = 1$/seconds = 1000/' station.toml
  $ hook may-i "rm $site/deliver; echo '{\"ok\":true}'"; make
  11 pass None 
  $ zv32-line stats --station station.toml --json | grep undelivered
    "undelivered": 1,
  $ hook may-i "rm $site/may-i; echo '{\"ok\":true}'"; hook deliver "cat >>$site/told"
  $ mkfifo keys; exec 8<>keys
  $ zv32-line station job.toml --station station.toml --start key <keys >events & line_pid=$!
  $ until_told() { until grep -q "$1" events; do sleep 0.01; done; }
  $ until_told ready; printf 1 >&8; until_told PASS; printf 1 >&8; until_told REFUSED
  $ kill -TERM $line_pid; wait $line_pid
  [4]
  $ grep REFUSED events | sed "s,$site,SITE,g"
  A1 REFUSED not allowed: SITE/may-i: station.toml:11: hook.before.run: SITE/may-i: No such file or directory
  $ attempts told
  1 2 3 4 5 6 7 8 9 10 11 12 13 
  $ kill $chip
