#include "install/zip_extraction.h"

#include <windows.h>

#include <algorithm>

#include "core/context.h"
#include "core/localization.h"
#include "install/package_paths.h"
#include "install/package_texts.h"
#include "install/run_display.h"
#include "install/zip_archive.h"
#include "system/files.h"
#include "system/handles.h"
#include "system/path_names.h"
#include "system/text.h"
#include "ui/page_controls.h"

// The story starts at the end of this file.

namespace {

constexpr size_t kChunkSize = 4096;
// What a package may fall short of its announced size and still count as complete.
constexpr double kCompleteRatio = 0.99;

// What became of one entry, or of all of them so far.
struct Outcome {
  uint64_t written = 0;   // bytes that count for the package
  int32_t zipResult = 0;  // of the call that opened the entry or read its information
  uint32_t error = 0;     // the system error that spoilt it, 0 when there was none
  bool flawless = true;   // nothing was skipped or spoilt
};

// The extraction of one package.
struct Extraction {
  RunState& run;
  const Package& package;
  const std::wstring& target;
  uint64_t upsize;  // bytes that the package should unpack to
  ZipArchive archive = {};
  Outcome sum = {};
};

// The entry that is being unpacked.
struct CurrentEntry {
  std::wstring name;  // path below the target
  uint64_t size = 0;
  std::wstring label;
};

void LogFault(const std::wstring& what) { AppendLog(L"[ERROR] " + what); }

// An error of the system while a file was created or written.
Outcome SystemFault(Extraction& extraction, uint32_t error) {
  extraction.run.packageStats[extraction.package.filename].exterr = error;
  return {.error = error, .flawless = false};
}

void ShowPercentage(const CurrentEntry& entry, uint32_t percentage) {
  ShowTotalDetail(entry.label + L" (" + std::to_wstring(percentage) + L"%)");
}

void ShowTotal(const Extraction& extraction, uint64_t written) {
  const uint64_t done = extraction.run.upsizeDone + std::min(written, extraction.upsize);
  ShowTotalProgress(done, extraction.run.upsizeTotal);
}

// Copies the open entry into the file.
Outcome CopyEntry(Extraction& extraction, const CurrentEntry& entry, HANDLE file) {
  Outcome outcome;
  char chunk[kChunkSize];
  uint32_t lastPercentage = 0;
  int32_t count;
  while ((count = extraction.archive.ReadEntry(chunk, kChunkSize)) > 0) {
    DWORD written = 0;
    const bool success = WriteFile(file, chunk, static_cast<DWORD>(count), &written, nullptr);
    const DWORD error = success ? DWORD{ERROR_DISK_FULL} : GetLastError();
    outcome.written += written;
    if (written != static_cast<DWORD>(count)) {
      // What follows would stand at the wrong place.
      const uint64_t before = outcome.written;
      outcome = SystemFault(extraction, error);
      outcome.written = before;
      break;
    }
    if (app.cancelRequested) break;
    if (const uint32_t percentage = PercentOf(outcome.written, entry.size); percentage != lastPercentage) {
      lastPercentage = percentage;
      ShowPercentage(entry, percentage);
      ShowTotal(extraction, extraction.sum.written + outcome.written);
    }
  }
  if (count == kZipSystemError) outcome.error = GetLastError();
  if (outcome.written != entry.size) outcome.flawless = false;
  return outcome;
}

// Creates the entry's file with its folders. Returns 0 or the system error.
uint32_t CreateEntryFile(const std::wstring& path, FileHandle& file) {
  if (path.size() > kMaxPathLength) return ERROR_FILENAME_EXCED_RANGE;
  if (const uint32_t error = CreateDirectories(ParentFolder(path))) return error;
  const auto create = [&] {
    file.Reset(CreateFileW(path.c_str(), FILE_GENERIC_WRITE, FILE_SHARE_WRITE, nullptr, CREATE_ALWAYS,
                           FILE_ATTRIBUTE_NORMAL, nullptr));
    return file ? DWORD{ERROR_SUCCESS} : GetLastError();
  };
  const DWORD error = create();
  // What an older installation left may be protected.
  return error == ERROR_ACCESS_DENIED && RemoveProtection(path) ? create() : error;
}

// Unpacks the open entry.
Outcome WriteEntry(Extraction& extraction, CurrentEntry& entry) {
  entry.label = LoadLocalizedString(STR_EXTRACTING) + L": " + entry.name;
  ShowPercentage(entry, 0);
  AppendLog(L"Extracting: " + entry.name);

  const std::wstring path = JoinPath(extraction.target, entry.name);
  FileHandle file;
  const uint32_t error = CreateEntryFile(path, file);
  if (error == ERROR_SUCCESS) return CopyEntry(extraction, entry, file.Get());
  if (error == ERROR_SHARING_VIOLATION && FileSize(path) == entry.size) {
    // A running game holds the file, which is the one that was to be written. The package counts as complete.
    ShowPercentage(entry, 100);
    ShowTotal(extraction, extraction.sum.written + extraction.upsize);
    return {.written = extraction.upsize};
  }
  LogFault(L"Invalid zip handle (" + std::to_wstring(error) + L") (" + entry.name + L")");
  return SystemFault(extraction, error);
}

// Unpacks the open entry unless it is a folder or an empty file.
Outcome UnpackOpenEntry(Extraction& extraction, CurrentEntry& entry) {
  ZipEntry info;
  if (const int32_t zipResult = extraction.archive.GetEntryInfo(info)) {
    LogFault(L"Unable to get file info (zip)");
    return {.zipResult = zipResult, .flawless = false};
  }
  entry.name = EntryPath(info.name);
  entry.size = info.size;
  if (entry.size == 0) return {};
  if (IsSafeRelativePath(entry.name)) return WriteEntry(extraction, entry);
  LogFault(L"Unsafe entry name (zip) (" + entry.name + L")");
  return {.flawless = false};
}

Outcome UnpackEntry(Extraction& extraction) {
  if (const int32_t zipResult = extraction.archive.OpenEntry(extraction.package.password)) {
    LogFault(L"Unable to open file (zip)");
    return {.zipResult = zipResult, .flawless = false};
  }
  CurrentEntry entry;
  const Outcome outcome = UnpackOpenEntry(extraction, entry);
  if (extraction.archive.CloseEntry() != kZipWrongContent) return outcome;
  LogFault(L"Wrong content (zip) (" + entry.name + L")");
  return {.error = ERROR_CRC, .flawless = false};
}

// The error met last stays, and so does the result of the library's last call.
void Add(Outcome& sum, const Outcome& entry) {
  sum.written += entry.written;
  sum.zipResult = entry.zipResult;
  if (entry.error != 0) sum.error = entry.error;
  sum.flawless = sum.flawless && entry.flawless;
}

void UnpackEntries(Extraction& extraction) {
  int32_t position = extraction.archive.GoToFirstEntry();
  for (; position == 0 && !app.cancelRequested; position = extraction.archive.GoToNextEntry()) {
    Add(extraction.sum, UnpackEntry(extraction));
  }
  if (position != kZipEndOfEntries) extraction.sum.flawless = false;
}

bool IsComplete(const Extraction& extraction) {
  const uint64_t written = extraction.sum.written, upsize = extraction.upsize;
  if (upsize == 0) return extraction.sum.flawless;
  return written >= upsize || static_cast<double>(written) / static_cast<double>(upsize) >= kCompleteRatio;
}

}  // namespace

PlacementResult ExtractZip(RunState& run, const Package& package, const std::wstring& target) {
  ShowTotalDetail(LoadLocalizedString(STR_EXTRACTING));
  Extraction extraction{run, package, target, static_cast<uint64_t>(package.upsize)};
  if (const uint32_t error = extraction.archive.Open(PackageFilePath(run, package.filename))) {
    run.errorRecords += ArchiveUnreadableRecord(package.filename, error);
    AppendLog(L"[ERROR] Unable to open zip file");
    return {.error = error};
  }
  UnpackEntries(extraction);

  const bool complete = IsComplete(extraction);
  const Outcome& sum = extraction.sum;
  const uint64_t upsize = extraction.upsize;
  run.packageStats[package.filename].extracted = upsize == 0 && complete ? 100 : PercentOf(sum.written, upsize);
  if (!complete) {
    run.errorRecords +=
        IncompleteExtractionRecord(package.filename, sum.error, sum.zipResult, sum.written, extraction.upsize);
  }
  AppendLog(L"Extraction complete (" + std::to_wstring(sum.written) + L" / " + std::to_wstring(upsize) + L")");
  return {.ok = complete, .error = complete ? 0 : sum.error};
}
