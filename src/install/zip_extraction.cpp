#include "install/zip_extraction.h"

#include <windows.h>

#include <algorithm>

#include "core/context.h"
#include "core/localization.h"
#include "install/package_download.h"
#include "install/package_texts.h"
#include "install/run_display.h"
#include "install/zip_archive.h"
#include "system/files.h"
#include "system/handles.h"
#include "system/path_names.h"
#include "system/text.h"
#include "ui/page_controls.h"

namespace {

constexpr size_t kChunkSize = 4096;
// What a package may fall short of its announced size and still count as complete.
constexpr double kCompleteRatio = 0.99;

// The extraction of one package.
struct Extraction {
  Installation& run;
  const Package& package;
  const std::wstring& target;
  uint64_t upsize;  // bytes that the package should unpack to
  ZipArchive archive = {};
  uint64_t written = 0;   // bytes
  int32_t zipResult = 0;  // of the most recent call that opened an entry or read its information
  uint32_t error = 0;     // the system error met last
  bool flawless = true;   // no entry was skipped or spoilt
};

// The entry that is being unpacked.
struct CurrentEntry {
  std::wstring name;  // path below the target
  uint64_t size = 0;
  std::wstring label;
};

// `what` may hold a name from the archive, which must not write lines of its own into the log.
void Fault(Extraction& x, std::wstring what) {
  x.flawless = false;
  std::replace_if(
      what.begin(), what.end(), [](wchar_t c) { return c < L' '; }, L'?');
  AppendLog(L"[ERROR] " + what);
}

void SystemFault(Extraction& x, uint32_t error) {
  x.flawless = false;
  x.error = error;
  x.run.packageStats[x.package.filename].exterr = error;
}

void ShowPercentage(const CurrentEntry& entry, uint32_t percentage) {
  ShowTotalDetail(entry.label + L" (" + std::to_wstring(percentage) + L"%)");
}

void ShowTotal(const Extraction& x) {
  const uint64_t done = x.run.upsizeDone + std::min(x.written, x.upsize);
  ShowTotalProgress(done, x.run.upsizeTotal);
}

// Copies the open entry into the file. Returns the bytes written.
uint64_t CopyEntry(Extraction& x, const CurrentEntry& entry, HANDLE file) {
  char chunk[kChunkSize];
  uint64_t entryWritten = 0;
  uint32_t lastPercentage = 0;
  int32_t count;
  while ((count = x.archive.ReadEntry(chunk, kChunkSize)) > 0) {
    DWORD chunkWritten = 0;
    const bool success = WriteFile(file, chunk, static_cast<DWORD>(count), &chunkWritten, nullptr);
    const DWORD error = GetLastError();
    x.written += chunkWritten;
    entryWritten += chunkWritten;
    if (!success) {
      // What follows would stand at the wrong place.
      SystemFault(x, error);
      break;
    }
    if (app.cancelRequested) break;
    if (const uint32_t percentage = PercentOf(entryWritten, entry.size); percentage != lastPercentage) {
      lastPercentage = percentage;
      ShowPercentage(entry, percentage);
      ShowTotal(x);
    }
  }
  if (count == kZipSystemError) x.error = GetLastError();
  if (entryWritten != entry.size) x.flawless = false;
  return entryWritten;
}

// Creates the entry's file with its folders. Returns 0 or the system error.
uint32_t CreateEntryFile(const std::wstring& path, FileHandle& file) {
  if (path.size() > kMaxPathLength) return ERROR_FILENAME_EXCED_RANGE;
  if (const uint32_t error = CreateDirectories(ParentFolder(path))) return error;
  file.Reset(CreateFileW(path.c_str(), FILE_GENERIC_WRITE, FILE_SHARE_WRITE, nullptr, CREATE_ALWAYS,
                         FILE_ATTRIBUTE_NORMAL, nullptr));
  return file ? ERROR_SUCCESS : GetLastError();
}

// Unpacks the open entry. Returns the bytes written.
uint64_t WriteEntry(Extraction& x, CurrentEntry& entry) {
  entry.label = LoadLocalizedString(STR_EXTRACTING) + L": " + entry.name;
  ShowPercentage(entry, 0);
  AppendLog(L"Extracting: " + entry.name);

  const std::wstring path = JoinPath(x.target, entry.name);
  FileHandle file;
  const uint32_t error = CreateEntryFile(path, file);
  if (error == ERROR_SUCCESS) return CopyEntry(x, entry, file.Get());

  if (error == ERROR_SHARING_VIOLATION && FileSize(path) == entry.size) {
    // A running game holds the file, which is the one that was to be written.
    x.written += x.upsize;
    ShowPercentage(entry, 100);
    ShowTotal(x);
  } else {
    SystemFault(x, error);
    Fault(x, L"Invalid zip handle (" + std::to_wstring(error) + L") (" + entry.name + L")");
  }
  return 0;
}

// Unpacks the open entry unless it is a folder or an empty file, and closes it.
void UnpackOpenEntry(Extraction& x) {
  ZipEntry info;
  x.zipResult = x.archive.GetEntryInfo(info);
  CurrentEntry entry;
  entry.name = EntryPath(info.name);
  entry.size = info.size;
  uint64_t entryWritten = 0;
  if (x.zipResult != 0) {
    Fault(x, L"Unable to get file info (zip)");
  } else if (entry.size != 0) {
    if (IsSafeRelativePath(entry.name)) {
      entryWritten = WriteEntry(x, entry);
    } else {
      Fault(x, L"Unsafe entry name (zip) (" + entry.name + L")");
    }
  }
  if (x.archive.CloseEntry() == kZipWrongContent) {
    x.written -= entryWritten;
    x.error = ERROR_CRC;
    Fault(x, L"Wrong content (zip) (" + entry.name + L")");
  }
}

void UnpackEntries(Extraction& x) {
  int32_t position = x.archive.GoToFirstEntry();
  for (; position == 0 && !app.cancelRequested; position = x.archive.GoToNextEntry()) {
    x.zipResult = x.archive.OpenEntry(x.package.password);
    if (x.zipResult == 0) {
      UnpackOpenEntry(x);
    } else {
      Fault(x, L"Unable to open file (zip)");
    }
  }
  if (position != kZipEndOfEntries) x.flawless = false;
}

bool IsComplete(const Extraction& x) {
  if (x.upsize == 0) return x.flawless;
  return x.written >= x.upsize || static_cast<double>(x.written) / static_cast<double>(x.upsize) >= kCompleteRatio;
}

}  // namespace

PlacementResult ExtractZip(Installation& run, const Package& package, const std::wstring& target) {
  ShowTotalDetail(LoadLocalizedString(STR_EXTRACTING));
  Extraction x{run, package, target, static_cast<uint64_t>(package.upsize)};
  if (const uint32_t error = x.archive.Open(PackageFilePath(run, package.filename))) {
    run.errorRecords += ArchiveUnreadableRecord(package.filename, error);
    AppendLog(L"[ERROR] Unable to open zip file");
    return {.error = error};
  }
  UnpackEntries(x);

  const bool complete = IsComplete(x);
  run.packageStats[package.filename].extracted = x.upsize == 0 && complete ? 100 : PercentOf(x.written, x.upsize);
  if (!complete) {
    run.errorRecords += IncompleteExtractionRecord(package.filename, x.error, x.zipResult, x.written, x.upsize);
  }
  AppendLog(L"Extraction complete (" + std::to_wstring(x.written) + L" / " + std::to_wstring(x.upsize) + L")");
  return {.ok = complete, .error = complete ? 0 : x.error};
}
