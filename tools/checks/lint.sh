#!/usr/bin/env bash
# Reads the sources for faults without running them.
#   tools/checks/lint.sh [CHECK...]    each of format, cppcheck, tidy, shell, includes; all of them by default
# tidy takes the compiler's command lines from the builds "native" and "release".
# shellcheck disable=SC2317 # the checks are called by their names
source "$(dirname "$0")/../common.sh"
cd "$root"

mapfile -t sources < <(find src tests tools \( -name '*.cpp' -o -name '*.h' \) | sort)
mapfile -t translation_units < <(printf '%s\n' "${sources[@]}" | grep '\.cpp$')
processors=$(nproc)

check_format() {
  clang-format --dry-run -Werror "${sources[@]}"
}

# Suppressions stand in the code, with their reasons. These are about all of it: system headers are not read, and
# functions that only a test or the system calls look unused.
check_cppcheck() {
  cppcheck --quiet --error-exitcode=1 -j "$processors" --std=c++20 --language=c++ --platform=win32W --library=windows,googletest \
    --enable=warning,performance,portability --inline-suppr --suppress=missingIncludeSystem \
    --suppress=unmatchedSuppression -I src -I res -I tests -I build/release/maker "${translation_units[@]}"
}

# clang reads the program as the cross compiler does, with its headers, and the native tests as they are. The faults of
# the other tests show when they run, and to read them too takes longer than to build everything.
check_tidy() {
  local headers status=0
  headers=$(dirname "$(i686-w64-mingw32-g++-posix -print-libgcc-file-name)")/include/c++
  grep '^src/' < <(printf '%s\n' "${translation_units[@]}") |
    run_tidy -p "$build/release" --extra-arg=--target=i686-w64-mingw32 \
      --extra-arg=-isystem"$headers" --extra-arg=-isystem"$headers/i686-w64-mingw32" || status=1
  grep '^tests/native/' < <(printf '%s\n' "${translation_units[@]}") | run_tidy -p "$build/native" || status=1
  return "$status"
}

# Reads the files that standard input names.
run_tidy() {
  xargs -P "$processors" -n 4 clang-tidy --quiet "$@" 2> >(grep -vE 'warnings? (and [0-9]+ errors? )?generated' >&2)
}

check_shell() {
  local scripts
  mapfile -t scripts < <(grep -rlE '^#!.*\b(ba)?sh$|^# shellcheck shell=' run test .ci tools)
  shellcheck --external-sources --source-path=SCRIPTDIR "${scripts[@]}"
}

check_includes() {
  tools/checks/check-includes
}

failed=0
[ $# -gt 0 ] || set -- format cppcheck tidy shell includes
for check in "$@"; do
  "check_$check" || failed=1
done
exit $failed
