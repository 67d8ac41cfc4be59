#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <filesystem>
#include <fstream>

#include "system/files.h"
#include "system/path_names.h"

TempFolder::TempFolder() {
  static std::atomic<int> counter = 0;
  wchar_t base[MAX_PATH];
  GetTempPathW(MAX_PATH, base);
  path_ = JoinPath(base, L"zendora-test-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++counter));
  // A test that was killed leaves its folder, and process identifiers come again.
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
  EXPECT_EQ(CreateDirectories(path_), 0u);
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::wstring TempFolder::operator/(std::wstring_view name) const { return JoinPath(path_, name); }

void WriteTestFile(const std::wstring& path, std::string_view bytes) {
  ASSERT_EQ(CreateDirectories(ParentFolder(path)), 0u);
  std::ofstream file(std::filesystem::path(path), std::ios::binary);
  ASSERT_TRUE(file.write(bytes.data(), static_cast<std::streamsize>(bytes.size())).flush());
}

std::string ReadTestFile(const std::wstring& path) {
  const auto bytes = ReadWholeFile(path);
  EXPECT_TRUE(bytes.has_value());
  return bytes.value_or("");
}
