#include "package_file.h"

#include "md5.h"
#include "system/text.h"
#include "task_paths.h"

namespace {

constexpr uint32_t kChunkSize = 1 << 16;

// Reads the open entry to its end.
bool ReadsAsPacked(ZipArchive& zip, const ZipEntry& info, std::vector<char>& chunk) {
  uint64_t done = 0;
  int32_t count;
  while ((count = zip.ReadEntry(chunk.data(), kChunkSize)) > 0) done += static_cast<uint64_t>(count);
  return count == 0 && done == info.size;
}

// Files without content and entries for folders leave nothing behind; folders come with the files in them.
void AddPlaces(const ZipEntry& info, std::set<std::string>& places) {
  if (info.size == 0) return;
  std::string place = ComparablePath(info.name);
  while (!place.empty() && places.insert(place).second) {
    const size_t separator = place.rfind('\\');
    place.resize(separator == std::string::npos ? 0 : separator);
  }
}

ArchiveEntry SurveyEntry(ZipArchive& zip, const std::string& password, Unpack unpack, std::vector<char>& chunk) {
  ArchiveEntry entry;
  if (const int32_t result = zip.GetEntryInfo(entry.info)) {
    entry.opened = result;
    return entry;
  }
  if (unpack == Unpack::No) return entry;
  entry.opened = zip.OpenEntry(password);
  if (entry.opened != 0) return entry;
  const bool whole = ReadsAsPacked(zip, entry.info, chunk);
  entry.unpacked = zip.CloseEntry() == 0 && whole;
  return entry;
}

}  // namespace

Archive SurveyArchive(const std::string& path, const std::string& password, Unpack unpack, const Progress& progress) {
  Archive archive;
  ZipArchive zip;
  if (zip.Open(Utf8ToWide(path)) != 0) return archive;
  archive.isArchive = true;
  std::vector<char> chunk(kChunkSize);
  int32_t position = zip.GoToFirstEntry();
  for (; position == 0; position = zip.GoToNextEntry()) {
    archive.entries.push_back(SurveyEntry(zip, password, unpack, chunk));
    const ZipEntry& info = archive.entries.back().info;
    archive.unpackedSize += info.size;
    AddPlaces(info, archive.places);
    if (progress) progress(path, archive.unpackedSize, 0);
  }
  archive.complete = position == kZipEndOfEntries;
  return archive;
}

PackageFile SurveyPackageFile(const std::string& path, bool isArchive, const std::string& password,
                              const Progress& progress) {
  PackageFile file;
  file.path = path;
  const auto size = SizeOfFile(path);
  if (!size) return file;
  file.exists = true;
  file.size = *size;
  file.md5 = Md5OfFile(path, progress);
  if (isArchive) file.archive = SurveyArchive(path, password, Unpack::Yes, progress);
  return file;
}
