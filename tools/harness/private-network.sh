#!/usr/bin/env bash
# Runs a command in a network of its own: nothing but a loopback interface, on which zendora.example lives and every
# port is free. What runs inside can't reach anything outside, nothing outside sees it, and it ends with the command.
#   tools/harness/private-network.sh COMMAND [ARGUMENT...]
source "$(dirname "$0")/../common.sh"

if [ "${ZENDORA_PRIVATE_NETWORK:-}" != inside ]; then
  rights=()
  [ "$(id -u)" -eq 0 ] || rights=(--map-root-user)
  unshare "${rights[@]}" --net --mount -- mount --bind /etc/hosts /etc/hosts 2>/dev/null ||
    die "a private network can't be made here: run this as root, on a machine (or in a container) that may make namespaces"
  ZENDORA_PRIVATE_NETWORK=inside exec unshare "${rights[@]}" --net --mount --pid --fork --kill-child --mount-proc -- "$0" "$@"
fi

ip link set lo up
folder=$(make_work_folder)
hosts=$folder/hosts
# A build for another site has its host here, too.
site_hosts=$(cat "$build"/*/CMakeCache.txt 2>/dev/null | sed -n 's|^ZENDORA_SITE_BASE:STRING=https\?://||p' | sort -u | tr '\n' ' ') || true
printf '127.0.0.1 localhost mirror.zendora.example %s %s\n' zendora.example "$site_hosts" >"$hosts"
mount --bind "$hosts" /etc/hosts
rm -rf "$folder"
# Displays write their keymaps here, by number, and each network has its own number 0.
[ ! -d /var/lib/xkb ] || mount -t tmpfs none /var/lib/xkb
exec "$@"
