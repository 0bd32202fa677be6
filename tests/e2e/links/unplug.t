Unplugged in the middle of each phase, at five places of each: an exit status that names the phase or the
link, no partial file, no old file lost, and a second run succeeds.

  $ . "$SETUP"
  $ head -c 6144 /dev/urandom > image.bin
  $ chip_new ZV32F421_64K
  $ line -d --fn ./image.bin >/dev/null; chip_off; cp chip.state written.state
  $ on() { chip_off; cp written.state chip.state; chip_on ZV32F421_64K --verbose "$@"; }
  $ bytes_of() {
  >     case $1 in
  >         hangup) sed -n 's/^bytes: \([0-9]*\) .*/\1/p' sim.err ;;
  >         tx-hangup) sed -n 's/^bytes: .*, \([0-9]*\) .*/\1/p' sim.err ;;
  >     esac
  > }
  $ clean() { rm -f fresh.bin; echo old > old.bin; }

phase STATUS FAULT WORD...: says where something else came out. "hangup" counts the bytes from the host,
"tx-hangup" those to it.

  $ phase() {
  >     local expected=$1 fault=$2 bytes first place status; shift 2
  >     clean; on; line -usd >/dev/null; chip_off
  >     first=$(bytes_of $fault)
  >     clean; on; line "$@" >/dev/null || echo "fails without a fault: $?"; chip_off
  >     bytes=$(bytes_of $fault)
  >     for place in 1 2 3 4 5; do
  >         clean; on --fault $fault@$((first + 1 + (bytes - first - 1) * place / 6)):20
  >         line "${quick[@]}" "$@" >out && status=0 || status=$?
  >         [ "$status" = "$expected" ] || { echo "place $place: $status"; cat out; }
  >         grep -q '^fault: ' sim.err || { echo "place $place: no fault"; continue; }
  >         [ "$(cat old.bin)" = old ] || echo "place $place: the old file is gone"
  >         [ ! -e fresh.bin ] || echo "place $place: a partial file"
  >         replugged
  >         ls | grep -v -e '^port' -e '^chip.state' | grep -v -x -f expected.files
  >         line "$@" >out 2>&1 || { echo "place $place, again: $?"; cat out; }
  >     done
  >     echo "$1: $expected"
  > }
  $ for file in Map written.state image.bin old.bin fresh.bin out usd.bin sim.out sim.err bus expected.files; do echo $file; done > expected.files
  $ phase 51 hangup -e --sec 0-7
  -e: 51
  $ phase 3 hangup -d --fn ./image.bin --v
  -d: 3
  $ phase 4 tx-hangup -u --fn ./fresh.bin
  -u: 4
  $ phase 4 tx-hangup -u --sec 0-5 --fn ./old.bin
  -u: 4
  $ on; line -usd --get --fn ./usd.bin >/dev/null
  $ phase 6 hangup -usd --set --fn ./usd.bin
  -usd: 6
  $ phase 7 tx-hangup -usd --get --fn ./fresh.bin
  -usd: 7

In the middle of the connect:

  $ for place in 1 2 3; do
  >     on --fault hangup@$place:20
  >     line "${quick[@]}" -u --fn ./fresh.bin >/dev/null; echo $?
  >     replugged
  >     line -u --sec 0-5 --fn ./fresh.bin | tail -1; cmp image.bin fresh.bin; rm fresh.bin
  > done
  2
  Upload successfully!
  2
  Upload successfully!
  2
  Upload successfully!
