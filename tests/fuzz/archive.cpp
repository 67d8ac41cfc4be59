// An archive, as an installation unpacks it.
#include "fuzz/fuzzing.h"
#include "fuzz/memory_file.h"
#include "install/package_texts.h"
#include "install/zip_archive.h"
#include "system/path_names.h"
#include "system/text.h"

namespace {

// Few bytes may unpack to many; more than this shows nothing new.
constexpr uint64_t kEnough = 1 << 16;

void ReadOpenEntry(ZipArchive& archive, uint64_t size) {
  char chunk[4096];
  uint64_t done = 0;
  int32_t count = 0;
  while (done < kEnough && (count = archive.ReadEntry(chunk, sizeof chunk)) > 0) {
    Require(count <= static_cast<int32_t>(sizeof chunk), "no more is read than there is room for");
    done += static_cast<uint64_t>(count);
    Require(done <= size, "an entry brings no more than its size");
  }
  archive.CloseEntry();
}

void TryEntry(ZipArchive& archive, size_t archiveSize) {
  ZipEntry entry;
  entry.size = UINT64_MAX;  // unless it is known
  if (archive.GetEntryInfo(entry) == 0) {
    Require(entry.name.size() <= archiveSize, "a name is no longer than its archive");
    const std::wstring path = EntryPath(entry.name);
    if (IsSafeRelativePath(path)) Require(!LeadsOut(path), "what is unpacked stays inside");
  }
  if (archive.OpenEntry("secret") == 0) ReadOpenEntry(archive, entry.size);
}

}  // namespace

void FuzzOne(const std::string& input) {
  SetMemoryFile(input);
  ZipArchive archive;
  if (archive.Open(Utf8ToWide(kMemoryFile)) != 0) return;
  size_t entries = 0;
  for (int32_t position = archive.GoToFirstEntry(); position == 0; position = archive.GoToNextEntry()) {
    Require(++entries <= input.size(), "there are no more entries than bytes");
    TryEntry(archive, input.size());
  }
}
