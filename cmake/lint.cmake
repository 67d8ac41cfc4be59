# Every source of ours that is built for Windows is read by clang-tidy before it is compiled, and read anew when it, or
# what it includes, or the list of checks has changed: the build remembers the rest.
execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=include/c++
  OUTPUT_VARIABLE library_headers OUTPUT_STRIP_TRAILING_WHITESPACE)

# clang finds the headers of Windows by itself; the standard library's are the cross compiler's. The analyzer doesn't
# follow what happens inside of that, which takes up to half of its time.
set(tidy_command clang-tidy --quiet
  --extra-arg=--target=i686-w64-mingw32 --extra-arg=-Wno-unused-command-line-argument --extra-arg=-Wreserved-identifier
  --extra-arg=-isystem${library_headers} --extra-arg=-isystem${library_headers}/i686-w64-mingw32
  --extra-arg=-Xclang --extra-arg=-analyzer-config --extra-arg=-Xclang --extra-arg=c++-stdlib-inlining=false)

function(lint_target target)
  set_target_properties(${target} PROPERTIES CXX_CLANG_TIDY "${tidy_command}" DISABLE_PRECOMPILE_HEADERS ON)
  get_target_property(sources ${target} SOURCES)
  list(FILTER sources INCLUDE REGEX "\\.cpp$")
  set_source_files_properties(${sources} PROPERTIES OBJECT_DEPENDS ${CMAKE_SOURCE_DIR}/.clang-tidy)
endfunction()

# The objects of these targets, without the libraries that they would be linked with.
function(add_linted)
  list(TRANSFORM ARGN REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>" OUTPUT_VARIABLE objects)
  add_custom_target(linted DEPENDS ${objects} COMMENT "What clang-tidy reads")
endfunction()
