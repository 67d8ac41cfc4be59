# Reads what a GoogleTest program printed and prints three numbers: tests passed, failed, skipped. The closing lines
# must agree with what was seen; a program that ended early has no such lines, which counts as one failure more.
{ sub(/\r$/, "") }
/^\[       OK \] .* \([0-9]+ ms\)$/ { passed++ }
/^\[  FAILED  \] .* \([0-9]+ ms\)$/ { failed++ }
/^\[  SKIPPED \] .* \([0-9]+ ms\)$/ { skipped++ }
/^\[==========\] [0-9]+ tests? from [0-9]+ test suites? ran\./ { ended = 1; announced = $2 }
/^  YOU HAVE [0-9]+ DISABLED TESTS?$/ { disabled = $3 }
END {
  if (!ended || announced == 0 || announced != passed + failed + skipped) failed++
  print passed + 0, failed + 0, skipped + disabled + 0
}
