// GET requests over WinINet. Every call blocks its thread; an instance serves one thread at a time.
#pragma once

#include <cstdint>
#include <stop_token>
#include <string>

#include "net/http_line.h"
#include "net/http_result.h"
#include "net/patience.h"
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

class HttpClient {
 public:
  // A failure shows in the first transfer. `stop` ends a transfer at once, wherever it waits.
  explicit HttpClient(std::wstring userAgent, std::stop_token stop = {});

  // Bytes per second, 0 = no limit.
  void SetSpeedLimit(uint32_t bytesPerSecond) { speedLimit_ = bytesPerSecond; }
  // Whether transfers from byte 0 ask for gzip (WinINet decodes it). On at first; a body that can't be decoded turns
  // it off for good.
  void SetGzipEnabled(bool enabled) { gzipEnabled_ = enabled; }

  // Appends the body to `body`, which is emptied first only where a body is fetched a second time without gzip.
  HttpResult GetToStream(const std::wstring& url, std::string& body);

  // Stores the body in a file, from byte `resumeOffset` on; a server that ignores the range replaces the whole file,
  // unless what it announces is shorter than what is there. `callback` may be null. Nothing is deleted on failure, so
  // that a later call can resume. A write that fails ends the transfer with its error.
  HttpResult DownloadToFile(const std::wstring& url, const std::wstring& path, uint64_t resumeOffset,
                            DownloadProgressCallback callback);

 private:
  bool EnsureSession();
  // Asks for `url` and hands what comes to the sink; see http_client.cpp for what that is.
  template <typename Sink>
  HttpResult Receive(const std::wstring& url, uint64_t rangeStart, Sink& sink);
  void Throttle(SpeedLimiter& limiter, size_t bytes) const;

  std::wstring userAgent_;
  std::stop_token stop_;
  bool gzipEnabled_ = true;
  uint32_t speedLimit_ = 0;
  HttpSession session_;
};

// Opens a session with the system's proxy settings. Null on failure, with the thread's last error.
HttpSession OpenSession(const std::wstring& userAgent);
