#!/usr/bin/env bash
# Runs a command with what tests need to see a machine fail. Inside the private network and tools/harness/with-wine.sh
# only.
#   C:\full          a disk of one and a half megabytes
#   C:\locked        a disk that can't be written to; a copy of the program is on it
#   C:\link          while a file "down" is in this folder, the network is gone, as with a pulled cable; the file
#                    "is-down" tells that it is
#   127.0.0.1:53     where names are asked for that /etc/hosts doesn't tell; nobody listens there, but for a test's own
#                    nameserver
#   tools/harness/faulty-machine.sh PROGRAM_FOLDER COMMAND [ARGUMENT...]
source "$(dirname "$0")/../common.sh"
[ "${ZENDORA_PRIVATE_NETWORK:-}" = inside ] || die "this runs inside tools/harness/private-network.sh only"

program=$1/ZendoraInstaller.exe
shift
drive=$WINEPREFIX/drive_c
mkdir -p "$drive/full" "$drive/locked" "$drive/link"
mount -t tmpfs -o size=1536k none "$drive/full"
mount -t tmpfs none "$drive/locked"
[ ! -e "$program" ] || cp "$program" "$drive/locked/ZendoraSelfUpdateTest.exe"
mount -o remount,ro "$drive/locked"

nameservers=$(mktemp -p "$build" nameservers.XXXXXX)
echo "nameserver 127.0.0.1" >"$nameservers"
chmod 644 "$nameservers"
mount --bind "$nameservers" /etc/resolv.conf
rm -f "$nameservers"

# Looks twenty times a second, and starts no process to wait in between.
watch_link() {
  local never
  exec {never}<> <(:)
  while :; do
    read -rt 0.05 -u "$never" || true
    if [ -e "$drive/link/down" ] && [ ! -e "$drive/link/is-down" ]; then
      ip address del 127.0.0.1/8 dev lo
      touch "$drive/link/is-down"
    elif [ ! -e "$drive/link/down" ] && [ -e "$drive/link/is-down" ]; then
      ip address add 127.0.0.1/8 dev lo
      rm "$drive/link/is-down"
    fi
  done
}

watch_link &
watcher=$!
trap 'kill "$watcher" 2>/dev/null || true; umount -l "$drive/full" "$drive/locked"' EXIT
"$@"
