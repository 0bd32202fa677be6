#!/bin/sh
# Installs what is missing on a Debian 12 machine: the one list of packages, for try.sh and test.sh.
#
# usage: tools/install-packages.sh build|test
set -eu

# To build the console, the two libraries and the simulated chip; the firmware image is what try.sh
# programs, srecord moves it to the chip's flash.
build="ca-certificates cmake ninja-build g++ qtbase5-dev libusb-1.0-0-dev pkg-config srecord firmware-microbit-micropython"

# To test them: the test framework, the transcript runner, a second compiler, device nodes without
# devices, independent witnesses.
test="libgtest-dev python3 python3-cram clang binutils git strace procps umockdev libumockdev-dev
    can-utils dfu-util i2c-tools"

case "${1:-}" in
    build) wanted=$build ;;
    test) wanted="$build $test" ;;
    *) echo "usage: $0 build|test" >&2; exit 2 ;;
esac

missing=
for package in $wanted; do
    if ! dpkg-query -W -f='${Status}\n' "$package" 2>/dev/null | grep -q '^install ok installed$'; then
        missing="$missing $package"
    fi
done
[ -n "$missing" ] || exit 0

echo "installing:$missing"
as_root=
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "run as root, or install by hand:$missing" >&2; exit 1; }
    as_root=sudo
fi
export DEBIAN_FRONTEND=noninteractive
$as_root apt-get update -qq
# $missing is a list of words.
$as_root apt-get install -y -qq --no-install-recommends $missing >/dev/null
