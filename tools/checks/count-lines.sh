#!/usr/bin/env bash
# Prints how much of the code is tests. Blank lines and comments don't count.
source "$(dirname "$0")/../common.sh"
cd "$root"

lines_of() {
  find "$@" -type f ! -name '*.ico' -print0 | xargs -0 grep -vhcE '^[[:space:]]*($|//|#([ !]|$))' |
    awk '{ sum += $1 } END { print sum }'
}

program=$(lines_of src res publish) tools=$(lines_of tools run test release) tests=$(lines_of tests)
printf 'lines: %s in the program, %s in tools, %s in tests (%s %% of all)\n' \
  "$program" "$tools" "$tests" $((tests * 100 / (program + tools + tests)))
