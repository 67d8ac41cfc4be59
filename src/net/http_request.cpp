#include "net/http_request.h"

#include <cwchar>
#include <optional>

#include "net/network_errors.h"

namespace {

constexpr DWORD kForgivenFaults = SECURITY_FLAG_IGNORE_REVOCATION | SECURITY_FLAG_IGNORE_UNKNOWN_CA |
                                  SECURITY_FLAG_IGNORE_WRONG_USAGE | SECURITY_FLAG_IGNORE_CERT_CN_INVALID |
                                  SECURITY_FLAG_IGNORE_CERT_DATE_INVALID | SECURITY_FLAG_IGNORE_WEAK_SIGNATURE;

bool Send(HINTERNET request, const std::wstring& headers, std::string& body) {
  return WinInet().HttpSendRequest(request, headers.empty() ? nullptr : headers.c_str(),
                                   static_cast<DWORD>(headers.size()), body.empty() ? nullptr : body.data(),
                                   static_cast<DWORD>(body.size()));
}

void RelaxSecurity(HINTERNET request) {
  DWORD flags = 0;
  DWORD size = sizeof flags;
  if (!WinInet().InternetQueryOption(request, INTERNET_OPTION_SECURITY_FLAGS, &flags, &size)) return;
  flags |= kForgivenFaults;
  WinInet().InternetSetOption(request, INTERNET_OPTION_SECURITY_FLAGS, &flags, sizeof flags);
}

// Asked for as text: as a number it would have 32 bits.
std::optional<uint64_t> ContentLength(HINTERNET request) {
  wchar_t text[32];
  DWORD size = sizeof text;
  if (!WinInet().HttpQueryInfo(request, HTTP_QUERY_CONTENT_LENGTH, text, &size, nullptr)) return std::nullopt;
  return std::wcstoull(text, nullptr, 10);
}

// The length before decoding; 0 when it is not known.
uint64_t CompressedContentLength(HINTERNET request) {
  ULONGLONG length = 0;
  DWORD size = sizeof length;
  WinInet().InternetQueryOption(request, INTERNET_OPTION_COMPRESSED_CONTENT_LENGTH, &length, &size);
  return length;
}

}  // namespace

InternetHandle OpenSession(const std::wstring& userAgent) {
  return InternetHandle(WinInet().InternetOpen(userAgent.c_str(), INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
}

bool SendForgivingly(HINTERNET request, const std::wstring& headers, std::string body) {
  if (Send(request, headers, body)) return true;
  if (GetLastError() != ERROR_INTERNET_INVALID_CA) return false;
  RelaxSecurity(request);
  return Send(request, headers, body);
}

bool ReadResponseHead(HINTERNET request, HttpResult& result) {
  DWORD status = 0;
  DWORD size = sizeof status;
  const bool known =
      WinInet().HttpQueryInfo(request, HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &status, &size, nullptr);
  const DWORD error = known ? ERROR_SUCCESS : GetLastError();
  result.statusCode = status;
  if (status != HTTP_STATUS_OK && status != HTTP_STATUS_PARTIAL_CONTENT) {
    result.error = error;
    return false;
  }
  const auto length = ContentLength(request);
  result.total = length ? *length : CompressedContentLength(request);
  return true;
}

bool ReadChunk(HINTERNET request, BodyChunk& chunk, HttpResult& result) {
  // Only an error that this read reports counts.
  SetLastError(ERROR_SUCCESS);
  const BOOL done = WinInet().InternetReadFile(request, chunk.bytes, sizeof chunk.bytes, &chunk.size);
  if (done && chunk.size != 0) return true;
  const DWORD error = GetLastError();
  // A connection that breaks behind the last byte has taken nothing away.
  const auto length = ContentLength(request);
  const bool complete = !done && error != kErrorDecodingFailed && length && result.received >= *length;
  result.error = complete ? ERROR_SUCCESS : error;
  return false;
}

void FlagShortBody(HINTERNET request, uint64_t offset, HttpResult& result) {
  if (result.error != ERROR_SUCCESS || result.cancelled) return;
  // A server or proxy that closes the connection looks like a regular end. The length before decoding would prove
  // nothing here: a tiny body grows by being compressed.
  const auto length = ContentLength(request);
  if (length && offset + result.received < *length) result.error = kErrorConnectionAborted;
}
