#!/usr/bin/env bash
# Runs a command with a virtual display of its own and a fresh copy of this project's Wine prefix; both end with it. The
# display is reached through the network's abstract sockets alone, so that each private network has its own ":0".
#   tools/harness/with-display.sh COMMAND [ARGUMENT...]
source "$(dirname "$0")/../common.sh"

# Windows takes its language and the encoding of file names from it: the same wherever tests run.
export LC_ALL=C.UTF-8
exec 3< <(exec Xvfb -displayfd 1 -screen 0 1280x1024x24 -nolisten tcp -nolisten unix -dpi 96 2>/dev/null)
display_server=$!
trap 'kill "$display_server" 2>/dev/null || true' EXIT
read -r display <&3 || die "the virtual display did not start"
DISPLAY=:$display "$root/tools/harness/with-wine.sh" "$@"
