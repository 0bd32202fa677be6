Sixteen chips, made at once: each holds the image with its own data in it, which the console reads back and srec_cat knows.

  $ . "$SETUP"
  $ seq 1 900 | head -c 3001 >fw.bin
  $ cat >job.toml <<EOF
  > format = 1
  > name = "ZX100"
  > quantity = 20
  > [chip]
  > name = "ZV32F421_16K"
  > [image]
  > file = "fw.bin"
  > verify = "both"
  > [[unit]]
  > at = 0x08000100
  > value = "number"
  > series = "ZX100"
  > as = "u32le"
  > [[unit]]
  > at = 0x08000BB9
  > value = "uid"
  > as = "ascii"
  > size = 24
  > EOF
  $ cat >station.toml <<EOF
  > format = 1
  > station = "one"
  > register = "$PWD/units.db"
  > retries = 0
  > [link]
  > kind = "usart"
  > [series.ZX100]
  > first = 4711
  > last = 5000
  > EOF
  $ for n in $(seq 1 16); do printf '[[nest]]\nname = "A%s"\nport = "%s/port%s"\n' $n "$PWD" $n >>station.toml; done
  $ plug() { zv32-sim --chip ZV32F421_16K --usart "$PWD/port$1" --unit $1 --log "log$1" --verbose "${@:2}" >ready$1 & pids[$1]=$!; }
  $ wait_ready() { for n; do until [ -s ready$n ]; do sleep 0.01; done; done; }
  $ unplug() { for n; do kill ${pids[$n]} 2>/dev/null; wait ${pids[$n]}; done; rm -f ready* log*; }
  $ make() { zv32-line make job.toml --station station.toml "$@" </dev/null; }
  $ last() { make "$@" >told; status=$?; tail -n 1 told; return $status; }
  $ ask() { sqlite3 units.db "$@"; }
  $ for n in $(seq 1 16); do plug $n; done; wait_ready $(seq 1 16)
  $ make --order PO-88 >told
  $ grep -c PASS told
  16
  $ grep -h PASS told | cut -d ' ' -f 3 | sort | uniq | tr '\n' ' '
  4711 4712 4713 4714 4715 4716 4717 4718 4719 4720 4721 4722 4723 4724 4725 4726  (no-eol)
  $ check() {
  >     isp -com --pn "$PWD/port$1" -u --fn "$PWD/held.bin" >/dev/null
  >     n=$(ask "SELECT n FROM attempt WHERE nest = 'A$1' AND result = 'pass'")
  >     printf "$(printf '\\x%02x\\x%02x\\x%02x\\x%02x' $((n & 255)) $((n >> 8 & 255)) 0 0)" >n.bin
  >     printf '%s' "$(ask "SELECT uid FROM attempt WHERE n = $n")" >uid.bin
  >     srec_cat '(' fw.bin -binary -exclude 0x100 0x104 n.bin -binary -offset 0x100 uid.bin -binary -offset 0xBB9 ')' -fill 0xFF 0 0x4000 -o wanted.bin -binary
  >     cmp held.bin wanted.bin
  > }
  $ for n in $(seq 1 16); do check $n; done

The record is what was written; its image is what the chip holds.

  $ ask "SELECT text FROM record WHERE attempt = (SELECT id FROM attempt WHERE nest = 'A16')" | python3 -c "
  > import hashlib, json, sys
  > record = json.load(sys.stdin)
  > print(record['result'], record['order'], record['tries'], record['verified'], record['cause'])
  > print(hashlib.sha256(open('held.bin', 'rb').read(0xBB9 + 24) + b'\xff' * 3).hexdigest() == record['unit_image'])
  > print(record['plan'] == '$(zv32-line check --plan job.toml | sha256sum | cut -d ' ' -f 1)')"
  pass PO-88 1 True None
  True
  True

A chip that is made is not made again, whichever nest it is at; nothing in it is changed.

  $ for n in 3 16; do : >log$n; done
  $ make --nest A3,A16 --order PO-89 >told
  [4]
  $ sort told | grep -v connect
  A16 REFUSED made already
  A16 identify
  A3 REFUSED made already
  A3 identify
  ZX100   plan [0-9a-f]{8}   order PO-89   0 of 20 (re)
  $ grep -hE 'command: .*(WRITE|ERASE|PROT)' log3 log16
  [1]
  $ grep -c 'command: GET_ID' log3
  2
  $ make --nest A3,B1
  zv32-line: --nest B1: the station has no such nest
  [1]
  $ unplug $(seq 1 16)

Four of sixteen are faulty: one is silent, one refuses to be erased, one is taken out, one loses its power and is silent after it.

  $ rm units.db*
  $ for n in $(seq 1 16); do
  >     case $n in 2) fault=silence@1 ;; 5) fault=nack@1:44 ;; 9) fault=hangup@2000 ;; 14) fault='powercut@100:flash --fault silence@14' ;; *) fault= ;; esac
  >     plug $n ${fault:+--fault $fault}
  > done; wait_ready $(seq 1 16)
  $ make >told
  [4]
  $ grep -c PASS told
  12
  $ grep -h FAIL told | sort
  A14 FAIL answers no more: contact, supply
  A2 FAIL no answer: boot pin, cable
  A5 FAIL can't be erased
  A9 FAIL answers no more: contact, supply
  $ grep -c 'fault: powercut' log14
  1
  $ ask "SELECT nest, cause FROM attempt WHERE result <> 'pass' ORDER BY nest"
  A14|link-lost
  A2|no-answer
  A5|erase
  A9|link-lost

The one that was taken out is made when it is back, with the number that it had.

  $ sed -i 's/^retries = 0/retries = 1/' station.toml
  $ unplug $(seq 1 16)
  $ before=$(ask "SELECT n FROM attempt WHERE nest = 'A9'")
  $ plug 9; wait_ready 9
  $ make --nest A9 --json | python3 -c "import json, sys; record = json.load(sys.stdin); print(record['result'], record['number'] == $before)"
  pass True

One that loses its link for a moment is tried again after a pause, and that is the same attempt.

  $ sed -i 's/^retries = 1/retries = 1\nretry_after = 1/' station.toml
  $ unplug 9; plug 2 --fault hangup@2000:0; wait_ready 2
  $ make --nest A2 --json | python3 -c "import json, sys; record = json.load(sys.stdin); print(record['result'], record['tries'])"
  pass 2
  $ ask "SELECT (julianday(ended) - julianday(started)) * 86400 >= 1 FROM attempt WHERE nest = 'A2' AND result = 'pass'"
  1
  $ ask "SELECT result, cause FROM attempt WHERE nest = 'A2' ORDER BY id"
  fail|no-answer
  pass|
  $ unplug 2; plug 9; wait_ready 9

There is nothing at all. The series and the order are used up.

  $ unplug 9
  $ last --nest A1
  A1 FAIL nothing at the port
  [5]
  $ plug 17; wait_ready 17; ln -s $(readlink port17) port1
  $ sed -i 's/^last = 5000/last = 4725/' station.toml
  $ last --nest A1
  A1 REFUSED no number: the series ZX100 is used up
  [7]
  $ sed -i 's/^last = 4725/last = 5000/' station.toml; sed -i 's/^quantity = 20/quantity = 1/' job.toml
  $ last --nest A1
  A1 PASS 4727
  $ unplug 17; plug 18; wait_ready 18; ln -sf $(readlink port18) port1
  $ last --nest A1
  A1 REFUSED no number: the order has its 1 units
  [7]
  $ unplug 18

A register that can't be used.

  $ sed "s,$PWD/units.db,$PWD/none/units.db," station.toml >other.toml
  $ zv32-line make job.toml --station other.toml --nest A1
  zv32-line: */none/units.db: its directory can't be locked: No such file or directory (glob)
  [6]

A register that can't grow: nothing is begun.

  $ plug 3; wait_ready 3; rm units.db* port1
  $ make --nest A1 >told
  [5]
  $ : >log3
  $ (ulimit -f $(($(stat -c %s units.db-wal) / 1024)); make --nest A3 2>&1) | tail -n 1
  zv32-line: */units.db: * (glob)
  $ grep -hE 'command: .*(WRITE|ERASE|PROT)' log3
  [1]
  $ sqlite3 units.db 'SELECT nest, result FROM attempt'
  A1|fail
  $ make --nest A3 | tail -n 1
  A3 PASS 4711
  $ unplug 3
