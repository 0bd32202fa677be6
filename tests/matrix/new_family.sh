#!/bin/bash
# Copies what a new family touches and applies the diff of docs/adding-a-chip.md to the copy; beside it a build
# directory for the two programs that are made from it.
#
# usage: new_family.sh SOURCE-DIR BUILD-DIR TARGET-DIR
set -eu
source=$1 build=$2 root=$3/root
rm -rf "$root"
mkdir -p "$root"/{device,sim/chip,tools,Map} "$3/build/bin"
cp "$source"/device/Families.cpp "$root/device"
cp "$source"/sim/chip/ChipRows.cpp "$root/sim/chip"
cp "$source"/tools/{chips.csv,make-maps.py} "$root/tools"
ln -s "$source/tests" "$root"
ln -sfn "$build/lib" "$3/build/lib"
ln -sfn "$build/doubles" "$3/build/doubles"
sed -n '/^```diff$/,/^```$/{/^```/!p}' "$source/docs/adding-a-chip.md" | patch --silent --directory="$root" --strip=1
"$root/tools/make-maps.py" >/dev/null
