#!/usr/bin/env bash
# Runs a command with a fresh copy of this project's Wine prefix, so that nothing an earlier run left can matter.
#   tools/harness/with-wine.sh COMMAND [ARGUMENT...]
# ZENDORA_PREFIX names the folder for the copy, which then stays; an old one is replaced.
source "$(dirname "$0")/../common.sh"

prefix=${ZENDORA_PREFIX:-$(make_work_folder)}
clean_up() {
  wineserver -k || true
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
"$@"
