#!/usr/bin/env bash
# Builds a preset, release by default; prints what the build says only where it fails, or takes note of a warning.
#   tools/build.sh [PRESET [TARGET...]]
# ZENDORA_BUILT names the presets that tests take as they are: other tests are running from the same folders.
source "$(dirname "$0")/common.sh"
cd "$root"

preset=${1:-release}
folder=$build/$preset
shift || true
case " ${ZENDORA_BUILT:-} " in
  *" $preset "*)
    [ -e "$folder/build.ninja" ] || die "the preset $preset isn't built: run tools/build.sh $preset"
    exit 0
    ;;
esac
# The build of a checkout that was moved or copied would go on building the old one.
if [ -e "$folder/CMakeCache.txt" ] && ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$folder/CMakeCache.txt"; then
  say "$folder was made for another folder; building it anew"
  rm -rf "$folder"
fi
[ -e "$folder/build.ninja" ] || cmake --preset "$preset" >/dev/null
say "building $preset"
cmake --build "$folder" -- --quiet "${@:-all}"
