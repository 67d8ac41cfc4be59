#!/usr/bin/env bash
# Runs a command with a virtual display of its own and this project's Wine prefix, and ends both afterwards.
#   tools/with-display.sh COMMAND [ARGUMENT...]
source "$(dirname "$0")/common.sh"

exec 3< <(exec Xvfb -displayfd 1 -screen 0 1280x1024x24 -nolisten tcp -dpi 96 2>/dev/null)
display_server=$!
trap 'wineserver -k || true; kill "$display_server" 2>/dev/null || true' EXIT
read -r display <&3 || die "the virtual display did not start"

export DISPLAY=:$display WINEPREFIX=$wine_prefix WINEDEBUG=${WINEDEBUG:--all}
"$@"
