#!/bin/bash
# ./try.sh and ./test.sh in one checkout, in any order, over what an earlier build left, as root and as a user. The
# scripts are the real ones, the project is tests/scripts/small.
#
# usage: two_commands.sh SOURCE-DIR
set -u
source=$1
small=$source/tests/scripts/small
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
failed=

# A chip that is meant to be quick ends with try.sh, and no build of this test wants a compiler.
unset CMAKE_GENERATOR MAKEFLAGS

# checkout: a fresh one, that is gone into.
checkout() {
    cd "$place"
    rm -rf checkout
    mkdir checkout
    cd checkout
    cp -r "$small/." "$source/try.sh" "$source/test.sh" "$source/CMakePresets.json" .
    cp "$source/tools/build.sh" tools/ 2>/dev/null
    mkdir Map
}

# says WHAT COMMAND...: the command ends with 0.
says() {
    what=$1
    shift
    if "$@" >"$place/out" 2>&1; then
        echo "ok: $what"
    else
        echo "FAILED: $what"
        sed 's/^/    /' "$place/out"
        failed=yes
    fi
}

ran_a_test() { ./test.sh && ctest --preset release -N | grep -q 'Total Tests: 1$'; }

checkout
says "first try.sh" ./try.sh
says "which builds no tests" test ! -e build/release/tests-built
says "then test.sh" ran_a_test
says "then try.sh again" ./try.sh
says "and test.sh again" ran_a_test
says "and once more" ran_a_test

checkout
says "first test.sh" ran_a_test
says "then try.sh" ./try.sh

checkout
cmake --preset release -DBUILD_TESTING=OFF >/dev/null
says "test.sh over a cache without tests" ran_a_test
./try.sh >/dev/null 2>&1
says "by hand after try.sh" bash -c 'cmake --preset release && cmake --build --preset release && ctest --preset release --no-tests=error'

checkout
cmake -S . -B build/release -G 'Unix Makefiles' >/dev/null
says "test.sh over a build by another generator" ran_a_test
checkout
cmake -S . -B build/release -G 'Unix Makefiles' >/dev/null
says "try.sh over a build by another generator" ./try.sh

checkout
./test.sh >/dev/null 2>&1
cp -r "$place/checkout" "$place/moved"
rm -rf "$place/checkout"
cd "$place/moved"
says "test.sh in a checkout that was moved" ran_a_test
rm -rf build
cd "$place"
rm -rf moved

checkout
echo 'message(FATAL_ERROR "told by the project")' >>CMakeLists.txt
./test.sh >"$place/told" 2>&1
says "a failure is told" grep -q 'told by the project' "$place/told"

# As a user, after root: only root can be both. sudo is played by what the user finds under its name.
if [ "$(id -u)" -eq 0 ]; then
    as_user() { setpriv --reuid=65534 --regid=65534 --clear-groups env HOME=/nonexistent PATH="$place/sudo:$PATH" "$@"; }
    chmod 755 "$place"
    mkdir "$place/sudo"
    printf '#!/bin/sh\necho "$*" >>"$SUDO_LOG"\nrm -rf build/release build/*.log\n' >"$place/sudo/sudo"
    chmod 755 "$place/sudo/sudo"

    checkout
    chown -R 65534:65534 "$place/checkout"
    says "try.sh as a user" as_user ./try.sh
    says "test.sh as a user" as_user ./test.sh
    says "test.sh as root, over a user's build" ran_a_test
    mkdir build/of-root
    install -m 666 /dev/null "$place/sudo.log"
    as_user env SUDO_LOG="$place/sudo.log" ./try.sh >"$place/out" 2>&1
    says "a user asks sudo for root's build" grep -qx 'chown -R 65534:65534 build' "$place/sudo.log"
fi

[ -z "$failed" ]
