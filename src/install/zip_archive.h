// Reading zip archives. All calls of the zip library stand in zip_archive.cpp, so that it can be exchanged there.
//
// Results are the library's: 0 is success, everything else a negative code. No Windows header: also built natively,
// where errno takes the place of the Win32 error code.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

inline constexpr int32_t kZipSystemError = -1;  // the thread's last error says which
inline constexpr int32_t kZipEndOfEntries = -100;
inline constexpr int32_t kZipUnreadable = -103;  // broken, or packed in a way that can't be unpacked
inline constexpr int32_t kZipWrongContent = -105;
inline constexpr int32_t kZipWrongPassword = -108;

enum class ZipEncryption { None, Traditional, Strong };

struct ZipEntry {
  std::string name;     // the archive's bytes
  uint64_t size = 0;    // unpacked, in bytes
  uint32_t method = 0;  // of compression: 0 stored, 8 deflated; others can't be unpacked
  ZipEncryption encryption = ZipEncryption::None;
};

// One archive and its current entry. Belongs to one thread.
class ZipArchive {
 public:
  ZipArchive();
  ~ZipArchive();
  ZipArchive(const ZipArchive&) = delete;
  ZipArchive& operator=(const ZipArchive&) = delete;

  // Opens the archive; once. Returns 0, or the Win32 error code: ERROR_INVALID_DATA (natively EILSEQ) when the file is
  // no archive.
  uint32_t Open(const std::wstring& path);

  // Make the first or the next entry the current one; kZipEndOfEntries when there is none.
  int32_t GoToFirstEntry();
  int32_t GoToNextEntry();

  // Opens the current entry for reading. The password counts for encrypted entries only; a wrong one, or none, is
  // noticed here (with the certainty of the format's one check byte).
  int32_t OpenEntry(const std::string& password);

  int32_t GetEntryInfo(ZipEntry& entry);

  // The next unpacked bytes of the open entry: their count, 0 at its end, a negative code when it is broken.
  int32_t ReadEntry(void* buffer, uint32_t size);

  // kZipWrongContent when the entry was read to its end and isn't what was packed.
  int32_t CloseEntry();

 private:
  struct State;
  std::unique_ptr<State> state_;
};
