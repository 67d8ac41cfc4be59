#include "support/zip_builder.h"

#include <gtest/gtest.h>
#include <zip.h>

#include <cstdlib>
#include <utility>

#ifdef _WIN32
#include <iowin32.h>  // after zip.h, whose types it uses
#else
#include "system/text.h"
#endif

namespace {

// 2021-03-04 05:06:08 in the format's own coding.
constexpr uLong kEntryTime = (41u << 25 | 3u << 21 | 4u << 16) | (5u << 11 | 6u << 5 | 4u);
constexpr uLong kFlagSizesFollow = 1 << 3;
constexpr uLong kMadeByDos = 20;

void AddEntry(zipFile zip, const TestEntry& entry) {
  zip_fileinfo info = {};
  info.dosDate = kEntryTime;
  const auto size = static_cast<unsigned>(entry.content.size());
  const uLong checksum = crc32(0, reinterpret_cast<const Bytef*>(entry.content.data()), size);
  const uLong check = entry.sizesFollow ? (kEntryTime & 0xFFFF) << 16 : checksum;
  ASSERT_EQ(zipOpenNewFileInZip4_64(zip, entry.name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr,
                                    entry.stored ? 0 : Z_DEFLATED, Z_DEFAULT_COMPRESSION, 0, -MAX_WBITS, DEF_MEM_LEVEL,
                                    Z_DEFAULT_STRATEGY, entry.password.empty() ? nullptr : entry.password.c_str(),
                                    check, kMadeByDos, entry.sizesFollow ? kFlagSizesFollow : 0, 0),
            ZIP_OK);
  ASSERT_EQ(zipWriteInFileInZip(zip, entry.content.data(), size), ZIP_OK);
  ASSERT_EQ(zipCloseFileInZip(zip), ZIP_OK);
}

zipFile CreateZip(const std::wstring& path) {
#ifdef _WIN32
  zlib_filefunc64_def functions;
  fill_win32_filefunc64W(&functions);
  return zipOpen2_64(path.c_str(), APPEND_STATUS_CREATE, nullptr, &functions);
#else
  return zipOpen64(WideToUtf8(path).c_str(), APPEND_STATUS_CREATE);
#endif
}

void WriteZip(const std::wstring& path, const std::vector<TestEntry>& entries) {
  const zipFile zip = CreateZip(path);
  for (const TestEntry& entry : entries) AddEntry(zip, entry);
  ASSERT_EQ(zipClose(zip, nullptr), ZIP_OK);
}

}  // namespace

void BuildZip(const std::wstring& path, const std::vector<TestEntry>& entries) {
  // An encrypted entry begins with bytes from rand(), and by chance a wrong password may fit them. The library seeds it
  // with the time when it first needs it; from then on the bytes are the same in every run.
  static bool seeded = false;
  if (!std::exchange(seeded, true)) WriteZip(path, {{"first", "content", "password"}});
  std::srand(1);
  WriteZip(path, entries);
}

std::string TestBytes(size_t count, uint32_t seed) {
  std::string bytes(count, '\0');
  for (char& byte : bytes) byte = static_cast<char>((seed = seed * 1664525 + 1013904223) >> 28);
  return bytes;
}
