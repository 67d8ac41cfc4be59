#include "net/http_post_client.h"

#include <utility>

#include "net/http_client.h"
#include "net/http_line.h"

namespace {

constexpr uint32_t kTimeoutMs = 3000;
constexpr uint32_t kPhases = 3;  // connecting, sending, the head of the answer
constexpr uint32_t kAfterStopMs = 2000;

}  // namespace

HttpPostClient::HttpPostClient(std::wstring userAgent, std::stop_token stop)
    : userAgent_(std::move(userAgent)), stop_(std::move(stop)) {
  EnsureSession();
}

void HttpPostClient::SetUrl(const std::wstring& url) { target_ = CrackUrl(url); }

void HttpPostClient::PostForm(std::string body) {
  if (givenUp_ || PortOfScheme(target_.scheme) == 0 || !EnsureSession()) return;
  HttpRequest request;
  request.verb = L"POST";
  request.target = target_;
  request.flags = INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE;
  request.headers = L"Content-Type: application/x-www-form-urlencoded\r\n";
  request.body = std::move(body);
  request.headOnly = true;
  request.timeoutMs = kTimeoutMs;
  HttpLine line(session_, std::move(request), stop_, {.silenceMs = kPhases * kTimeoutMs, .afterStopMs = kAfterStopMs});
  givenUp_ = line.Next().stopped;
}

bool HttpPostClient::EnsureSession() {
  if (session_) return true;
  session_ = OpenSession(userAgent_);
  if (session_) SetTimeouts(session_->Get(), kTimeoutMs);
  return static_cast<bool>(session_);
}
