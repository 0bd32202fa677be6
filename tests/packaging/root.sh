# Sourced: Debian 12 roots in $work. `bare` has nothing and is made once; the others are copies of it, and the place for
# packages is $work/packages.
mirror=${ZV32_DEBIAN_MIRROR:-http://deb.debian.org/debian}
[ "$(id -u)" -eq 0 ] || { echo "A root of its own takes root" >&2; exit 1; }

mounted=()
unmount() {
    local place
    for place in "${mounted[@]}"; do umount -l "$place"; done
    mounted=()
}
trap unmount EXIT

# enter NAME: a fresh copy of the root that has nothing, that `within` works in from now on.
enter() {
    unmount
    root=$work/$1
    rm -rf --one-file-system "$root"
    cp -a "$work/bare" "$root"
    for place in dev dev/pts proc; do
        mount --bind "/$place" "$root/$place"
        mount --make-private "$root/$place"
        mounted=("$root/$place" "${mounted[@]}")
    done
}

# within COMMAND...: as root there, with nothing of the environment here. user COMMAND: as somebody without rights.
within() {
    env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 chroot "$root" "$@"
}
user() {
    within su tester -s /bin/bash -c "cd; $*"
}

step() {
    echo "== $*"
}

if [ ! -e "$work/bare/done" ]; then
    step "a root that has nothing"
    rm -rf --one-file-system "$work/bare"
    debootstrap --variant=minbase bookworm "$work/bare" "$mirror" >"$work/debootstrap.log"
    cp /etc/resolv.conf "$work/bare/etc/"
    touch "$work/bare/done"
fi
