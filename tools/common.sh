# Shared by the set-up and run scripts: source it, don't run it.
# shellcheck shell=bash disable=SC2034 # the scripts use these names
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$root/build
# The libraries are made here, once per target: "windows" (cross-built) and "native".
deps=$build/deps
# The Wine prefix whose copies everything here runs in.
wine_prefix=$build/wine
# What a demo makes, shows and writes down. Each has a folder of its own, so that nobody clears another's away.
output=${ZENDORA_OUTPUT:-$build/run}

say() { printf '== %s\n' "$*" >&2; }

die() {
  printf 'error: %s\n' "$*" >&2
  exit 1
}

# Runs a command as root: directly, or through sudo without asking for a password.
as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  elif command -v sudo >/dev/null && sudo -n true 2>/dev/null; then
    sudo -n "$@"
  else
    die "this step needs root: run the command as root, or let sudo work without a password"
  fi
}
