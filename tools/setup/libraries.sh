#!/usr/bin/env bash
# Fetches the sources of the libraries into build/deps. The build compiles them with the program, with its own
# flags; nothing of them enters the repository.
source "$(dirname "$0")/../common.sh"

# Name of the source package, and the version of the library.
libraries=(zlib=1.3.1 tinyxml2=11.0.0 googletest=1.16.0 curl=8.14.1)
# The release that carries these versions.
release=trixie

missing=()
for library in "${libraries[@]}"; do
  [ -e "$deps/${library%%=*}/.complete" ] || missing+=("$library")
done
[ ${#missing[@]} -gt 0 ] || exit 0

say "fetching library sources"
mkdir -p "$deps/apt/lists/partial" "$deps/apt/archives/partial"
log=$build/setup-libraries.log
repository=$(find_repository)
echo "deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $repository $release main" >"$deps/apt/sources.list"

# Lists and archives of its own, so that the machine's package state stays as it is and no root is needed.
source_apt() {
  apt-get -q -o "Dir::Etc::sourcelist=$deps/apt/sources.list" -o "Dir::Etc::sourceparts=-" \
    -o "Dir::State::lists=$deps/apt/lists" -o "Dir::Cache=$deps/apt" -o "Dir::Cache::archives=$deps/apt/archives" \
    -o APT::Sandbox::User=root -o Acquire::Retries=3 "$@" >>"$log" 2>&1
}

: >"$log"
source_apt update || die "the list of library sources could not be fetched (is the network there?); see $log"
for library in "${missing[@]}"; do
  name=${library%%=*} version=${library#*=}
  work=$(make_work_folder)
  # The authors' own archive alone: it stays the same while Debian's changes to it come and go, so that the same commit
  # gives the same bytes, and a mirror that has not yet got the newest of them stops nobody.
  (cd "$work" && source_apt source --download-only --tar-only "$name") ||
    die "the source of $name could not be fetched (is the network there?); see $log"
  archive=$(find "$work" -name '*.orig.tar.?z')
  [[ ${archive##*/} =~ [_.a-z]"$version"(\+dfsg)?\.orig ]] ||
    die "the source of $name is not version $version but $(basename "$archive")"
  rm -rf "${deps:?}/$name"
  mkdir "$deps/$name"
  tar -xf "$archive" -C "$deps/$name" --strip-components=1
  touch "$deps/$name/.complete"
  rm -rf "$work"
done
