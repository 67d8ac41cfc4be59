#!/usr/bin/env bash
# Builds the program once more, from a copy of the sources in another folder, and compares it with build/release byte
# for byte.
source "$(dirname "$0")/../common.sh"

copy=$build/reproducible/a-folder-of-another-name
rm -rf "$build/reproducible"
mkdir -p "$copy/build"
cp -a "$root"/{CMakeLists.txt,CMakePresets.json,cmake,src,res,publish,tests,tools} "$copy"
ln -s "$(realpath "$deps")" "$copy/build/deps"
CCACHE_DISABLE=1 cmake -S "$copy" --preset release >/dev/null
CCACHE_DISABLE=1 cmake --build "$copy/build/release" --target ZendoraInstaller
cmp "$build/release/ZendoraInstaller.exe" "$copy/build/release/ZendoraInstaller.exe"
rm -rf "$build/reproducible"
