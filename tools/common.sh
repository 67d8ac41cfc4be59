# Shared by all scripts: source it, don't run it.
# shellcheck shell=bash disable=SC2034 # the scripts use these names
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$root/build
# The sources of the libraries, which each build compiles with its own flags.
deps=$build/deps
# The Wine prefix whose copies everything here runs in.
wine_prefix=$build/wine
# What a demo makes, shows and writes down. Each has a folder of its own, so that nobody clears another's away.
output=${ZENDORA_OUTPUT:-$build/run}

# Python leaves no compiled modules among the sources.
export PYTHONDONTWRITEBYTECODE=1

say() { printf '== %s\n' "$*" >&2; }

die() {
  printf 'error: %s\n' "$*" >&2
  exit 1
}

# A folder for what a script makes while it runs, named after it. ./test removes what a killed one has left.
make_work_folder() {
  mkdir -p "$build/work"
  mktemp -d -p "$build/work" "$(basename "$0" .sh).XXXXXX"
}

# Where this machine has the packages of its Debian release from.
find_repository() {
  local codename repository
  codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
  # shellcheck disable=SC2016 # apt expands these names itself
  repository=$(apt-get indextargets --format '$(RELEASE) $(REPO_URI)' 'Created-By: Packages' |
    awk -v suite="$codename" '$1 == suite { print $2; exit }')
  [ -n "$repository" ] || die "no package source for Debian \"$codename\" is configured on this machine"
  echo "$repository"
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
