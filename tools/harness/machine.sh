#!/usr/bin/env bash
# Runs a Windows program on a machine of its own, made for this one call: network, site over TLS, display, Wine prefix
# and the disks that tests need to see a machine fail. The build's emulator: CTest runs every test with it, and as many
# of them at a time as the processors bear.
#   tools/harness/machine.sh PROGRAM [ARGUMENT...]
#   tools/harness/machine.sh winedbg PROGRAM [ARGUMENT...]    the same under the debugger, which takes commands
source "$(dirname "$0")/../common.sh"

# Nothing but the debugger has anything to be asked.
[ "$1" = winedbg ] || exec </dev/null
harness=$root/tools/harness
exec "$harness/private-network.sh" "$harness/with-display.sh" "$harness/tls-proxy.sh" "$harness/faulty-machine.sh" \
  "$(dirname "$1")" wine "$@"
