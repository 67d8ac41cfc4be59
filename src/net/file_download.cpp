// HttpClient::DownloadToFile: a response body goes into a file, chunk by chunk.
#include "net/http_client.h"

#include <algorithm>

#include "net/http_request.h"
#include "net/network_errors.h"

namespace {

// Empties the file from `position` on when it is 0; what follows a resume offset stays until it is overwritten.
FileHandle OpenTarget(const std::wstring& path, uint64_t position, HttpResult& result) {
  FileHandle file(CreateFileW(path.c_str(), FILE_GENERIC_WRITE, FILE_SHARE_WRITE, nullptr,
                              position != 0 ? OPEN_ALWAYS : CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  LARGE_INTEGER target;
  target.QuadPart = static_cast<LONGLONG>(position);
  if (file && SetFilePointerEx(file.Get(), target, nullptr, FILE_BEGIN)) return file;
  result.error = GetLastError();
  return FileHandle();
}

bool StoreChunk(HANDLE file, const BodyChunk& chunk, HttpResult& result) {
  DWORD written = 0;
  if (!WriteFile(file, chunk.bytes, chunk.size, &written, nullptr)) {
    result.error = GetLastError();
    return false;
  }
  result.received += chunk.size;
  return true;
}

bool EmptyFile(HANDLE file, HttpResult& result) {
  if (SetFilePointerEx(file, LARGE_INTEGER{}, nullptr, FILE_BEGIN) && SetEndOfFile(file)) return true;
  result.error = GetLastError();
  return false;
}

}  // namespace

HttpResult HttpClient::DownloadToFile(const std::wstring& url, const std::wstring& path, uint64_t resumeOffset,
                                      DownloadProgressCallback callback) {
  HttpResult result;
  OpenedRequest opened;
  if (!OpenRequest(url, resumeOffset, opened, result)) return result;
  const HINTERNET request = opened.request.Get();
  if (!ReadResponseHead(request, result)) return result;
  // Any other answer is the whole file.
  const uint64_t offset = result.statusCode == HTTP_STATUS_PARTIAL_CONTENT ? resumeOffset : 0;

  DownloadProgress progress;
  progress.speedLimit = speedLimit_;
  progress.total = result.total;
  if (callback) callback(&progress);
  if (progress.cancel) {
    result.cancelled = true;
    return result;
  }
  progress.transferStartTick = GetTickCount64();
  progress.downloaded = offset;
  const FileHandle file = OpenTarget(path, offset, result);
  if (!file) return result;
  ReceiveIntoFile(request, file.Get(), callback, progress, result);
  FlagShortBody(request, offset, result);
  return result;
}

void HttpClient::ReceiveIntoFile(HINTERNET request, HANDLE file, DownloadProgressCallback callback,
                                 DownloadProgress& progress, HttpResult& result) {
  SpeedLimiter limiter;
  BodyChunk chunk;
  for (;;) {
    if (ReadChunk(request, chunk, result)) {
      if (!StoreChunk(file, chunk, result)) return;
      progress.downloaded += chunk.size;
      progress.speedLimit = speedLimit_;
      if (callback) callback(&progress);
      if (progress.cancel) {
        result.cancelled = true;
        return;
      }
      speedLimit_ = progress.speedLimit;
      Throttle(limiter, chunk.size);
    } else if (gzipEnabled_ && result.error == kErrorDecodingFailed) {
      if (!EmptyFile(file, result) || !SendAgainWithoutGzip(request, result)) return;
      progress.total = std::max(progress.total, result.total);
    } else {
      return;
    }
  }
}
