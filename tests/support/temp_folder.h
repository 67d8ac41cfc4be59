// A folder of a test's own, removed with everything in it at the end.
#pragma once

#include <string>
#include <string_view>

class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::wstring& Path() const { return path_; }
  // The path of a file or folder in it.
  std::wstring operator/(std::wstring_view name) const;

 private:
  std::wstring path_;
};

// Creates or replaces a file (with its folder); fails the test when that can't be done.
void WriteTestFile(const std::wstring& path, std::string_view bytes);

// The file's bytes; fails the test when it can't be read.
std::string ReadTestFile(const std::wstring& path);
