#!/usr/bin/env bash
# Prints how much of the code is tests.
source "$(dirname "$0")/common.sh"
cd "$root"

lines_of() {
  find "$@" \( -name '*.cpp' -o -name '*.h' \) -print0 | xargs -0 cat | grep -c '[^[:space:]]'
}

program=$(lines_of src)
tests=$(lines_of tests)
printf 'lines: %s in src, %s in tests (%s %% of both)\n' "$program" "$tests" $((tests * 100 / (program + tests)))
