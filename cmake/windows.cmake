# The program, and the tests that run on Windows.
file(GLOB_RECURSE windows_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/*.cpp)
list(REMOVE_ITEM windows_sources ${CMAKE_SOURCE_DIR}/src/app/main.cpp)
foreach(source ${text_sources})
  list(REMOVE_ITEM windows_sources ${CMAKE_SOURCE_DIR}/${source})
endforeach()

# All of the program but its entry point, so that tests can link it.
add_library(zendora STATIC ${windows_sources})
set_project_options(zendora)
target_compile_definitions(zendora PRIVATE ZENDORA_SITE_BASE=L"${ZENDORA_SITE_BASE}")
target_link_libraries(zendora PUBLIC zendora_text minizip
  advapi32 comctl32 comdlg32 gdi32 ole32 rpcrt4 shell32 shlwapi user32 uuid)

file(GLOB resource_parts CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/res/*)
set_source_files_properties(${CMAKE_SOURCE_DIR}/res/installer.rc PROPERTIES OBJECT_DEPENDS "${resource_parts}")
add_library(resources OBJECT ${CMAKE_SOURCE_DIR}/res/installer.rc)
target_include_directories(resources PRIVATE ${CMAKE_SOURCE_DIR}/res)

add_executable(ZendoraInstaller WIN32 ${CMAKE_SOURCE_DIR}/src/app/main.cpp $<TARGET_OBJECTS:resources>)
set_project_options(ZendoraInstaller)
target_link_libraries(ZendoraInstaller PRIVATE zendora)
target_link_options(ZendoraInstaller PRIVATE -municode)

file(GLOB windows_tests CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/windows/*.cpp ${CMAKE_SOURCE_DIR}/tests/support/*.cpp)
add_executable(windows_tests ${windows_tests} $<TARGET_OBJECTS:resources>)
set_project_options(windows_tests)
target_include_directories(windows_tests PRIVATE ${CMAKE_SOURCE_DIR}/tests)
target_link_libraries(windows_tests PRIVATE zendora gtest ws2_32)

file(GLOB program_tests CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/program/*.cpp)
set(support_dir ${CMAKE_SOURCE_DIR}/tests/support)
set(installer_window ${CMAKE_SOURCE_DIR}/tests/support/installer_window.cpp)
add_executable(program_tests ${program_tests} ${installer_window}
  ${support_dir}/scripted_server.cpp ${support_dir}/temp_folder.cpp ${support_dir}/zip_builder.cpp)
set_project_options(program_tests)
target_include_directories(program_tests PRIVATE ${CMAKE_SOURCE_DIR}/tests)
target_link_libraries(program_tests PRIVATE zendora gtest_main ws2_32)
add_dependencies(program_tests ZendoraInstaller)

# What the demo needs: an installer program to be installed by ours, and hands for its window.
add_executable(demo_setup_program WIN32 ${CMAKE_SOURCE_DIR}/tools/demo/setup_program.cpp)
set_project_options(demo_setup_program)
target_link_options(demo_setup_program PRIVATE -municode)
add_executable(drive_installer ${CMAKE_SOURCE_DIR}/tools/demo/drive_installer.cpp
  ${installer_window})
set_project_options(drive_installer)
target_include_directories(drive_installer PRIVATE ${CMAKE_SOURCE_DIR}/tests)
target_link_libraries(drive_installer PRIVATE zendora_text)

add_executable(bench ${CMAKE_SOURCE_DIR}/tools/bench/bench.cpp ${installer_window})
set_project_options(bench)
target_include_directories(bench PRIVATE ${CMAKE_SOURCE_DIR}/tests)
target_link_libraries(bench PRIVATE zendora)
add_executable(bench_empty_window WIN32 ${CMAKE_SOURCE_DIR}/tools/bench/empty_window.cpp
  $<TARGET_OBJECTS:resources>)
set_project_options(bench_empty_window)
target_link_options(bench_empty_window PRIVATE -municode)
target_link_libraries(bench_empty_window PRIVATE comctl32)

# Each build makes by default what is run with it: the in-process tests need the library's assertions, the rest the
# program as it ships.
if(CMAKE_BUILD_TYPE STREQUAL Release)
  set_target_properties(windows_tests PROPERTIES EXCLUDE_FROM_ALL ON)
else()
  set_target_properties(program_tests demo_setup_program drive_installer bench bench_empty_window PROPERTIES EXCLUDE_FROM_ALL ON)
endif()
