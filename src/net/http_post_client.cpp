#include "net/http_post_client.h"

#include <utility>

#include "app/context.h"
#include "net/http_request.h"

namespace {

constexpr DWORD kPostFlags = INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE |
                             INTERNET_FLAG_IGNORE_CERT_CN_INVALID | INTERNET_FLAG_IGNORE_CERT_DATE_INVALID;
constexpr DWORD kTimeoutMs = 3000;

}  // namespace

HttpPostClient::HttpPostClient() : userAgent_(app.userAgent), session_(OpenSession(userAgent_)) { ApplyTimeouts(); }

void HttpPostClient::SetUrl(const std::wstring& url) {
  target_ = CrackUrl(url);
  port_ = target_.valid ? PortOfScheme(target_.scheme) : INTERNET_PORT{0};
}

void HttpPostClient::PostForm(std::string body) {
  if (port_ == 0 || !EnsureSession()) return;
  const InternetHandle connection(
      WinInet().InternetConnect(session_.Get(), target_.host.c_str(), port_, L"", L"", INTERNET_SERVICE_HTTP, 0, 0));
  if (!connection) return;
  const std::wstring object = target_.path + target_.extraInfo;
  const DWORD flags = kPostFlags | (port_ == INTERNET_DEFAULT_HTTPS_PORT ? INTERNET_FLAG_SECURE : 0);
  const InternetHandle request(
      WinInet().HttpOpenRequest(connection.Get(), L"POST", object.c_str(), nullptr, nullptr, nullptr, flags, 0));
  if (!request) return;
  SendForgivingly(request.Get(), L"Content-Type: application/x-www-form-urlencoded\r\n", std::move(body));
}

bool HttpPostClient::EnsureSession() {
  if (session_) return true;
  session_ = OpenSession(userAgent_);
  ApplyTimeouts();
  return static_cast<bool>(session_);
}

void HttpPostClient::ApplyTimeouts() {
  if (!session_) return;
  DWORD timeout = kTimeoutMs;
  for (const DWORD option : {INTERNET_OPTION_CONNECT_TIMEOUT, INTERNET_OPTION_RECEIVE_TIMEOUT,
                             INTERNET_OPTION_SEND_TIMEOUT, INTERNET_OPTION_DATA_SEND_TIMEOUT}) {
    WinInet().InternetSetOption(session_.Get(), option, &timeout, sizeof timeout);
  }
}
