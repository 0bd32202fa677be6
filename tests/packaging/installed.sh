#!/bin/bash
# The packages in a bare root: the session of README is typed, programs are linked with the libraries, and what was
# upgraded, removed and purged leaves nothing. Takes root, a network and a minute or two; made.sh has made the packages.
#
# usage: installed.sh SOURCE-DIR WORK-DIR
set -eu -o pipefail
source=$(cd "$1" && pwd)
work=$(cd "$2" && pwd)
. "$source/tests/packaging/root.sh"

# block HEADING NUMBER: the lines of a shell block of README.
block() {
    awk -v heading="## $1" -v wanted="$2" '
        /^## / { inside = $0 == heading }
        inside && /^```/ { open = !open; count += open; next }
        inside && open && count == wanted' "$source/README.md"
}

# typed: runs the lines of its input one by one, as they are typed. What was sent to the background gets time to begin.
typed() {
    echo 'set -e; exec 2>&1'
    while IFS= read -r line; do
        printf '%s\n' "$line"
        case $line in *'&') echo 'until [ -e port ]; do sleep 0.05; done' ;; esac
    done
}

# paths: everything in the root that is not a note of apt or dpkg about what they did.
paths() {
    find "$root" -xdev \( -path "$root/proc" -o -path "$root/dev" -o -path "$root/run" -o -path "$root/tmp" -o \
        -path "$root/srv" -o -path "$root/var/cache" -o -path "$root/var/log" -o -path "$root/var/lib/apt" \) -prune -o \
        ! -path "$root/var/lib/dpkg/*-old" -printf '%y %P\n' | sort
}

# older NAME: the package as it would be of an older version, with a file that the new one does not have.
older() {
    local tree=$work/older
    rm -rf "$tree"
    dpkg-deb -R "$work"/packages/"$1"_*.deb "$tree"
    sed -i 's/^Version: .*/Version: 3.0.13/; s/(= [^)]*)/(= 3.0.13)/' "$tree/DEBIAN/control"
    mkdir -p "$tree/usr/share/zv32-isp-console"
    echo old >"$tree/usr/share/zv32-isp-console/gone-$1"
    dpkg-deb --root-owner-group -b "$tree" "$root/srv/older/$1_3.0.13_amd64.deb" >/dev/null
}

enter used
cp "$work"/packages/*.deb "$root/srv/"
within useradd --create-home tester
within apt-get update -qq

step "installed, and the session of README"
block "From a package" 1 | typed >"$root/tmp/install"
within bash -c 'cd /srv && yes | bash /tmp/install >/tmp/said 2>&1' || { tail -n 20 "$root/tmp/said"; exit 1; }
block "From a package" 2 | typed >"$root/tmp/session"
user bash /tmp/session | tr '\r' '\n' >"$work/said"
tail -n 2 "$work/said"
grep -qx 'Download successfully!' "$work/said"

step "the other programs"
user 'zv32-look image firmware.bin >/dev/null && zv32-check-map /usr/share/zv32-isp-console/Map/*'
user /usr/share/zv32-isp-console/complete ZV32_ISP_Console -co | grep -qx -- -com

step "programs of one's own"
within bash -c 'apt-get install -y -qq --no-install-recommends /srv/libzvbl-dev_*.deb gcc libc6-dev pkg-config cmake make' \
    >"$work/said" 2>&1 || { tail "$work/said"; exit 1; }
cat >"$root/tmp/own" <<'EOF'
set -e
cp -r /usr/share/doc/libzvbl-dev/examples own
cd own
cat >x.c <<'END'
#include <link/ZVBLLIB.h>
int main(void) { return Interface_is_Open(0); }
END
gcc x.c $(pkg-config --cflags --libs zvbl) -o x
./x
cmake -S . -B built >log
cmake --build built >>log
zv32-sim --chip ZV32F403A_1024K --usart ./port >ready &
until [ -s ready ]; do sleep 0.05; done
built/program ./port /usr/share/zv32-isp-console/Map/ZV32F403A_1024K.ZVmap ../firmware.bin
python3 identify.py ./port
kill %1
EOF
user bash /tmp/own

step "upgraded"
mkdir "$root/srv/older"
for name in zv32-isp zv32-isp-sim libzvbl-dev; do older "$name"; done
within bash -c 'dpkg --purge libzvbl-dev zv32-isp zv32-isp-sim && dpkg -i /srv/older/*.deb' >/dev/null
[ "$(ls "$root"/usr/share/zv32-isp-console/gone-* | wc -l)" = 3 ]
within bash -c 'dpkg -i /srv/*.deb' >/dev/null
! ls "$root"/usr/share/zv32-isp-console/gone-* 2>/dev/null

step "removed and purged"
within bash -c 'dpkg --purge libzvbl-dev zv32-isp zv32-isp-sim zv32-isp-dbgsym zv32-isp-sim-dbgsym' >/dev/null
paths >"$work/without"
! grep -iE 'zv32|zvbl|libFiles\.so' "$work/without" | grep -v ' home/tester'
for action in --remove --purge; do
    within bash -c 'dpkg -i /srv/zv32-isp_*.deb /srv/zv32-isp-sim_*.deb /srv/libzvbl-dev_*.deb' >/dev/null
    within dpkg "$action" libzvbl-dev zv32-isp zv32-isp-sim >/dev/null
    paths | diff "$work/without" - || { echo "dpkg $action leaves that"; exit 1; }
done
echo "nothing is left"
