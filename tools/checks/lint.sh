#!/usr/bin/env bash
# Reads the sources for faults without running them. What cppcheck and clang-tidy have found clean they don't read again
# until it changes.
#   tools/checks/lint.sh [CHECK...]    each of format, includes, cppcheck, tidy, shell, python, cmake; by default all
# shellcheck disable=SC2317 # the checks are called by their names
source "$(dirname "$0")/../common.sh"
cd "$root"

# The scripts for an interpreter.
scripts_for() {
  grep -rlE "^#!.*\b$1\$" --exclude-dir=build --exclude-dir=.git .
}

mapfile -t sources < <(find src publish tests tools -name '*.cpp' -o -name '*.h' | sort)
mapfile -t translation_units < <(printf '%s\n' "${sources[@]}" | grep '\.cpp$')

check_format() {
  clang-format --dry-run -Werror "${sources[@]}"
}

check_includes() {
  tools/checks/check-includes
}

# Suppressions stand in the code, with their reasons.
check_cppcheck() {
  mkdir -p "$build/cppcheck"
  cppcheck --quiet --error-exitcode=1 -j "$(nproc)" --cppcheck-build-dir="$build/cppcheck" \
    --std=c++20 --language=c++ --platform=win32W --library=windows,googletest \
    --enable=warning,performance,portability --inline-suppr \
    -I src -I res -I publish -I tests -I build/release/maker "${translation_units[@]}"
}

# Compiles both programs that ship once more, with clang-tidy, every warning, and without precompiled headers. The faults
# of the tests show when they run.
check_tidy() {
  tools/build.sh lint linted
}

check_shell() {
  local scripts
  mapfile -t scripts < <(scripts_for bash && grep -rl '^# shellcheck shell=' tools)
  shellcheck --external-sources --source-path=SCRIPTDIR "${scripts[@]}"
}

# Faults, not matters of taste: as with clang-tidy.
check_python() {
  local scripts
  mapfile -t scripts < <(scripts_for python3 && find tools -name '*.py')
  pylint --score=no --disable=all --enable=E,F,W "${scripts[@]}"
}

# C0103: this project's variables are written in small letters. C0111: a comment stands where a name doesn't say it all.
check_cmake() {
  cmake-lint --line-width=120 --disabled-codes C0103 C0111 --suppress-decorations -- CMakeLists.txt publish/CMakeLists.txt \
    tests/fuzz/CMakeLists.txt cmake/*.cmake
}

failed=0
[ $# -gt 0 ] || set -- format includes cppcheck tidy shell python cmake
for check in "$@"; do
  "check_$check" || failed=1
done
exit $failed
