What can't be undone is not begun without the approval of its plan: the chip hears nothing at all.

  $ . "$SETUP"
  $ as_root() { if [ "$(id -u)" = 0 ]; then "$@"; else unshare -r "$@"; fi; }
  $ printf abcd >fw.bin
  $ job() { printf 'format = 1\nname = "ZX100"\nquantity = %s\n[chip]\nname = "ZV32F457_256K"\n[image]\nfile = "fw.bin"\nverify = "crc"\n' $1; }
  $ { job 9; for n in 0 1 2; do printf '[[otp]]\nblock = %s\nhex = "0011223344556677"\nlock = true\n' $n; done; } >job.toml
  $ mkdir -m 755 approved
  $ cat >station.toml <<EOF
  > format = 1
  > station = "one"
  > register = "$PWD/units.db"
  > approved = "$PWD/approved"
  > stop_after = 2
  > [link]
  > kind = "usart"
  > [[nest]]
  > name = "A1"
  > port = "$PWD/port"
  > EOF
  $ line_of() { as_root zv32-line "$@" --station station.toml </dev/null; }
  $ log() { grep -c "$1" log; }
  $ chip_on ZV32F457_256K --verbose --log log --fault silence@20
  $ line_of make job.toml 2>&1 | sed 's/[0-9a-f]\{64\}/HASH/'
  zv32-line: the plan HASH is not approved
  $ line_of station job.toml 2>/dev/null
  [3]
  $ log command:
  0
  [1]
  $ [ -e units.db ]
  [1]

Killed while it burns: the next start names the unit, and writes what is missing, no cell twice.

  $ line_of approve job.toml $(zv32-line check --plan job.toml | sha256sum | cut -d ' ' -f 1) >/dev/null
  $ as_root zv32-line make job.toml --station station.toml </dev/null >told 2>errors &
  $ until grep -q fault log; do sleep 0.01; done
  $ log 'command: WRITE' # of the flash, and of one block
  2
  $ pkill -KILL -P $!; wait $!
  [137]
  $ press_reset
  $ : >log
  $ line_of make job.toml | grep -v -E 'connect|identify|ZX100'
  the line ended while burning: A1 uid ed4b91d7807d81da3f1b4233
  A1 erase
  A1 write
  A1 verify
  A1 otp
  A1 PASS
  $ log 'command: WRITE' # of the flash, and of all that is missing
  6
  $ log 'written already'
  0
  [1]
  $ sqlite3 units.db 'SELECT id, burning, result, cause FROM attempt'
  1|1|interrupted|station-died
  2|1|pass|
  $ chip_off

A shift: units come and go, and the first Ctrl-C ends it after what is being made.

  $ job 9 >job.toml
  $ mkfifo keys; exec 8<>keys
  $ begin() { : >told; zv32-line station job.toml --station station.toml "$@" <keys >told & line_pid=$!; }
  $ until_told() { until grep -qE "$1" told; do sleep 0.01; done; }
  $ begin
  $ until_told '0 of 9'
  $ chip_new ZV32F457_256K --unit 1; until_told 'A1 PASS'
  $ chip_off; until_told 'A1 empty'
  $ chip_new ZV32F457_256K --unit 2 --flash-time=200,0; until_told 'A1 erase'
  $ kill -INT $line_pid; wait $line_pid
  $ grep -v -E 'connect|identify|Ctrl-C' told
  ZX100   plan c53d06b7   0 of 9
  A1 erase
  A1 write
  A1 verify
  A1 PASS
  A1 empty
  A1 erase
  A1 write
  A1 verify
  A1 PASS

A second Ctrl-C leaves it between two sectors.

  $ chip_new ZV32F457_256K --unit 3 --flash-time=1500,0
  $ begin; until_told 'A1 erase'
  $ kill -INT $line_pid; kill -TERM $line_pid; wait $line_pid
  [8]
  $ tail -n 1 told
  A1 FAIL interrupted
  $ sqlite3 units.db "SELECT result, cause FROM attempt ORDER BY id DESC LIMIT 1"
  interrupted|

With keys a unit begins when its key is pressed; a nest that failed twice is closed, and its key opens it.

  $ chip_new ZV32F457_256K --unit 4 --fault nack@1:44 --fault nack@2:44
  $ begin --start key; until_told 'A1 ready'
  $ printf 1 >&8; until_told 'FAIL'
  $ printf 1 >&8; until_told 'CLOSED'
  $ printf 1 >&8; until [ "$(grep -c 'A1 ready' told)" = 2 ]; do sleep 0.01; done
  $ printf 1 >&8; until_told 'PASS'
  $ kill -TERM $line_pid; wait $line_pid
  [4]
  $ grep -v -E 'connect|identify|Ctrl-C' told
  ZX100   plan c53d06b7   2 of 9
  A1 ready
  A1 erase
  A1 FAIL can't be erased
  A1 erase
  A1 CLOSED 2 failures in a row
  A1 ready
  A1 erase
  A1 write
  A1 verify
  A1 PASS
  $ chip_off
