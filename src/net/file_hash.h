// MD5 of files.
#pragma once

#include <cstdint>
#include <string>

// Handed to the callback once before the file is opened (all 0) and after every hashed chunk.
struct HashProgress {
  uint32_t percent = 0;    // of the file's size, truncated; 0 for an empty file
  uint64_t processed = 0;  // bytes
  bool cancel = false;     // set by the callback to stop
};
using HashProgressCallback = void (*)(HashProgress*);

// 32 lower-case hexadecimal characters; empty when the file can't be read to its end (also while another program has
// it open for writing), when the system has no MD5, or when the callback cancelled. `callback` may be null.
std::string ComputeFileMd5(const std::wstring& path, HashProgressCallback callback);
