// GET requests over WinINet. Every call blocks its thread; an instance serves one thread at a time.
#pragma once

#include <cstdint>
#include <string>

#include "net/http_result.h"
#include "net/speed_limiter.h"
#include "net/wininet_api.h"

// Handed to the callback of DownloadToFile: once before the file is touched, with `transferStartTick` and
// `downloaded` 0, and after every written chunk. The callback must not keep the pointer.
struct DownloadProgress {
  uint64_t transferStartTick = 0;  // GetTickCount64 right before the file is opened
  uint32_t speedLimit = 0;         // bytes per second; the callback may change it (not in its first call)
  uint64_t total = 0;              // as in HttpResult
  uint64_t downloaded = 0;         // bytes of the file that are there: resume offset and received bytes
  bool cancel = false;             // set by the callback to stop
};
using DownloadProgressCallback = void (*)(DownloadProgress*);

// One transfer's handles, closed in the reverse order.
struct OpenedRequest {
  InternetHandle connection;
  InternetHandle request;
};

class HttpClient {
 public:
  // Uses app.userAgent. A failure shows in the first transfer.
  HttpClient();

  // Bytes per second, 0 = no limit.
  void SetSpeedLimit(uint32_t bytesPerSecond) { speedLimit_ = bytesPerSecond; }
  // Whether transfers from byte 0 ask for gzip (WinINet decodes it). On at first; a body that can't be decoded turns
  // it off for good.
  void SetGzipEnabled(bool enabled) { gzipEnabled_ = enabled; }

  // Appends the body to `body`, which is emptied first only where a body is fetched a second time without gzip.
  HttpResult GetToStream(const std::wstring& url, std::string& body);

  // Stores the body in a file, from byte `resumeOffset` on; a server that ignores the range replaces the whole file.
  // `callback` may be null. Nothing is deleted on failure, so that a later call can resume. A write that fails ends
  // the transfer with its error.
  HttpResult DownloadToFile(const std::wstring& url, const std::wstring& path, uint64_t resumeOffset,
                            DownloadProgressCallback callback);

 private:
  bool EnsureSession();
  // Opens and sends a GET request. False when there is no answer; `result.error` then tells why.
  bool OpenRequest(const std::wstring& url, uint64_t rangeStart, OpenedRequest& opened, HttpResult& result);
  // Turns gzip off and sends an opened request once more. False as for OpenRequest, or when it is refused.
  bool SendAgainWithoutGzip(HINTERNET request, HttpResult& result);
  void ReceiveIntoFile(HINTERNET request, HANDLE file, DownloadProgressCallback callback, DownloadProgress& progress,
                       HttpResult& result);
  void Throttle(SpeedLimiter& limiter, uint32_t bytes) const;

  std::wstring userAgent_;
  bool gzipEnabled_ = true;
  uint32_t speedLimit_ = 0;
  InternetHandle session_;
};
