# The libraries that the program calls, compiled from the sources that set-up fetched. They are not ours, so
# our warnings don't apply to them.
set(deps_dir ${CMAKE_SOURCE_DIR}/build/deps)
if(NOT EXISTS ${deps_dir}/zlib/zlib.h)
  message(FATAL_ERROR "The library sources are missing: run tools/setup.sh first.")
endif()

function(add_foreign_library name include_dir)
  add_library(${name} STATIC EXCLUDE_FROM_ALL ${ARGN})
  target_include_directories(${name} SYSTEM PUBLIC ${include_dir})
  target_compile_options(${name} PRIVATE -w)
  if(ZENDORA_FUZZ)
    # What they compare with is in the corpora; learning it takes half of the time.
    target_compile_options(${name} PRIVATE -fno-sanitize-coverage=trace-cmp)
  endif()
endfunction()

add_foreign_library(tinyxml2 ${deps_dir}/tinyxml2 ${deps_dir}/tinyxml2/tinyxml2.cpp)

add_foreign_library(gtest ${deps_dir}/googletest/googletest/include
  ${deps_dir}/googletest/googletest/src/gtest-all.cc)
target_include_directories(gtest PRIVATE ${deps_dir}/googletest/googletest)
add_foreign_library(gtest_main ${deps_dir}/googletest/googletest/include
  ${deps_dir}/googletest/googletest/src/gtest_main.cc)
target_link_libraries(gtest_main PUBLIC gtest)

set(zlib_sources adler32 compress crc32 deflate inffast inflate inftrees trees uncompr zutil)
list(TRANSFORM zlib_sources PREPEND ${deps_dir}/zlib/)
list(TRANSFORM zlib_sources APPEND .c)
add_foreign_library(zlib ${deps_dir}/zlib ${zlib_sources})

set(minizip_dir ${deps_dir}/zlib/contrib/minizip)
# zip.c writes archives; only tests and benchmarks call it, and only they link it in.
add_foreign_library(minizip ${minizip_dir} ${minizip_dir}/ioapi.c ${minizip_dir}/unzip.c ${minizip_dir}/zip.c)
target_link_libraries(minizip PUBLIC zlib)
if(WIN32)
  target_sources(minizip PRIVATE ${minizip_dir}/iowin32.c)
  target_compile_definitions(minizip PRIVATE UNICODE _UNICODE)
endif()

# zendora-publish asks sites through libcurl: natively the system's, on Windows this one, which does nothing but HTTP
# over the system's own TLS.
if(WIN32)
  set(curl_dir ${deps_dir}/curl)
  file(GLOB_RECURSE curl_sources ${curl_dir}/lib/*.c)
  add_foreign_library(curl ${curl_dir}/include ${curl_sources})
  target_include_directories(curl PRIVATE ${curl_dir}/lib)
  set_target_properties(curl PROPERTIES UNITY_BUILD ON)  # hundreds of small sources
  # It takes time_t for 64 bits wide, which here it is only when it is asked for.
  target_compile_definitions(curl PUBLIC CURL_STATICLIB __MINGW_USE_VC2005_COMPAT
    PRIVATE BUILDING_LIBCURL HTTP_ONLY CURL_DISABLE_AWS USE_SCHANNEL USE_WINDOWS_SSPI)
  target_link_libraries(curl PUBLIC ws2_32 crypt32 bcrypt secur32 advapi32)
endif()
