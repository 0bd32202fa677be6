#!/bin/bash
# Everything that a chip of tools/chips.csv has to do, with the real console, our libraries and the
# simulated chip of that name.
#
# usage: chip.sh SOURCE-DIR BUILD-DIR NAME
set -u
. "$1/tests/e2e/environment.sh" "$1" "$2"
chip=$3
scratch=$(mktemp -d)
cd "$scratch" || exit 1
. "$SETUP"
trap 'chip_off; rm -rf "$scratch"' EXIT

# The row of the table.
IFS=, read -r name series pid version bid flash sector perbit banks spim levels slib otp \
    < <(tr -d ' ' <"$ROOT/tools/chips.csv" | awk -F, -v chip="$chip" '$1 "_" $6 "K" == chip')
[ -n "${otp:-}" ] || { echo "$chip: not in tools/chips.csv"; exit 1; }

fail() {
    echo "$chip: $*"
    exit 1
}

# expect STATUS LAST-LINE WORD...: runs the words on the chip.
expect() {
    local status last words="${*:3}"
    line "${@:3}" >out
    status=$?
    last=$(tail -n 1 out)
    [ "$status $last" = "$1 $2" ] || { cat out sim.err; fail "$words: expected $1 '$2', got $status '$last'"; }
}

# same FILE FILE: the two are equal.
same() {
    cmp "$1" "$2" || fail "$1 and $2 differ"
}

# holds FIRST LAST: the sectors of the chip are those of full.bin.
holds() {
    expect 0 "Upload successfully!" -u --sec "$1-$2" --fn ./part.bin
    cmp part.bin <(dd if=full.bin bs="$sector" skip="$1" count=$(($2 - $1 + 1)) status=none) || fail "sectors $1-$2"
}

# blank FIRST LAST: in full.bin the sectors are erased.
blank() {
    head -c $((($2 - $1 + 1) * sector)) /dev/zero | tr '\0' '\377' |
        dd of=full.bin bs="$sector" seek="$1" conv=notrunc status=none
}

# group SECTOR: the first and the last sector that share its bit.
wide=
case "$series" in 0D | 0E) wide=yes ;; esac
count=$((flash * 1024 / sector))
group() {
    local first size=$perbit border=$((128 * 1024 / sector))
    if [ -n "$wide" ] && [ "$1" -ge $border ]; then
        size=$border
    fi
    first=$(($1 / size * size))
    if [ -z "$wide" ] && [ "$1" -ge $((31 * perbit)) ]; then
        first=$((31 * perbit)) size=$count
    fi
    echo $first $((first + size < count ? first + size - 1 : count - 1))
}

port_words+=(--br 1000000)
chip_on "$chip" || exit 1
head -c $((flash * 1024)) /dev/urandom >full.bin

# The lines of the connect; the commands and the banks that the chip has.
cat >wanted <<END
USART Connect......
Device:  $name    Flash:  $flash KB
PID:  $pid      BID:  $bid    Version:  $version
Device connected Successfully
END
ZVBL_TRACE=$PWD/trace isp -com --pn "$PWD/port" -e --all >out || fail "-e --all: $?"
head -n 4 out | diff wanted - || fail "the device lines"
commands=$(grep -m 1 -A 3 '> 00 FF' trace | sed -n '4s/.*< ..//p') # after the version
has() { # COMMAND yes|no
    case "$commands " in *" $1 "*) echo yes ;; *) echo no ;; esac | grep -q "$2" ||
        fail "command $1, expected: $2; the chip has$commands"
}
has B3 "$spim"
has 84 "$levels"
has D1 "$slib"
[ "$(grep -c -e '> FF F[DE]' -e '> FF 00' trace)" = "$banks" ] || fail "erases of a bank, expected: $banks"

# Full to the last byte. Two families take an image only after an erase on the same line.
if [ -n "$wide" ]; then
    expect 3 "Unknown error!" -d --fn ./full.bin
fi
expect 0 "Upload successfully!" -e --all -d --fn ./full.bin --v -u --fn ./back.bin
same full.bin back.bin

# Option bytes: the second byte of the user data, of any layout, with its complement.
expect 0 "Get user system data to file succeed!" -usd --get --fn ./factory.bin
cp factory.bin new.bin
printf '\x5a\xa5' | dd of=new.bin bs=1 seek=6 conv=notrunc status=none
expect 0 "Get user system data to file succeed!" -usd --set --fn ./new.bin --get --fn ./options.bin
same new.bin options.bin

# Protection of one sector and of the last one reaches over their groups and no further.
read -r one one_end < <(group "$perbit")
read -r last last_end < <(group $((count - 1)))
expect 0 "Enable erase and program protection successfully!" -p --eepp "$one-$one" --eepp "$last_end-$last_end"
for refused in $one $one_end $last $last_end; do
    expect 51 "The device is erase and program protection!" -e --sec "$refused-$refused"
done
expect 48 "The device is erase and program protection!" -e --all
before=$((one - 1)) after=$((one_end + 1)) last_before=$((last - 1))
expect 0 "Erase successfully!" -e --sec "$before-$before" --sec "$after-$after" --sec "$last_before-$last_before"
for erased in $before $after $last_before; do
    blank "$erased" "$erased"
done
holds 0 "$after"
holds "$last_before" "$last"
holds "$last_end" "$last_end"

# And without it.
expect 0 "Erase successfully!" -p --depp -e --sec "$one-$one_end" --sec "$last_end-$last_end"
blank "$one" "$one_end"
blank "$last_end" "$last_end"
holds 0 "$after"
holds "$last_before" "$last"
holds "$last_end" "$last_end"
expect 0 "Upload successfully!" -e --all -u --fn ./back.bin
blank 0 $((count - 1))
same full.bin back.bin

# SPIM, one-time data, levels: those that have them do it, the others refuse.
case "$spim" in
    yes) expect 0 "Operation finished successfully!" -enspim --ft 1 --fs 16 ;;
    no) expect 8 "The cmd not allowed!" -enspim --ft 1 --fs 16 ;;
esac
{ head -c 4 /dev/zero; head -c 32 full.bin | tr '\377' A; printf '\1\0'; head -c 2 /dev/zero; } >data.zvtp
case "$otp" in
    -) expect 64 "Write OTP data failed!" -otp --fn ./data.zvtp ;;
    *) expect 0 "set OTP data to device successfully!" -otp --fn ./data.zvtp ;;
esac
case "$levels" in
    yes) expect 0 "Enable access protection successfully!" -p --efap2 --y ;;
    no) expect 33 "The cmd not allowed!" -p --efap2 --y ;;
esac
