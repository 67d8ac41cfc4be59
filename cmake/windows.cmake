# The program, and the tests that run on Windows.

if(NOT ZENDORA_VERSION MATCHES "^([0-9]+)[.]([0-9]+)[.]([0-9]+)$")
  message(FATAL_ERROR "ZENDORA_VERSION must be three numbers such as 4.0.8, not \"${ZENDORA_VERSION}\"")
endif()
set(file_version ${CMAKE_MATCH_1}.${CMAKE_MATCH_2}.0.${CMAKE_MATCH_3})
string(REPLACE . ", " file_version_numbers ${file_version})
list(TRANSFORM ZENDORA_ABOUT_LINKS REPLACE "(.+)" "L\"\\1\"" OUTPUT_VARIABLE about_links)
list(JOIN about_links ", " about_links)
set(maker_dir ${CMAKE_BINARY_DIR}/maker)
configure_file(${CMAKE_SOURCE_DIR}/cmake/maker.h.in ${maker_dir}/maker.h @ONLY)
configure_file(${CMAKE_SOURCE_DIR}/res/installer.manifest.in ${maker_dir}/installer.manifest @ONLY)

file(GLOB_RECURSE windows_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/*.cpp)
list(REMOVE_ITEM windows_sources ${CMAKE_SOURCE_DIR}/src/app/main.cpp)
foreach(source ${text_sources})
  list(REMOVE_ITEM windows_sources ${CMAKE_SOURCE_DIR}/${source})
endforeach()

# What most sources include anyway, read once. Only headers from elsewhere: one of ours would rebuild everything with
# each change. The preset "lint" does without, so that no source can forget what it includes.
set(common_headers
  <algorithm> <cstdint> <functional> <map> <memory> <optional> <string> <string_view> <vector>
  <windows.h> <commctrl.h>)

# All of the program but its entry point, so that tests can link it.
add_library(zendora STATIC ${windows_sources})
set_project_options(zendora)
target_precompile_headers(zendora PRIVATE ${common_headers})
target_include_directories(zendora PRIVATE ${maker_dir})
target_link_libraries(zendora PUBLIC zendora_text minizip
  advapi32 comctl32 comdlg32 gdi32 ole32 rpcrt4 shell32 shlwapi user32 uuid)

file(GLOB resource_parts CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/res/*)
list(APPEND resource_parts ${maker_dir}/maker.h ${maker_dir}/installer.manifest)
set_source_files_properties(${CMAKE_SOURCE_DIR}/res/installer.rc PROPERTIES OBJECT_DEPENDS "${resource_parts}")
add_library(resources OBJECT ${CMAKE_SOURCE_DIR}/res/installer.rc)
target_include_directories(resources PRIVATE ${CMAKE_SOURCE_DIR}/res ${maker_dir})

add_library(entry_point OBJECT ${CMAKE_SOURCE_DIR}/src/app/main.cpp)
set_project_options(entry_point)

function(add_program name)
  add_executable(${name} WIN32 $<TARGET_OBJECTS:entry_point> $<TARGET_OBJECTS:resources>)
  target_link_libraries(${name} PRIVATE zendora)
  target_link_options(${name} PRIVATE -municode ${ARGN})
endfunction()

# What ships holds no symbols; they stay beside it, in the same program linked once more. (Taking them out of a program
# that is linked writes the time into it.)
add_program(ZendoraInstaller -s)
add_program(ZendoraInstallerSymbols)
set_target_properties(ZendoraInstallerSymbols PROPERTIES OUTPUT_NAME ZendoraInstaller SUFFIX .debug)
add_dependencies(ZendoraInstaller ZendoraInstallerSymbols)

# The same program with less patience, for tests that would wait for minutes.
add_program(ImpatientInstaller -s)
target_sources(ImpatientInstaller PRIVATE ${CMAKE_SOURCE_DIR}/tests/impatient/patience.cpp)
set_project_options(ImpatientInstaller)

# What both test programs share.
file(GLOB support_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/support/*.cpp)
add_library(test_support STATIC ${support_sources})
set_project_options(test_support)
target_include_directories(test_support PUBLIC ${CMAKE_SOURCE_DIR}/tests)
target_precompile_headers(test_support PRIVATE ${common_headers} <gtest/gtest.h>)
target_link_libraries(test_support PUBLIC zendora gtest ws2_32)

file(GLOB windows_tests CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/windows/*.cpp)
add_executable(windows_tests ${windows_tests} $<TARGET_OBJECTS:resources>)
set_project_options(windows_tests)
target_precompile_headers(windows_tests REUSE_FROM test_support)
target_link_libraries(windows_tests PRIVATE test_support)

# An installer program for packages to have.
add_dependencies(windows_tests demo_setup_program)

file(GLOB program_tests CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/program/*.cpp)
add_executable(program_tests ${program_tests})
set_project_options(program_tests)
target_precompile_headers(program_tests REUSE_FROM test_support)
target_link_libraries(program_tests PRIVATE test_support gtest_main)
add_dependencies(program_tests ZendoraInstaller ImpatientInstaller)

# What the demo needs: an installer program to be installed by ours, and hands for its window.
add_executable(demo_setup_program WIN32 ${CMAKE_SOURCE_DIR}/tools/demo/setup_program.cpp)
set_project_options(demo_setup_program)
target_link_options(demo_setup_program PRIVATE -municode)
add_executable(drive_installer ${CMAKE_SOURCE_DIR}/tools/demo/drive_installer.cpp)
set_project_options(drive_installer)
target_link_libraries(drive_installer PRIVATE test_support)

# The eyes and hands of tools/fault-matrix.
add_executable(attend_installer ${CMAKE_SOURCE_DIR}/tools/faults/attend_installer.cpp)
set_project_options(attend_installer)
target_link_libraries(attend_installer PRIVATE test_support)

add_executable(bench ${CMAKE_SOURCE_DIR}/tools/bench/bench.cpp)
set_project_options(bench)
target_link_libraries(bench PRIVATE test_support)
# What its start is compared with.
add_executable(bench_empty_window WIN32 ${CMAKE_SOURCE_DIR}/tools/bench/empty_window.cpp $<TARGET_OBJECTS:resources>)
set_project_options(bench_empty_window)
target_link_options(bench_empty_window PRIVATE -municode)
target_link_libraries(bench_empty_window PRIVATE comctl32)

# Every test has a machine of its own (see CMAKE_CROSSCOMPILING_EMULATOR), so that they can run side by side.
gtest_discover_tests(windows_tests TEST_PREFIX in-process. DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
  PROPERTIES LABELS in-process TIMEOUT 120)
gtest_discover_tests(program_tests TEST_PREFIX program. DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
  PROPERTIES LABELS program TIMEOUT 300 COST 60)
if(CMAKE_BUILD_TYPE STREQUAL Release AND NOT ZENDORA_LINT)
  include(cmake/checks.cmake)
endif()
