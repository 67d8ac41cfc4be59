// Makes zip archives for tests.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct TestEntry {
  std::string name;
  std::string content;        // none for a folder, whose name ends with "/"
  std::string password = "";  // not empty: encrypted with it
  bool stored = false;        // instead of deflated
  bool sizesFollow = false;   // marked as written to a stream: the check byte of the encryption is then the time's
};

// Writes an archive of these entries; fails the test when that can't be done.
void BuildZip(const std::wstring& path, const std::vector<TestEntry>& entries);

// So many bytes that don't compress to nothing, the same ones for the same seed.
std::string TestBytes(size_t count, uint32_t seed = 1);
