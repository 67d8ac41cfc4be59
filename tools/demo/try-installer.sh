#!/usr/bin/env bash
# Installs packages with the installer, on a virtual display and in a Wine prefix of its own, and prints the window's log.
# Inside tools/demo/try-site.sh only.
#   tools/demo/try-installer.sh FOLDER PACKAGE[,PACKAGE...]    FOLDER/drive_c then holds what a player would have
source "$(dirname "$0")/../common.sh"

if [ -z "${ZENDORA_TRYING:-}" ]; then
  ZENDORA_PREFIX=$(realpath "$1")
  export ZENDORA_PREFIX ZENDORA_TRYING=1
  exec "$root/tools/harness/with-display.sh" "$0" "$@"
fi

drive() { wine "$build/release/drive_installer.exe" "$@"; }
wine "$build/release/ZendoraInstaller.exe" "install:$2" &
installer=$!
status=0
drive finish || status=1
drive log | tr -d '\r'
drive boxes | tr -d '\r'
if [ "$status" -eq 0 ]; then
  drive close
else
  kill "$installer"
fi
wait "$installer" || status=1
exit "$status"
