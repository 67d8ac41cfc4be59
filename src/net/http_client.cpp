#include "net/http_client.h"

#include <algorithm>
#include <utility>

#include "net/crack_url.h"
#include "system/handles.h"

namespace {

// The line notices a silence itself. The system only has to let the abandoned thread go in the end.
constexpr uint32_t kSystemGraceMs = 5000;

// A sink takes a body:
//   uint32_t Begin(const HttpHead& head, HttpResult& result)  a body follows; again after a head `withoutGzip`
//   uint32_t Store(std::string_view chunk, HttpResult& result)
//   uint32_t Write(std::string_view bytes)  of a transfer that was given up; there may be no body
// They return 0 or the error that ends the transfer; the first two set result.cancelled to end it without one. `offset`
// is how much of the file was there before the body.

struct MemorySink {
  std::string& body;
  uint64_t offset = 0;

  uint32_t Begin(const HttpHead& head, HttpResult&) {
    if (head.withoutGzip) body.clear();
    return ERROR_SUCCESS;
  }
  uint32_t Store(std::string_view chunk, HttpResult&) { return Write(chunk); }
  uint32_t Write(std::string_view bytes) {
    body.append(bytes);
    return ERROR_SUCCESS;
  }
};

struct FileSink {
  const std::wstring& path;
  uint64_t resumeOffset;
  DownloadProgressCallback callback;
  uint32_t& speedLimit;  // the client's
  uint64_t offset = 0;
  DownloadProgress progress = {};
  FileHandle file = {};

  uint32_t Begin(const HttpHead& head, HttpResult& result) {
    if (file) return BeginAgain(result);
    // Any other answer is the whole file.
    offset = head.statusCode == HTTP_STATUS_PARTIAL_CONTENT ? resumeOffset : 0;
    progress.speedLimit = speedLimit;
    progress.total = result.total;
    if (callback) callback(&progress);
    result.cancelled = progress.cancel;
    if (result.cancelled) return ERROR_SUCCESS;
    progress.transferStartTick = GetTickCount64();
    progress.downloaded = offset;
    return Open();
  }

  uint32_t Store(std::string_view chunk, HttpResult& result) {
    if (const uint32_t error = Write(chunk)) return error;
    progress.downloaded += chunk.size();
    progress.speedLimit = speedLimit;
    if (callback) callback(&progress);
    result.cancelled = progress.cancel;
    if (!progress.cancel) speedLimit = progress.speedLimit;
    return ERROR_SUCCESS;
  }

  uint32_t Write(std::string_view bytes) {
    DWORD written = 0;
    if (!WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr)) {
      return GetLastError();
    }
    return written == bytes.size() ? DWORD{ERROR_SUCCESS} : DWORD{ERROR_DISK_FULL};
  }

 private:
  // Empties the file where it begins at byte 0; what follows a resume offset stays until it is overwritten.
  uint32_t Open() {
    file.Reset(CreateFileW(path.c_str(), FILE_GENERIC_WRITE, FILE_SHARE_WRITE, nullptr,
                           offset != 0 ? OPEN_ALWAYS : CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    LARGE_INTEGER target;
    target.QuadPart = static_cast<LONGLONG>(offset);
    if (file && SetFilePointerEx(file.Get(), target, nullptr, FILE_BEGIN)) return ERROR_SUCCESS;
    return GetLastError();
  }

  uint32_t BeginAgain(HttpResult& result) {
    progress.total = std::max(progress.total, result.total);
    if (SetFilePointerEx(file.Get(), LARGE_INTEGER{}, nullptr, FILE_BEGIN) && SetEndOfFile(file.Get())) {
      return ERROR_SUCCESS;
    }
    return GetLastError();
  }
};

// Whether an answer can bring the rest of a file whose first `rangeStart` bytes are there: a sign-in page, or a part
// that begins elsewhere, would destroy them.
bool CanFollow(const HttpHead& head, uint64_t rangeStart) {
  if (head.statusCode == HTTP_STATUS_PARTIAL_CONTENT) return !head.contentStart || *head.contentStart == rangeStart;
  return head.length ? *head.length >= rangeStart : rangeStart == 0 || !head.isPage;
}

// 0 when a body may be stored.
uint32_t TakeHead(const HttpHead& head, uint64_t rangeStart, HttpResult& result) {
  result.statusCode = head.statusCode;
  // Taken and closed without a word.
  if (head.statusCode == 0) return ERROR_INTERNET_CONNECTION_ABORTED;
  if (!IsAccepted(head.statusCode)) return ERROR_SUCCESS;
  result.total = head.announced;
  result.isPage = head.isPage && head.statusCode == HTTP_STATUS_OK;
  return CanFollow(head, rangeStart) ? ERROR_SUCCESS : uint32_t{ERROR_HTTP_INVALID_SERVER_RESPONSE};
}

// The line is ahead of whoever stores, under a speed limit by seconds.
template <typename Sink>
void KeepRest(HttpLine& line, Sink& sink, HttpResult& result) {
  const std::string_view rest = line.TakeRest();
  if (sink.Write(rest) == ERROR_SUCCESS) result.received += rest.size();
}

// Decides whether a body that is over is complete. A server or proxy that closes the connection looks like a regular
// end, and a connection that breaks behind the last byte has taken nothing away. The length before decoding would prove
// nothing, because a tiny body grows by being compressed.
void Conclude(const HttpHead& head, uint64_t bodyBytes, uint64_t offset, HttpResult& result) {
  if (result.cancelled || !head.length) return;
  result.cutShort = bodyBytes < *head.length;
  if (!result.cutShort && result.error != kErrorDecodingFailed) result.error = ERROR_SUCCESS;
  if (result.error == ERROR_SUCCESS && offset + bodyBytes < *head.length) {
    result.error = ERROR_INTERNET_CONNECTION_ABORTED;
  }
}

}  // namespace

HttpSession OpenSession(const std::wstring& userAgent) {
  InternetHandle session(WinInet().InternetOpen(userAgent.c_str(), INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
  return session ? std::make_shared<const InternetHandle>(std::move(session)) : nullptr;
}

HttpClient::HttpClient(std::wstring userAgent, std::stop_token stop)
    : userAgent_(std::move(userAgent)), stop_(std::move(stop)), session_(OpenSession(userAgent_)) {}

bool HttpClient::EnsureSession() {
  if (!session_) session_ = OpenSession(userAgent_);
  return static_cast<bool>(session_);
}

HttpResult HttpClient::GetToStream(const std::wstring& url, std::string& body) {
  MemorySink sink{body};
  return Receive(url, 0, sink);
}

HttpResult HttpClient::DownloadToFile(const std::wstring& url, const std::wstring& path, uint64_t resumeOffset,
                                      DownloadProgressCallback callback) {
  FileSink sink{path, resumeOffset, callback, speedLimit_};
  return Receive(url, resumeOffset, sink);
}

template <typename Sink>
HttpResult HttpClient::Receive(const std::wstring& url, uint64_t rangeStart, Sink& sink) {
  HttpRequest request;
  request.target = CrackUrl(url);
  if (request.target.error != ERROR_SUCCESS) return {.error = request.target.error};
  if (PortOfScheme(request.target.scheme) == 0) return {.error = ERROR_INTERNET_UNRECOGNIZED_SCHEME};
  if (!EnsureSession()) return {.error = GetLastError()};
  // Without the second flag the system keeps a copy of every package on its own drive.
  request.flags = INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE | INTERNET_FLAG_IGNORE_REDIRECT_TO_HTTPS;
  request.rangeStart = rangeStart;
  request.askForGzip = rangeStart == 0 && gzipEnabled_;
  request.setDecoding = rangeStart == 0;
  request.timeoutMs = kPatience.silenceMs + kSystemGraceMs;
  HttpLine line(session_, std::move(request), stop_, {.silenceMs = kPatience.silenceMs});

  HttpResult result;
  HttpHead head;
  SpeedLimiter limiter;
  uint64_t bodyBytes = 0;  // of this answer; a body that is fetched anew counts twice in result.received
  for (;;) {
    const HttpEvent event = line.Next();
    switch (event.kind) {
      case HttpEvent::Head:
        head = event.head;
        bodyBytes = 0;
        if (head.withoutGzip) gzipEnabled_ = false;
        result.error = TakeHead(head, rangeStart, result);
        if (result.error != ERROR_SUCCESS || !IsAccepted(head.statusCode)) return result;
        result.error = sink.Begin(head, result);
        break;
      case HttpEvent::Bytes:
        result.error = sink.Store(event.bytes, result);
        if (result.error != ERROR_SUCCESS) return result;
        bodyBytes += event.bytes.size();
        result.received += event.bytes.size();
        if (!result.cancelled) Throttle(limiter, event.bytes.size());
        break;
      case HttpEvent::End:
        result.error = event.error;
        result.cancelled = event.stopped;
        if (result.cancelled) KeepRest(line, sink, result);
        Conclude(head, bodyBytes, sink.offset, result);
        return result;
    }
    if (result.cancelled) KeepRest(line, sink, result);
    if (result.error != ERROR_SUCCESS || result.cancelled) return result;
  }
}

void HttpClient::Throttle(SpeedLimiter& limiter, size_t bytes) const {
  if (speedLimit_ == 0) return;
  if (const uint32_t pause = limiter.OnChunk(static_cast<uint32_t>(bytes), speedLimit_, GetTickCount64())) Sleep(pause);
}
