#!/bin/sh
# Installs what is missing on a Debian 12 machine: the one list of packages, for try.sh, test.sh and package.sh.
#
# usage: tools/install-packages.sh [--missing] build|test|kernel|coverage|mutations|package|bare
#   --missing  only tells which ones are missing
set -eu

# To compile the console, the programs beside it, the two libraries and the simulated chip.
compile="cmake ninja-build g++ qtbase5-dev libusb-1.0-0-dev pkg-config libcli11-dev nlohmann-json3-dev nettle-dev
    libtomlplusplus-dev libsqlite3-dev python3"

# To try them: the firmware image is what try.sh programs, srecord moves it to the chip's flash.
build="$compile ca-certificates srecord firmware-microbit-micropython"

# To test them: the test framework, the transcript runner, a second compiler, device nodes without
# devices, independent witnesses.
test="libgtest-dev python3-cram clang clang-format clang-tidy libclang-rt-14-dev binutils git patch strace procps python3-jsonschema sqlite3 umockdev libumockdev-dev
    can-utils dfu-util i2c-tools mandoc bash-completion zsh fish tmux"

# To test them on a stock kernel in a virtual machine. The kernel itself is only unpacked.
kernel="qemu-system-x86 seabios busybox-static cpio xz-utils iproute2"

# To count which lines and branches the tests run.
coverage="llvm"

# To find out which small mistakes the tests do not notice.
mutations="python3-clang-14"

# To make Debian packages of them; debian/control names what the building of these takes.
package="$compile build-essential debhelper dpkg-dev fakeroot libumockdev-dev lintian"

# To try the packages in a bare root.
bare="debootstrap"

only_tell=
[ "${1:-}" != --missing ] || { only_tell=yes; shift; }
case "${1:-}" in
    build) wanted=$build ;;
    test) wanted="$build $test" ;;
    kernel) wanted=$kernel ;;
    coverage) wanted=$coverage ;;
    mutations) wanted="$build $test $mutations" ;;
    package) wanted=$package ;;
    bare) wanted="$package $bare" ;;
    *) echo "usage: $0 [--missing] build|test|kernel|coverage|mutations|package|bare" >&2; exit 2 ;;
esac

missing=
for package in $wanted; do
    if ! dpkg-query -W -f='${Status}\n' "$package" 2>/dev/null | grep -q '^install ok installed$'; then
        missing="$missing $package"
    fi
done
[ -n "$missing" ] || exit 0
[ -z "$only_tell" ] || { echo "$missing"; exit 0; }

echo "installing:$missing"
as_root=
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "run as root, or install by hand:$missing" >&2; exit 1; }
    as_root=sudo
fi
export DEBIAN_FRONTEND=noninteractive
# $missing is a list of words.
{ $as_root apt-get update -qq && $as_root apt-get install -y -qq --no-install-recommends $missing >/dev/null; } || {
    echo "cannot install:$missing" >&2
    exit 1
}
