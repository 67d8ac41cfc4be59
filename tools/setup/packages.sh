#!/usr/bin/env bash
# Installs the Debian packages that building, testing and running need. Skips everything when all are there.
source "$(dirname "$0")/../common.sh"

packages=(
  # the cross compiler, the build, and the history that a release tells
  git g++ g++-mingw-w64-i686-posix binutils-mingw-w64-i686 cmake ninja-build dpkg-dev ca-certificates
  # what zendora-publish is made with, and what signs the program
  libcli11-dev nlohmann-json3-dev libcurl4-openssl-dev libssl-dev osslsigncode
  # the fuzzers' compiler, and what names the lines of their stacks
  clang libclang-rt-14-dev llvm
  # the linters
  clang-format clang-tidy cppcheck shellcheck pylint cmake-format cloc
  # Wine, with both word sizes and TLS for each
  wine wine64 wine32:i386 libgnutls30 libgnutls30:i386
  # a virtual display, and the means to photograph it
  xvfb xdotool imagemagick fonts-wine fonts-liberation fonts-dejavu-core
  # the demo site and its private network
  nginx-light openssl iproute2 util-linux python3 zip unzip python3-pefile
)

all_installed() {
  local states
  states=$(dpkg-query -W -f '${db:Status-Status}\n' "$@" 2>/dev/null) || return 1
  ! grep -qvx installed <<<"$states"
}

apt() {
  as_root env DEBIAN_FRONTEND=noninteractive LC_ALL=C apt-get -q -y -o Dpkg::Use-Pty=0 \
    -o Dpkg::Options::=--force-confold -o Acquire::Retries=3 "$@"
}

# The plain way: the machine's own package sources as they are.
install_plainly() {
  apt update >"$log" 2>&1 && apt install --no-install-recommends "${packages[@]}" >>"$log" 2>&1
}

# Stepping packages back harms nobody in a container, on a machine of a build service, or on one that works for nobody
# but root and without a terminal. Whoever sits at a machine of his own is asked.
may_step_back() {
  if [ "${1:-}" = --yes ] || [ -n "${CI:-}" ] || [ -e /run/.containerenv ] || [ -e /.dockerenv ]; then return 0; fi
  if [ -t 0 ] && [ -t 2 ]; then
    local answer
    read -rp "May they step back to the base suite of Debian? [y/N] " answer
    [ "$answer" = y ]
    return
  fi
  [ "$(id -u)" -eq 0 ]
}

# An index of one architecture that is out of step with its release file leaves the two architectures with
# different candidate versions, which apt refuses to install beside each other. The base suite never moves, so
# with it alone both agree; what is newer on the machine steps back where it must.
install_from_base_suite() {
  local repository folder stepping_back
  repository=$(find_repository)
  folder=$(make_work_folder)
  echo "deb $repository $(. /etc/os-release && echo "$VERSION_CODENAME") main" >"$folder/base.list"
  # The lists of the machine's other sources stay.
  local private=(-o "Dir::Etc::sourcelist=$folder/base.list" -o "Dir::Etc::sourceparts=-" -o APT::Get::List-Cleanup=0)
  local install=(install --no-install-recommends --allow-downgrades "${packages[@]}")
  apt "${private[@]}" update >>"$log" 2>&1 || give_up "the list of packages could not be fetched (is the network there?)"
  apt "${private[@]}" -s "${install[@]}" >"$folder/plan" 2>>"$log" || give_up "apt finds no way to install the packages"
  stepping_back=$(sed -n '/will be DOWNGRADED/,/^[^ ]/s/^  *//p' "$folder/plan" | tr '\n' ' ')
  if [ -n "$stepping_back" ]; then
    say "older versions are needed of: $stepping_back"
    may_step_back "$@" ||
      die "apt can't install the packages beside these (see $log). \"tools/setup.sh --yes\" lets them step back; the" \
        "Containerfile puts everything on a machine of its own"
  fi
  apt "${private[@]}" "${install[@]}" >>"$log" 2>&1 || give_up "the packages could not be installed"
  rm -rf "$folder"
}

give_up() {
  tail -n 20 "$log" >&2
  die "$1; the whole log is in $log"
}

all_installed "${packages[@]}" && exit 0

missing=()
for package in "${packages[@]}"; do
  all_installed "$package" || missing+=("$package")
done
say "installing Debian packages (about a minute): ${missing[*]}"
mkdir -p "$build"
log=$build/setup-packages.log
as_root true
dpkg --print-foreign-architectures | grep -qx i386 || as_root dpkg --add-architecture i386
install_plainly || {
  say "apt can't install them from the package sources as they are; trying the base suite alone"
  install_from_base_suite "$@"
}
all_installed "${packages[@]}" || die "apt reported success, but packages are still missing; the log is in $log"
