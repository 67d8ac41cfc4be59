# What ./test checks beside the test programs, and the native tests of the other build. What takes long begins first.
function(add_check name label)
  add_test(NAME ${label}.${name} COMMAND ${ARGN} WORKING_DIRECTORY ${CMAKE_SOURCE_DIR})
  set_tests_properties(${label}.${name} PROPERTIES LABELS ${label} TIMEOUT 900)
endfunction()

foreach(check format includes)
  add_check(${check} quick tools/checks/lint.sh ${check})
endforeach()
foreach(check cppcheck tidy shell python cmake)
  add_check(${check} lint tools/checks/lint.sh ${check})
endforeach()
add_check(executable shipping tools/checks/check-executable)
add_check(reproducible shipping tools/checks/check-reproducible.sh)
add_check(installation demo ./run --headless)

# These keep both processors busy.
set_tests_properties(lint.tidy lint.cppcheck shipping.reproducible PROPERTIES PROCESSORS 2)
set_tests_properties(lint.tidy PROPERTIES COST 1000)
set_tests_properties(shipping.reproducible PROPERTIES COST 500)
set_tests_properties(demo.installation PROPERTIES COST 300)

# The native tests belong to a build of their own; where that is missing, there are none.
file(WRITE ${CMAKE_BINARY_DIR}/native_tests.cmake
  "include(\"${CMAKE_SOURCE_DIR}/build/native/CTestTestfile.cmake\" OPTIONAL)\n")
set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${CMAKE_BINARY_DIR}/native_tests.cmake)
