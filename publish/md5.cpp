#include "md5.h"

#include <fstream>
#include <vector>

namespace {

constexpr size_t kChunkSize = 1 << 20;

}  // namespace

std::string Md5OfFile(const std::string& name, const Progress& progress) {
  const uint64_t size = SizeOfFile(name).value_or(0);
  std::ifstream file(PathFromUtf8(name), std::ios::binary);
  if (!file) return "";
  Md5 md5;
  std::vector<char> chunk(kChunkSize);
  for (uint64_t done = 0; file;) {
    file.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
    const auto count = static_cast<size_t>(file.gcount());
    md5.Add(chunk.data(), count);
    done += count;
    if (progress) progress(name, done, size);
  }
  return file.bad() ? "" : md5.Finish();
}

std::string HexText(const unsigned char* bytes, size_t count) {
  std::string text;
  for (size_t i = 0; i < count; ++i) {
    text += "0123456789abcdef"[bytes[i] >> 4];
    text += "0123456789abcdef"[bytes[i] & 15];
  }
  return text;
}
