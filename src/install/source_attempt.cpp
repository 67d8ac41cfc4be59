#include "install/source_attempt.h"

#include <windows.h>

#include "core/context.h"
#include "install/package_paths.h"
#include "install/package_texts.h"
#include "install/transfer_status.h"
#include "net/retry.h"
#include "system/files.h"
#include "system/text.h"
#include "ui/page_controls.h"

namespace {

HttpResult Attempt(PackageDownload& download, const std::wstring& url) {
  const uint64_t start = GetTickCount64();
  HttpResult result = download.run.downloads.DownloadToFile(url, download.file, download.offset, OnDownloadProgress);
  if (result.received != 0 && download.stale) {
    download.stale = false;
    WriteStatRecord(download);
  }
  // Whatever ended the transfer, the check of a whole file tells whether it is right.
  const bool whole = result.received != 0 && !download.package.md5.empty() && FileSize(download.file) == download.size;
  if (whole && IsRetryableNetworkError(result.error)) result.error = ERROR_SUCCESS;
  if (whole) result.cutShort = false;
  download.stats.time = GetTickCount64() - start;
  download.stats.downloaded = PercentOf(result.received, download.size);
  download.stats.speed = transferStatus.currentSpeed;
  return result;
}

HttpResult RetryWithoutSecureChannel(PackageDownload& download, const std::wstring& url) {
  const std::wstring plainUrl = L"http" + url.substr(5);
  AppendLog(L"Error code: " + std::to_wstring(ERROR_INTERNET_SECURITY_CHANNEL_ERROR) +
            L" (switching to http protocol)");
  AppendLog(L"New URL: " + plainUrl);
  return Attempt(download, plainUrl);
}

// An answer that was cut short is told like the broken connection that it is.
uint32_t OutageCode(const HttpResult& result) {
  return result.error != ERROR_SUCCESS ? result.error : uint32_t{ERROR_INTERNET_CONNECTION_ABORTED};
}

HttpResult RetryThroughOutage(PackageDownload& download, const std::wstring& url, Retries& retries, HttpResult result) {
  AppendLog(L"Network error (" + std::to_wstring(OutageCode(result)) + L"). Retrying again..");
  do {
    if (!retries.Pause(app.cancelRequested.Token())) {
      result.cancelled = true;
      return result;
    }
    transferStatus.retryCount.Add(1);
    download.offset = ResumeOffset(download);
    result = Attempt(download, url);
  } while (retries.AnotherAfter(result, FileSize(download.file)));
  return result;
}

}  // namespace

uint64_t ResumeOffset(const PackageDownload& download) {
  if (download.stale) return 0;
  const uint64_t present = FileSize(download.file);
  const bool tooLong = !download.package.md5.empty() && present >= download.size;
  return tooLong ? 0 : present;
}

void WriteStatRecord(const PackageDownload& download) {
  if (download.package.md5.empty()) return;
  WriteWholeFile(StatRecordPath(download.file), FormatStatRecord(download.size, download.package.md5),
                 FILE_ATTRIBUTE_HIDDEN);
}

HttpResult TransferFromSource(PackageDownload& download, const std::wstring& url) {
  Retries retries(download.run.retryRules, download.offset);
  HttpResult result = Attempt(download, url);
  if (result.cancelled || app.cancelRequested) return result;
  if (result.error == ERROR_INTERNET_SECURITY_CHANNEL_ERROR && url.starts_with(L"https")) {
    result = RetryWithoutSecureChannel(download, url);
  } else if (retries.AnotherAfter(result, FileSize(download.file))) {
    result = RetryThroughOutage(download, url, retries, result);
  }
  // Half a file must not pass for one that is over.
  if (result.cutShort && !result.cancelled) result.error = OutageCode(result);
  return result;
}
