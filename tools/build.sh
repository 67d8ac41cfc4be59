#!/usr/bin/env bash
# Builds one preset: release (the default), debug, native or publish.
source "$(dirname "$0")/common.sh"

preset=${1:-release}
[ -e "$build/$preset/build.ninja" ] || cmake -S "$root" --preset "$preset" >/dev/null
cmake --build "$build/$preset"
