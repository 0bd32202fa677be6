# Sourced after setup.sh: every option word and sub-option word on one chip, each told by the word, the
# last line that it printed and its exit status.

# said WORD...: runs a line on the chip, tells its last line and its status.
said() {
    local text status
    text=$(line "$@") && status=0 || status=$?
    echo "$* -> ${text##*$'\n'} [$status]"
}

# erasable SECTOR...: whether each of the sectors can be erased.
erasable() {
    local sector
    for sector in "$@"; do
        line -e --sec "$sector-$sector" >/dev/null && echo "sector $sector erasable" || echo "sector $sector protected"
    done
}

# all_words SECTOR-BYTES LAST-SECTOR: on a fresh chip.
all_words() {
    local size=$1 last=$2
    head -c $((3 * size)) /dev/urandom >image.bin
    said -e --all
    said -e --sec 0-2
    said -e --all -d --fn ./image.bin --addr 08000000 --v --o
    said -u --sec 0-2 --fn ./back.bin
    cmp image.bin back.bin && echo same
    said -u --fn ./back.hex
    said -usd --get --fn ./usd.bin
    said -usd --set --fn ./usd.bin
    said -o --get --fn ./usd.hex
    said -o --set --fn ./usd.hex
    said -usd --get --fn ./again.bin
    cmp usd.bin again.bin && echo same
    said -p --eepp 0-0
    said -p --ewp "$last-$last"
    erasable 0 "$last"
    said -p --depp
    erasable 0 "$last"
    said -p --eepp 0-0
    said -p --dwp
    said -p --efap
    said -u --sec 0-0 --fn ./back.bin
    said -p --dfap
    said -p --erp
    said -p --drp
    said -p --efap1
    said -p --dfap
    said -p --efap2
    { printf '\0\0\0\0'; head -c 32 /dev/zero; printf '\0\0..'; } >data.zvtp
    said -otp --fn ./data.zvtp
    said -enspim --ft 1 --fs 1
    said -enspim --ft 2 --fs 1 --remap 1 --fda 1000
    said -r --addr 08000000
    said -r
}
