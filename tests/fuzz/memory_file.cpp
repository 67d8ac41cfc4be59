#include "fuzz/memory_file.h"

#include <stdio_ext.h>

#include <cstdio>
#include <cstring>
#include <string_view>

namespace {

std::string_view content;

}  // namespace

void SetMemoryFile(const std::string& bytes) { content = bytes; }

// The linker puts this one into the place of the C library's function.
extern "C" FILE* __wrap_fopen64(const char* path, const char* mode) {  // NOLINT(bugprone-reserved-identifier)
  if (std::strcmp(path, kMemoryFile) != 0) return nullptr;
  FILE* file = fmemopen(const_cast<char*>(content.data()), content.size(), mode);  // it is only read
  if (file) __fsetlocking(file, FSETLOCKING_BYCALLER);
  return file;
}
