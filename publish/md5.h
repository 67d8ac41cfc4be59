// MD5 by the system's library: libcrypto, or CryptoAPI on Windows.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "disk.h"

// The MD5 of bytes as they come.
class Md5 {
 public:
  Md5();
  ~Md5();  // NOLINT(performance-trivially-destructible): what it destroys is known in the source only

  void Add(const void* bytes, size_t count);
  // 32 lower-case hexadecimal digits; empty when the library failed. Once.
  std::string Finish();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// The same of a whole file; empty when it can't be read to its end. `progress` may be empty.
std::string Md5OfFile(const std::string& name, const Progress& progress);

// Two lower-case hexadecimal digits for each byte.
std::string HexText(const unsigned char* bytes, size_t count);
