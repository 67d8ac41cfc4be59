#!/usr/bin/env bash
# Runs a command with a virtual display of its own and a fresh copy of this project's Wine prefix; both end with it.
#   tools/with-display.sh COMMAND [ARGUMENT...]
# ZENDORA_PREFIX names the folder for the copy, which then stays; an old one is replaced.
source "$(dirname "$0")/common.sh"

prefix=${ZENDORA_PREFIX:-$build/prefixes/$$}
display_server=
clean_up() {
  wineserver -k || true
  [ -z "$display_server" ] || kill "$display_server" 2>/dev/null || true
  [ -n "${ZENDORA_PREFIX:-}" ] || rm -rf "$prefix"
}

# The copy shares the files of the original; only the registry is written in place.
rm -rf "$prefix"
mkdir -p "$(dirname "$prefix")"
cp -al "$wine_prefix" "$prefix"
for file in "$prefix"/*.reg "$prefix"/.update-timestamp; do
  cp -a --remove-destination "$wine_prefix/$(basename "$file")" "$file"
done
export WINEPREFIX=$prefix WINEDEBUG=${WINEDEBUG:--all}
trap clean_up EXIT

exec 3< <(exec Xvfb -displayfd 1 -screen 0 1280x1024x24 -nolisten tcp -dpi 96 2>/dev/null)
display_server=$!
read -r display <&3 || die "the virtual display did not start"
export DISPLAY=:$display
"$@"
