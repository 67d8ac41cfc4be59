#!/usr/bin/env bash
# Runs the whole-program tests of the release build under Wine, in the private network. Arguments go to the test program.
source "$(dirname "$0")/../common.sh"
exec "$root/tools/harness/private-network.sh" "$root/tools/harness/with-display.sh" "$root/tools/harness/tls-proxy.sh" \
  "$root/tools/harness/faulty-machine.sh" wine "$build/release/program_tests.exe" "$@"
