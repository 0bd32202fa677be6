#!/bin/bash
# Installs what is missing, builds, and runs all tests.
#
# usage: ./test.sh [--all|--kernel|--packages|--fuzz SECONDS|--campaign|--coverage|--mutations SEED COUNT]
#   --all     also reads all with clang++ for its warnings, looks for mistakes with clang-tidy, and runs the tests under
#             AddressSanitizer with UndefinedBehaviorSanitizer, and those of the console under ThreadSanitizer
#   --kernel  runs those on a stock Debian kernel with its own drivers, and no others
#   --packages  makes the Debian packages, here and in a bare root, and installs, upgrades and removes them in another;
#               takes root, and runs no other tests
#   --fuzz    builds the fuzzers of tests/fuzz and runs them for so many seconds all together, and nothing else
#   --campaign  runs the programs that find out how reliable the links are, which takes minutes; each prints a table
#   --coverage  builds with clang++ so that lines and branches are counted, runs all tests and prints a table of the folders
#   --mutations  makes so many small mistakes in a copy of the tree, chosen by the seed, and tells which ones no test noticed
set -eu
cd "$(dirname "$0")"

all=
kernel=
fuzz=
campaign=
coverage=
case "${1:-}" in
    "") ;;
    --all) all=yes ;;
    --kernel) kernel=yes ;;
    --packages)
        tools/install-packages.sh bare
        tests/packaging/made.sh . build/bare
        exec tests/packaging/installed.sh . build/bare
        ;;
    --fuzz) fuzz=${2:-} ;;
    --campaign) campaign=yes ;;
    --coverage) coverage=yes ;;
    --mutations)
        tools/install-packages.sh mutations
        exec tests/mutations/mutations.py --seed "${2:-1}" --count "${3:-500}"
        ;;
    *) echo "usage: $0 [--all|--kernel|--packages|--fuzz SECONDS|--campaign|--coverage|--mutations SEED COUNT]" >&2; exit 2 ;;
esac
if [ "${1:-}" = --fuzz ] && ! [[ $fuzz =~ ^[1-9][0-9]*$ ]]; then
    echo "usage: $0 --fuzz SECONDS" >&2
    exit 2
fi

tools/install-packages.sh test
[ -z "$kernel" ] || tools/install-packages.sh kernel
[ -z "$coverage" ] || tools/install-packages.sh coverage

# build PRESET [--target TARGET...]
build() {
    echo "== build: $1"
    tools/build.sh "$@"
}

# run PRESET [CTEST-ARGS]: runs the tests of a build, in parallel.
run() {
    preset=$1
    shift
    echo "== tests: $preset"
    # Most of a test is waiting, but not with sanitizers.
    each=3
    case "$preset" in asan | tsan) each=2 ;; esac
    # umockdev aborts the simulated chip when a listener of its events leaves in the moment of one. The chip sends
    # hardly any events, so this is rare. What ran out of its time, and nothing else, gets a second try.
    ctest --preset "$preset" -j "$(($(nproc) * each))" --no-tests=error --schedule-random --repeat after-timeout:2 "$@"
}

if [ -n "$fuzz" ]; then
    build fuzz --target fuzzers
    exec tests/fuzz/run.sh "$fuzz"
fi

if [ -n "$coverage" ]; then
    build coverage
    rm -rf build/coverage/profiles
    failed=0
    run coverage || failed=1
    tools/coverage.py build/coverage || failed=1
    exit "$failed"
fi

# Those that --campaign runs: each is a program in build/release/campaign, and fails when it finds a lie.
if [ -n "$campaign" ]; then
    programs="damage-matrix equal-chips replug kills register-storm host-campaign border-campaign wire-campaign"
    build release --target $programs
    failed=0
    for program in $programs; do
        echo "== campaign: $program"
        "build/release/campaign/$program" || failed=1
    done
    exit "$failed"
fi

build release
if [ -n "$kernel" ]; then
    tests/kernel/kernel.sh build/kernel
    run release -C kernel -L kernel
    exit
fi
run release
if [ -n "$all" ]; then
    echo "== clang++ and clang-tidy"
    cmake --preset clang >/dev/null
    tools/tidy.sh
    tools/clang-warnings.py
    build asan
    run asan
    build tsan --target console_tests
    run tsan -L console
fi
