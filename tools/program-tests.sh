#!/usr/bin/env bash
# Runs the whole-program tests of the release build under Wine, in the private network. Arguments go to the test program.
source "$(dirname "$0")/common.sh"
exec "$root/tools/private-network.sh" "$root/tools/with-display.sh" "$root/tools/tls-proxy.sh" \
  "$root/tools/faulty-machine.sh" wine "$build/release/program_tests.exe" "$@"
