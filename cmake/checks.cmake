# What ./test checks beside the test programs, and the native tests of the other build. What takes long begins first.
set(check_environment "ZENDORA_BUILT=release native publish" PYTHONDONTWRITEBYTECODE=1)
function(add_check name label)
  add_test(NAME ${label}.${name} COMMAND ${ARGN} WORKING_DIRECTORY ${CMAKE_SOURCE_DIR})
  set_tests_properties(${label}.${name} PROPERTIES LABELS ${label} TIMEOUT 900
    ENVIRONMENT "${check_environment};ZENDORA_OUTPUT=${CMAKE_SOURCE_DIR}/build/test/${name}")
endfunction()

foreach(check format includes)
  add_check(${check} quick tools/checks/lint.sh ${check})
endforeach()
foreach(check cppcheck tidy shell python cmake)
  add_check(${check} lint tools/checks/lint.sh ${check})
endforeach()
add_check(executable shipping tools/checks/check-executable)
add_check(release shipping tests/publish/release-test.sh)
add_check(installation demo ./run --headless)
add_check(matrix faults tools/fault-matrix --points 1 --seed 1 --lanes 3)  # the same points each time
add_check(site publish
  tools/harness/private-network.sh tests/publish/check-site-test.sh build/publish/zendora-publish)
add_check(windows publish tests/publish/windows-tool-test.sh)
add_check(guide publish tests/publish/guide-test.sh)

# These keep the processors busy: one at a time, beside tests that mostly wait.
set_tests_properties(lint.tidy lint.cppcheck shipping.release publish.guide PROPERTIES
  PROCESSORS 2 RESOURCE_LOCK processors)
set_tests_properties(lint.tidy PROPERTIES COST 1000)
set_tests_properties(shipping.release PROPERTIES COST 500 TIMEOUT 1800)
set_tests_properties(faults.matrix PROPERTIES PROCESSORS 2 COST 400)
set_tests_properties(demo.installation PROPERTIES COST 300)

# The native tests belong to a build of their own, and zendora-publish to another; a test that fails stands for one that
# is missing.
file(WRITE ${CMAKE_BINARY_DIR}/other_builds.cmake
  "foreach(preset native publish)\n"
  "  if(NOT EXISTS \"${CMAKE_SOURCE_DIR}/build/\${preset}/build.ninja\")\n"
  "    add_test(\${preset}.NOT_BUILT sh -c \"echo the preset \${preset} is not built; exit 1\")\n"
  "    set_tests_properties(\${preset}.NOT_BUILT PROPERTIES LABELS \${preset})\n"
  "  endif()\n"
  "endforeach()\n"
  "include(\"${CMAKE_SOURCE_DIR}/build/native/CTestTestfile.cmake\" OPTIONAL)\n"
  "include(\"${CMAKE_SOURCE_DIR}/build/native/publish/CTestTestfile.cmake\" OPTIONAL)\n"
  "include(\"${CMAKE_SOURCE_DIR}/build/native/tests/fuzz/CTestTestfile.cmake\" OPTIONAL)\n")
set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${CMAKE_BINARY_DIR}/other_builds.cmake)
