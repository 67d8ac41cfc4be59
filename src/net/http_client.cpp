#include "net/http_client.h"

#include "app/context.h"
#include "net/crack_url.h"
#include "net/http_request.h"
#include "net/network_errors.h"

namespace {

constexpr DWORD kGetFlags =
    INTERNET_FLAG_RELOAD | INTERNET_FLAG_IGNORE_CERT_CN_INVALID | INTERNET_FLAG_IGNORE_CERT_DATE_INVALID;

void SetHeader(HINTERNET request, const std::wstring& header) {
  WinInet().HttpAddRequestHeaders(request, header.c_str(), static_cast<DWORD>(-1),
                                  HTTP_ADDREQ_FLAG_ADD | HTTP_ADDREQ_FLAG_REPLACE);
}

void SetDecoding(HINTERNET request, bool enabled) {
  BOOL value = enabled;
  WinInet().InternetSetOption(request, INTERNET_OPTION_HTTP_DECODING, &value, sizeof value);
}

}  // namespace

HttpClient::HttpClient() : userAgent_(app.userAgent), session_(OpenSession(userAgent_)) {}

HttpResult HttpClient::GetToStream(const std::wstring& url, std::string& body) {
  HttpResult result;
  OpenedRequest opened;
  if (!OpenRequest(url, 0, opened, result)) return result;
  const HINTERNET request = opened.request.Get();
  if (!ReadResponseHead(request, result)) return result;
  SpeedLimiter limiter;
  BodyChunk chunk;
  for (;;) {
    if (ReadChunk(request, chunk, result)) {
      body.append(chunk.bytes, chunk.size);
      result.received += chunk.size;
      Throttle(limiter, chunk.size);
    } else if (gzipEnabled_ && result.error == kErrorDecodingFailed) {
      body.clear();
      if (!SendAgainWithoutGzip(request, result)) break;
    } else {
      break;
    }
  }
  FlagShortBody(request, 0, result);
  return result;
}

bool HttpClient::EnsureSession() {
  if (!session_) session_ = OpenSession(userAgent_);
  return static_cast<bool>(session_);
}

bool HttpClient::OpenRequest(const std::wstring& url, uint64_t rangeStart, OpenedRequest& opened, HttpResult& result) {
  const auto fail = [&result] {
    result.error = GetLastError();
    return false;
  };
  const ParsedUrl target = CrackUrl(url);
  if (!target.valid) return fail();
  const INTERNET_PORT port = PortOfScheme(target.scheme);
  if (port == 0) {
    result.error = ERROR_INTERNET_UNRECOGNIZED_SCHEME;
    return false;
  }
  if (!EnsureSession()) return fail();
  opened.connection = InternetHandle(
      WinInet().InternetConnect(session_.Get(), target.host.c_str(), port, L"", L"", INTERNET_SERVICE_HTTP, 0, 0));
  if (!opened.connection) return fail();
  const std::wstring object = target.path + target.extraInfo;
  const DWORD flags = kGetFlags | (port == INTERNET_DEFAULT_HTTPS_PORT ? INTERNET_FLAG_SECURE : 0);
  opened.request = InternetHandle(
      WinInet().HttpOpenRequest(opened.connection.Get(), L"GET", object.c_str(), nullptr, nullptr, nullptr, flags, 0));
  if (!opened.request) return fail();
  const HINTERNET request = opened.request.Get();
  if (rangeStart != 0) {
    SetHeader(request, L"Range: bytes=" + std::to_wstring(rangeStart) + L"-");
  } else {
    if (gzipEnabled_) SetHeader(request, L"Accept-Encoding: gzip");
    SetDecoding(request, gzipEnabled_);
  }
  return SendForgivingly(request, L"", "") || fail();
}

bool HttpClient::SendAgainWithoutGzip(HINTERNET request, HttpResult& result) {
  gzipEnabled_ = false;
  SetDecoding(request, false);
  SetHeader(request, L"Accept-Encoding:");  // removes it
  result.error = ERROR_SUCCESS;
  if (SendForgivingly(request, L"", "")) return ReadResponseHead(request, result);
  result.error = GetLastError();
  return false;
}

void HttpClient::Throttle(SpeedLimiter& limiter, uint32_t bytes) const {
  if (speedLimit_ == 0) return;
  if (const uint32_t pause = limiter.OnChunk(bytes, speedLimit_, GetTickCount64())) Sleep(pause);
}
