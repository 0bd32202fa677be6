#!/bin/bash
# Runs a command as root on a stock Debian kernel, in a virtual machine that sees the files of this one,
# read-only but for /dev/shm and /run. Its output, then its exit status; 77 when packages are missing,
# 1 with the guest's console when the guest fails.
#
# usage: guest.sh KERNEL-DIR WORD...
#   KERNEL-DIR  where kernel and initrd are made, once
set -eu
here=$(cd "$(dirname "$0")" && pwd)
kernel=$1
shift

skipped=77
longest=100 # seconds

missing=$("$here/../../tools/install-packages.sh" --missing kernel)
[ -z "$missing" ] || { echo "skipped: packages are missing:$missing"; exit $skipped; }
"$here/kernel.sh" "$kernel" || { echo "skipped: no kernel"; exit $skipped; }

exchange=$(mktemp -d)
trap 'rm -rf "$exchange"' EXIT
printf 'exec' >"$exchange/command"
printf ' %q' "$@" >>"$exchange/command"

machine=(-accel tcg,thread=multi -M q35 -smp 1 -m 256 -nodefaults -no-user-config -display none -no-reboot
    -kernel "$kernel/vmlinux" -initrd "$kernel/initrd" -append "console=ttyS0 panic=-1 reboot=t"
    -serial "file:$exchange/console"
    -fsdev "local,id=host,path=/,security_model=none,readonly=on,multidevs=remap"
    -device virtio-9p-pci,fsdev=host,mount_tag=host
    -fsdev "local,id=exchange,path=$exchange,security_model=none"
    -device virtio-9p-pci,fsdev=exchange,mount_tag=exchange)
timeout -s KILL "$longest" qemu-system-x86_64 "${machine[@]}" || echo "the machine ended with status $?"

[ ! -f "$exchange/output" ] || cat "$exchange/output"
if [ ! -f "$exchange/status" ]; then
    echo "the guest did not come to its end; the last lines of its console:"
    tail -n 40 "$exchange/console"
    exit 1
fi
exit "$(cat "$exchange/status")"
