#!/usr/bin/env bash
# Prints how much of the code is tests. Blank lines and comments don't count.
source "$(dirname "$0")/../common.sh"
cd "$root"

lines_of() { cloc --quiet --csv --force-lang="C++",h "$@" | sed -nE 's/^[0-9]+,SUM,.*,([0-9]+)$/\1/p'; }

program=$(lines_of src res publish) tools=$(lines_of tools cmake CMakeLists.txt run test release) tests=$(lines_of tests)
printf 'lines: %s in the programs, %s in tools, %s in tests (%s %% of all)\n' \
  "$program" "$tools" "$tests" $((tests * 100 / (program + tools + tests)))
