# Sourced with the source and the build directory: what a transcript finds in its environment.
root=$1
build=$2
export PATH="$build/bin:$root/tools:$PATH" MAPS="$root/Map" ROOT="$root" BUILD="$build" LC_ALL=C.UTF-8
export SETUP="$root/tests/e2e/setup.sh"
