#include "support/zip_builder.h"

#include <gtest/gtest.h>
#include <zip.h>

#include <iowin32.h>  // after zip.h, whose types it uses

#include "support/temp_folder.h"
#include "system/files.h"
#include "system/path_names.h"

namespace {

// 2021-03-04 05:06:08 in the format's own coding.
constexpr uLong kEntryTime = (41u << 25 | 3u << 21 | 4u << 16) | (5u << 11 | 6u << 5 | 4u);
constexpr uLong kFlagSizesFollow = 1 << 3;
constexpr uLong kMadeByDos = 20;

uLong Checksum(const std::string& content) {
  return crc32(0, reinterpret_cast<const Bytef*>(content.data()), static_cast<uInt>(content.size()));
}

void AddEntry(zipFile zip, const TestEntry& entry) {
  zip_fileinfo info = {};
  info.dosDate = kEntryTime;
  const bool raw = entry.claimedSize != 0;
  const uLong checksum = Checksum(entry.content);
  const uLong check = entry.sizesFollow ? (kEntryTime & 0xFFFF) << 16 : checksum;
  ASSERT_EQ(zipOpenNewFileInZip4_64(zip, entry.name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr,
                                    entry.stored || raw ? 0 : Z_DEFLATED, Z_DEFAULT_COMPRESSION, raw, -MAX_WBITS,
                                    DEF_MEM_LEVEL, Z_DEFAULT_STRATEGY,
                                    entry.password.empty() ? nullptr : entry.password.c_str(), check, kMadeByDos,
                                    entry.sizesFollow ? kFlagSizesFollow : 0, entry.claimedSize > UINT32_MAX),
            ZIP_OK);
  ASSERT_EQ(zipWriteInFileInZip(zip, entry.content.data(), static_cast<unsigned>(entry.content.size())), ZIP_OK);
  ASSERT_EQ(raw ? zipCloseFileInZipRaw64(zip, entry.claimedSize, checksum) : zipCloseFileInZip(zip), ZIP_OK);
}

}  // namespace

void BuildZip(const std::wstring& path, const std::vector<TestEntry>& entries) {
  ASSERT_EQ(CreateDirectories(ParentFolder(path)), 0u);
  zlib_filefunc64_def functions;
  fill_win32_filefunc64W(&functions);
  const zipFile zip = zipOpen2_64(path.c_str(), APPEND_STATUS_CREATE, nullptr, &functions);
  ASSERT_NE(zip, nullptr);
  for (const TestEntry& entry : entries) AddEntry(zip, entry);
  ASSERT_EQ(zipClose(zip, nullptr), ZIP_OK);
}

void PatchFile(const std::wstring& path, const std::string& from, const std::string& to) {
  ASSERT_EQ(from.size(), to.size());
  std::string bytes = ReadTestFile(path);
  size_t position = bytes.find(from);
  ASSERT_NE(position, std::string::npos);
  for (; position != std::string::npos; position = bytes.find(from, position + to.size())) {
    bytes.replace(position, from.size(), to);
  }
  WriteTestFile(path, bytes);
}

std::string TestBytes(size_t count, uint32_t seed) {
  std::string bytes(count, '\0');
  for (char& byte : bytes) {
    seed = seed * 1664525 + 1013904223;
    byte = static_cast<char>(seed >> 28);
  }
  return bytes;
}
