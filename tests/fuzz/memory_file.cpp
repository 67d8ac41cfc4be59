#include "fuzz/memory_file.h"

#include <stdio_ext.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>

namespace {

std::string_view content;

struct Reader {
  off64_t position = 0;
};

ssize_t Read(void* cookie, char* buffer, size_t size) {
  Reader& reader = *static_cast<Reader*>(cookie);
  const std::string_view rest = content.substr(std::min(static_cast<size_t>(reader.position), content.size()));
  const size_t count = std::min(size, rest.size());
  std::memcpy(buffer, rest.data(), count);
  reader.position += static_cast<off64_t>(count);
  return static_cast<ssize_t>(count);
}

int Seek(void* cookie, off64_t* position, int origin) {
  Reader& reader = *static_cast<Reader*>(cookie);
  const off64_t base = origin == SEEK_CUR   ? reader.position
                       : origin == SEEK_END ? static_cast<off64_t>(content.size())
                                            : 0;
  off64_t target = 0;
  if (__builtin_add_overflow(base, *position, &target) || target < 0) return -1;
  *position = reader.position = target;
  return 0;
}

int Close(void* cookie) {
  delete static_cast<Reader*>(cookie);
  return 0;
}

}  // namespace

void SetMemoryFile(const std::string& bytes) { content = bytes; }

// The linker puts this one into the place of the C library's function.
extern "C" FILE* __wrap_fopen64(const char* path, const char* mode) {  // NOLINT(bugprone-reserved-identifier)
  auto reader = std::make_unique<Reader>();
  if (std::strcmp(path, kMemoryFile) != 0) return nullptr;
  FILE* file = fopencookie(reader.release(), mode, {Read, nullptr, Seek, Close});
  if (file) __fsetlocking(file, FSETLOCKING_BYCALLER);
  return file;
}
