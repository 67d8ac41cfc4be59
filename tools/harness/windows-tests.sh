#!/usr/bin/env bash
# Runs the in-process tests of a build under Wine, in the private network. Arguments go to the test program.
#   tools/harness/windows-tests.sh [--preset PRESET] [ARGUMENT...]
source "$(dirname "$0")/../common.sh"

preset=debug
if [ "${1:-}" = --preset ]; then
  preset=$2
  shift 2
fi
exec "$root/tools/harness/private-network.sh" "$root/tools/harness/with-display.sh" "$root/tools/harness/tls-proxy.sh" \
  wine "$build/$preset/windows_tests.exe" "$@"
