#!/usr/bin/env bash
# Runs the whole-program tests of the release build under Wine, in the private network. Arguments go to the test program.
source "$(dirname "$0")/common.sh"

cd "$build/release"
exec "$root/tools/private-network.sh" "$root/tools/with-display.sh" wine program_tests.exe "$@"
