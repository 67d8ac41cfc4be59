#include "install/package_download.h"

#include <windows.h>

#include <utility>

#include "core/context.h"
#include "core/localization.h"
#include "install/package_paths.h"
#include "install/package_texts.h"
#include "install/run_display.h"
#include "install/source_attempt.h"
#include "install/transfer_status.h"
#include "manifest/manifest_retrieval.h"
#include "manifest/manifest_store.h"
#include "net/error_text.h"
#include "net/file_hash.h"
#include "net/http_result.h"
#include "system/files.h"
#include "system/handles.h"
#include "system/path_names.h"
#include "system/text.h"
#include "system/threads.h"
#include "ui/message_boxes.h"
#include "ui/page_controls.h"

// The story starts at the end of this file.

namespace {

constexpr uint32_t kRangeNotSatisfiable = 416;

// How one source went; a failure says why.
struct SourceOutcome {
  enum { Done, Failed, Redo, Cancelled } state;
  uint32_t error = 0;
};

// Holds the package's file or its record. download.held when another program keeps it. Returns 0 or the system error.
uint32_t Hold(PackageDownload& download, const std::wstring& path, FileHandle& held) {
  const uint32_t error = HoldFile(path, held, app.cancelRequested.Token());
  download.held = error == ERROR_SHARING_VIOLATION;
  return error;
}

void TakeAsProven(PackageDownload& download, FileHandle held) {
  download.run.proven[download.package.filename] = {download.size, download.package.md5, std::move(held)};
}

std::string HashPackageFile(const std::wstring& file) {
  transferStatus.lastHashPercent = 0;
  transferStatus.retryCount = 0;  // the data is here, so nothing tells of a bad connection any more
  transferStatus.hashing = true;  // from now on the speed display leaves the line alone
  ShowPackageDetail(LoadLocalizedString(STR_CHECKING_FILE));
  return ComputeFileMd5(file, OnHashProgress);
}

// Downloads fail in this way when the manifest is older than what the sources offer.
void RefreshManifest() {
  AppendLog(L"Downloading packages manifest");
  if (FetchManifest().ok && LoadManifest() > 0) AppendLog(L"Packages manifest updated successfully");
}

// Whether the manifest is older than what the sources offer and knows the package in another version now.
bool RefreshBringsAnother(PackageDownload& download) {
  if (download.run.manifestRefreshed) return false;
  download.run.manifestRefreshed = true;
  RefreshManifest();
  const auto manifest = CurrentManifest();
  const auto found = manifest->packages.find(download.package.filename);
  if (found == manifest->packages.end()) return false;
  return found->second.size != download.package.size || found->second.md5 != download.package.md5;
}

// Ends a source whose file isn't what the manifest says. `hash` is empty when none was computed.
SourceOutcome ReactToMismatch(PackageDownload& download, const std::string& source, const HttpResult& result,
                              uint64_t fileSize, const std::string& hash) {
  RunState& run = download.run;
  run.errorRecords +=
      MismatchRecord(download.package.filename, source, result.statusCode, fileSize, hash, run.manifestRefreshed);
  // A page that stands in for the package is the beginning of nothing.
  if (result.isPage) DeleteFileW(download.file.c_str());
  download.offset = ResumeOffset(download);
  if (run.manifestRefreshed) return {SourceOutcome::Failed, ERROR_INVALID_DATA};
  run.manifestRefreshed = true;
  RefreshManifest();
  return {SourceOutcome::Redo};
}

SourceOutcome ProveDownloadedFile(PackageDownload& download, const std::string& source, const HttpResult& result) {
  const uint64_t fileSize = FileSize(download.file);
  download.stats.downloaded = PercentOf(fileSize, download.size);
  AppendLog(L"Downloaoded: " + std::to_wstring(fileSize) + L" / " + std::to_wstring(download.size));
  if (fileSize != download.size) {
    ShowPackageDetail(LoadLocalizedString(STR_CHECKING_FILE));
    AppendLog(L"Size mismatch (" + std::to_wstring(fileSize) + L")");
    return ReactToMismatch(download, source, result, fileSize, {});
  }
  FileHandle held;
  if (const uint32_t error = Hold(download, download.file, held)) return {SourceOutcome::Failed, error};
  const std::string hash = HashPackageFile(download.file);
  if (app.cancelRequested) return {SourceOutcome::Cancelled};
  if (hash == download.package.md5) {
    AppendLog(L"Hash is ok (" + WidenBytes(hash) + L")");
    TakeAsProven(download, std::move(held));
    return {SourceOutcome::Done};
  }
  held.Reset();
  AppendLog(L"Hash mismatch (" + WidenBytes(hash) + L")");
  AppendLog(L"Expected hash: " + WidenBytes(download.package.md5));
  return ReactToMismatch(download, source, result, fileSize, hash);
}

// A package without `md5` is taken as it came.
SourceOutcome TakeDownloadedFile(PackageDownload& download) {
  FileHandle held;
  if (const uint32_t error = Hold(download, download.file, held)) return {SourceOutcome::Failed, error};
  TakeAsProven(download, std::move(held));
  return {SourceOutcome::Done};
}

void RecordTransferWithoutData(PackageDownload& download, const std::string& source, const HttpResult& result) {
  download.offset = ResumeOffset(download);
  download.run.errorRecords +=
      NoDataRecord(download.package.filename, source, result.statusCode, FileSize(download.file));
  AppendLog(L"Http code: " + std::to_wstring(result.statusCode));
}

// The system's descriptions have line ends, also at their end.
void LogLines(std::wstring_view text) {
  constexpr std::wstring_view kLineEnd = L"\r\n";
  for (size_t end; (end = text.find(kLineEnd)) != std::wstring_view::npos;) {
    AppendLog(std::wstring(text.substr(0, end)));
    text.remove_prefix(end + kLineEnd.size());
  }
  AppendLog(std::wstring(text));
}

void TellTransferError(PackageDownload& download, const std::string& source, const HttpResult& result) {
  download.offset = ResumeOffset(download);
  download.run.errorRecords +=
      TransferErrorRecord(download.package.filename, source, result.statusCode, result.error, FileSize(download.file));
  AppendLog(L"Error code: " + std::to_wstring(result.error));
  const std::wstring description = GetErrorText(result.error);
  if (!description.empty()) LogLines(L"Error message: " + description);

  if (result.error == ERROR_INTERNET_NAME_NOT_RESOLVED) {
    ShowConnectionHint();
  } else if (result.error == ERROR_FILE_CORRUPT || result.error == ERROR_DISK_CORRUPT) {
    ShowCorruptDiskMessage();
    DeleteFileW(download.file.c_str());
    download.offset = 0;
  }
}

void ShowSourceStart(const std::string& source) {
  AppendLog(L"Trying source: " + WidenBytes(source));
  ShowPackageDetail(LoadLocalizedString(STR_STARTING_DOWNLOAD));
  transferStatus.lastTickBytes = 0;
  transferStatus.currentFileBytes = 0;
  transferStatus.currentSpeed = 0;
  transferStatus.retryCount = 0;
  transferStatus.hashing = false;
}

SourceOutcome TrySource(PackageDownload& download, const std::string& source) {
  ShowSourceStart(source);
  if (source != download.run.selectedSource) download.stats.source = source;
  download.stats.downloaded = PercentOf(download.offset, download.size);

  const HttpResult result = TransferFromSource(download, WidenBytes(download.package.sources.at(source)));
  if (result.cancelled || app.cancelRequested) return {SourceOutcome::Cancelled};
  if (result.error == ERROR_HTTP_INVALID_SERVER_RESPONSE || result.statusCode == kRangeNotSatisfiable) {
    download.refused = true;
  }
  if (result.error != 0) {
    TellTransferError(download, source, result);
    return {SourceOutcome::Failed, result.error};
  }
  if (result.received == 0) {
    RecordTransferWithoutData(download, source, result);
    return {SourceOutcome::Failed, ERROR_HTTP_INVALID_SERVER_RESPONSE};
  }
  return download.package.md5.empty() ? TakeDownloadedFile(download) : ProveDownloadedFile(download, source, result);
}

// The selected source first, the others in key order.
std::vector<std::string> SourceOrder(const PackageDownload& download) {
  const auto& sources = download.package.sources;
  const std::string& selected = download.run.selectedSource;
  std::vector<std::string> order;
  if (sources.contains(selected)) order.push_back(selected);
  for (const auto& [key, url] : sources) {
    if (key != selected) order.push_back(key);
  }
  return order;
}

SourceOutcome TrySources(PackageDownload& download) {
  SourceOutcome outcome{SourceOutcome::Failed, ERROR_NOT_FOUND};
  for (const std::string& source : SourceOrder(download)) {
    outcome = TrySource(download, source);
    // Another source would begin anew what is there as a whole.
    if (outcome.state != SourceOutcome::Failed || download.held) break;
    // A box that told of the failure may have been open while the window was closed.
    if (app.cancelRequested) return {SourceOutcome::Cancelled};
  }
  return outcome;
}

// Whether the file that is there was begun for exactly this package. Not to be told while download.held.
bool HasMatchingRecord(PackageDownload& download) {
  if (download.package.md5.empty() || !PathExists(download.file)) return false;
  const std::wstring path = StatRecordPath(download.file);
  FileHandle held;
  if (Hold(download, path, held) != ERROR_SUCCESS) return false;
  const auto record = ReadWholeFile(path);
  return record && StatRecordMatches(*record, download.size, download.package.md5);
}

// What is there belongs to another version of the package, or to nothing that can be proven: no transfer may go on
// with it. The record is written before the first one, so that a later run can resume even after a crash.
void StartOver(PackageDownload& download) {
  download.stale = !DeleteFileW(download.file.c_str()) && PathExists(download.file);
  if (!download.stale) WriteStatRecord(download);
}

// Proves a file that an earlier run has brought whole. False when it isn't right, when hashing was cancelled, and while
// download.held.
bool ProvePresentFile(PackageDownload& download) {
  FileHandle held;
  const uint32_t error = Hold(download, download.file, held);
  if (app.cancelRequested || download.held) return false;
  const std::string hash = error == ERROR_SUCCESS ? HashPackageFile(download.file) : "";
  if (app.cancelRequested) return false;
  const bool right = hash == download.package.md5;
  AppendLog((right ? L"File exists. Hash is ok (" : L"File exists. Hash mismatch (") + WidenBytes(hash) + L")");
  if (right) TakeAsProven(download, std::move(held));
  return right;
}

// Makes use of what an earlier run has left: true when that is the whole file, proven. Otherwise, unless download.held,
// download.offset tells where to go on; what can't be gone on with has been removed, and the record that lets a later
// run resume is there.
bool TakeUpEarlierFile(PackageDownload& download) {
  const bool matches = HasMatchingRecord(download);
  if (download.held) return false;
  if (!matches) {
    StartOver(download);
    return false;
  }
  if (FileSize(download.file) == download.size) return ProvePresentFile(download);
  download.offset = ResumeOffset(download);
  if (download.offset != 0) AppendLog(L"Resuming download process from: " + std::to_wstring(download.offset));
  return false;
}

DownloadOutcome CountAsDownloaded(const PackageDownload& download) {
  transferStatus.downloadedBefore.Add(download.size);
  ShowPackageProgress(transferStatus.downloadedBefore, transferStatus.downloadTotal);
  return DownloadOutcome::Done;
}

DownloadOutcome AskAfterFailure(const Package& package, uint32_t error) {
  if (AskToTryAgain(STR_DOWNLOAD_ERROR, package, error)) return DownloadOutcome::FailedRetry;
  app.cancelRequested.Utter();
  OfferExit();
  return DownloadOutcome::FailedStop;
}

}  // namespace

bool IsProven(const RunState& run, const Package& package) {
  const auto found = run.proven.find(package.filename);
  return found != run.proven.end() && found->second.size == static_cast<uint64_t>(package.size) &&
         found->second.md5 == package.md5;
}

DownloadOutcome DownloadPackage(RunState& run, const Package& package, size_t index, size_t count) {
  ShowPackageText(PackageHeadline(STR_DOWNLOADING_PACKAGE, package, index, count));
  const std::wstring filename = WidenBytes(package.filename);
  AppendLog(L"Processing package: " + filename);
  if (!IsSafeFileName(filename)) {
    AppendLog(L"[ERROR] Unsafe file name (" + filename + L")");
    return AskAfterFailure(package, ERROR_INVALID_NAME);
  }

  run.proven.erase(package.filename);  // nothing may keep this run from writing the file
  PackageDownload download{run, package, run.packageStats[package.filename], static_cast<uint64_t>(package.size),
                           PackageFilePath(run, package.filename)};
  if (TakeUpEarlierFile(download)) return CountAsDownloaded(download);
  if (app.cancelRequested) return DownloadOutcome::Cancelled;
  // A transfer would begin anew as soon as the other program lets go.
  if (download.held) return AskAfterFailure(package, ERROR_SHARING_VIOLATION);

  const SourceOutcome outcome = TrySources(download);
  switch (outcome.state) {
    case SourceOutcome::Done:
      return CountAsDownloaded(download);
    case SourceOutcome::Redo:
      return DownloadOutcome::Redo;
    case SourceOutcome::Cancelled:
      return DownloadOutcome::Cancelled;
    case SourceOutcome::Failed:
      if (download.refused && RefreshBringsAnother(download)) return DownloadOutcome::Redo;
      break;
  }
  // Whoever cancels while a file is waited for, or a manifest, isn't asked about it.
  if (app.cancelRequested) return DownloadOutcome::Cancelled;
  return AskAfterFailure(package, outcome.error);
}
