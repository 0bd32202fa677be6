#!/bin/sh
# Makes DIR/vmlinux and DIR/initrd of Debian's kernel, unless they are there. The kernel's package is
# downloaded and unpacked, never installed.
#
# usage: kernel.sh DIR
set -eu
here=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$1"
cd "$1"
exec 9>lock
flock 9

made_from=$(cat "$here/kernel.sh" "$here/modules" "$here/init" | sha256sum)
[ "$(cat made-from 2>/dev/null)" != "$made_from" ] || exit 0

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
package=$scratch/package
root=$scratch/root

# fetch: the package that the meta package linux-image-amd64 stands for.
fetch() {
    name=$(apt-cache depends linux-image-amd64 2>/dev/null |
        sed -n 's/^ *Depends: \(linux-image-[0-9].*-amd64\)$/\1/p')
    [ -n "$name" ] || { echo "apt knows no package linux-image-amd64" >"$scratch/log"; return 1; }
    (cd "$scratch" && apt-get download -q "$name") >"$scratch/log" 2>&1
}

# update: apt's lists, which may be missing or too old.
update() {
    as_root=
    [ "$(id -u)" -eq 0 ] || as_root="sudo -n"
    $as_root apt-get update -qq >/dev/null 2>&1
}

download() {
    fetch || { update && fetch; } || {
        echo "cannot download Debian's kernel package:" >&2
        cat "$scratch/log" >&2
        exit 1
    }
    dpkg -x "$scratch"/*.deb "$package"
}

# kernel: uncompressed, which saves the emulated processor three seconds in every boot.
kernel() {
    image=$(ls "$package"/boot/vmlinuz-*)
    start=$(LC_ALL=C grep -abo -m1 -P '\xfd7zXZ' "$image" | head -n 1 | cut -d: -f1)
    tail -c "+$((start + 1))" "$image" | xz -dc --single-stream >vmlinux.new 2>/dev/null || true
    [ "$(head -c 4 vmlinux.new)" = "$(printf '\177ELF')" ] || cp "$image" vmlinux.new
    mv vmlinux.new vmlinux
}

# initrd: busybox, init, and the modules with what modules.dep tells that they need.
initrd() {
    wanted=$(grep -v '^#' "$here/modules")
    version=$(ls "$package/lib/modules")
    modules=lib/modules/$version
    mkdir -p "$root/$modules"
    busybox depmod -b "$package" "$version"
    cd "$package/$modules"
    for module in $wanted; do
        files=$(grep "/$module\.ko:" modules.dep | tr -d :)
        [ -n "$files" ] || { echo "$version has no module $module" >&2; exit 1; }
        cp --parents $files "$root/$modules/"
    done
    busybox depmod -b "$root" "$version"
    cd "$root"
    mkdir bin dev proc sys host
    cp /bin/busybox bin/
    cp "$here/init" init
    echo "$wanted" >modules
    find . | cpio --quiet -o -H newc -R 0:0 | gzip -1 >"$scratch/initrd"
}

download
kernel
(initrd)
mv "$scratch/initrd" initrd
echo "$made_from" >made-from
