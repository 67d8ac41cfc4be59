#include "install/source_attempt.h"

#include <windows.h>

#include <algorithm>

#include "app/context.h"
#include "app/page_controls.h"
#include "install/transfer_status.h"
#include "net/network_errors.h"
#include "system/files.h"

namespace {

constexpr int kMaxRetriesWithoutData = 60;

void PauseForOneSecond() {
  constexpr DWORD kSliceMs = 100;
  for (DWORD waited = 0; waited < 1000 && !app.cancelRequested; waited += kSliceMs) Sleep(kSliceMs);
}

HttpResult Attempt(PackageDownload& download, const std::wstring& url) {
  const uint64_t start = GetTickCount64();
  HttpResult result = download.run.downloads.DownloadToFile(url, download.file, download.offset, OnDownloadProgress);
  if (result.received != 0) download.stale = false;
  // Whatever ended the transfer, the check of a whole file tells whether it is right.
  const bool whole = result.received != 0 && !download.package.md5.empty() && FileSize(download.file) == download.size;
  if (whole && IsRetryableNetworkError(result.error)) result.error = ERROR_SUCCESS;
  download.stats.time = GetTickCount64() - start;
  download.stats.downloaded = PercentOf(result.received, download.size);
  download.stats.speed = transferStatus.currentSpeed;
  return result;
}

HttpResult RetryWithoutSecureChannel(PackageDownload& download, const std::wstring& url) {
  const std::wstring plainUrl = L"http" + url.substr(5);
  AppendLog(L"Error code: " + std::to_wstring(kErrorSecureChannel) + L" (switching to http protocol)");
  AppendLog(L"New URL: " + plainUrl);
  return Attempt(download, plainUrl);
}

HttpResult RetryThroughOutage(PackageDownload& download, const std::wstring& url, HttpResult result) {
  AppendLog(L"Network error (" + std::to_wstring(result.error) + L"). Retrying again..");
  uint64_t longest = FileSize(download.file);
  for (int withoutData = 0; withoutData < kMaxRetriesWithoutData;) {
    pauseBeforeRetry();
    if (app.cancelRequested) {
      result.cancelled = true;
      break;
    }
    transferStatus.retryCount.Add(1);
    download.offset = ResumeOffset(download);
    result = Attempt(download, url);
    if (result.cancelled || !IsRetryableNetworkError(result.error)) break;
    // The speed display saw data, and it led further: a server that begins anew each time only to fall short again
    // must not be asked for ever.
    const uint64_t length = FileSize(download.file);
    const bool dataFlowed = transferStatus.retryCount == 0 && length > longest;
    longest = std::max(longest, length);
    withoutData = dataFlowed ? 1 : withoutData + 1;
  }
  return result;
}

}  // namespace

void (*pauseBeforeRetry)() = PauseForOneSecond;

uint64_t ResumeOffset(const PackageDownload& download) {
  if (download.stale) return 0;
  const uint64_t present = FileSize(download.file);
  const bool tooLong = !download.package.md5.empty() && present >= download.size;
  return tooLong ? 0 : present;
}

uint32_t PercentOf(uint64_t part, uint64_t whole) {
  if (whole == 0) return 0;
  const double percent = static_cast<double>(part) * 100.0 / static_cast<double>(whole);
  return percent < UINT32_MAX ? static_cast<uint32_t>(percent) : UINT32_MAX;
}

HttpResult TransferFromSource(PackageDownload& download, const std::wstring& url) {
  const HttpResult result = Attempt(download, url);
  if (result.cancelled || app.cancelRequested) return result;
  if (result.error == kErrorSecureChannel && url.starts_with(L"https")) {
    return RetryWithoutSecureChannel(download, url);
  }
  if (IsRetryableNetworkError(result.error)) return RetryThroughOutage(download, url, result);
  return result;
}
