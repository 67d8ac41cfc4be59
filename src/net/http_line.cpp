#include "net/http_line.h"

#include <winsock2.h>

#include <algorithm>
#include <cwchar>
#include <utility>

#include "net/error_text.h"
#include "net/http_result.h"

namespace {

// How far the thread reads ahead of whoever stores the bytes.
constexpr size_t kReadAhead = 64 * kHttpChunk;
// On a fast line the one who stores is woken when so much has come, instead of for each chunk; on a slow one he looks
// for himself so often. What comes in between is lost when the process is killed.
constexpr size_t kWorthWaking = kReadAhead / 2;
constexpr uint64_t kLookMs = 10;

constexpr DWORD kForgivingFlags = INTERNET_FLAG_IGNORE_CERT_CN_INVALID | INTERNET_FLAG_IGNORE_CERT_DATE_INVALID;
constexpr DWORD kForgivenFaults = SECURITY_FLAG_IGNORE_REVOCATION | SECURITY_FLAG_IGNORE_UNKNOWN_CA |
                                  SECURITY_FLAG_IGNORE_WRONG_USAGE | SECURITY_FLAG_IGNORE_CERT_CN_INVALID |
                                  SECURITY_FLAG_IGNORE_CERT_DATE_INVALID | SECURITY_FLAG_IGNORE_WEAK_SIGNATURE;

class Lock {
 public:
  explicit Lock(SRWLOCK& lock) : lock_(lock) { AcquireSRWLockExclusive(&lock_); }
  ~Lock() { ReleaseSRWLockExclusive(&lock_); }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;

 private:
  SRWLOCK& lock_;
};

// Some systems let the socket's own codes through.
uint32_t NetworkError(uint32_t error) {
  switch (error) {
    case WSAECONNRESET:
    case WSAECONNABORTED:
    case WSAENETDOWN:
    case WSAENETUNREACH:
    case WSAENETRESET:
    case WSAEHOSTUNREACH:
      return ERROR_INTERNET_CONNECTION_RESET;
    case WSAETIMEDOUT:
      return ERROR_INTERNET_TIMEOUT;
    default:
      return error;
  }
}

void SetHeader(HINTERNET request, const std::wstring& header) {
  WinInet().HttpAddRequestHeaders(request, header.c_str(), static_cast<DWORD>(-1),
                                  HTTP_ADDREQ_FLAG_ADD | HTTP_ADDREQ_FLAG_REPLACE);
}

void SetDecoding(HINTERNET request, bool enabled) {
  BOOL value = enabled;
  WinInet().InternetSetOption(request, INTERNET_OPTION_HTTP_DECODING, &value, sizeof value);
}

void RelaxSecurity(HINTERNET request) {
  DWORD flags = 0;
  DWORD size = sizeof flags;
  if (!WinInet().InternetQueryOption(request, INTERNET_OPTION_SECURITY_FLAGS, &flags, &size)) return;
  flags |= kForgivenFaults;
  WinInet().InternetSetOption(request, INTERNET_OPTION_SECURITY_FLAGS, &flags, sizeof flags);
}

// Asked for as text: as a number a length would have 32 bits.
std::optional<std::wstring> HeaderText(HINTERNET request, DWORD header) {
  wchar_t text[128];
  DWORD size = sizeof text;
  if (!WinInet().HttpQueryInfo(request, header, text, &size, nullptr)) return std::nullopt;
  return std::wstring(text, size / sizeof(wchar_t));
}

std::optional<uint64_t> ContentLength(HINTERNET request) {
  const auto text = HeaderText(request, HTTP_QUERY_CONTENT_LENGTH);
  if (!text) return std::nullopt;
  return std::wcstoull(text->c_str(), nullptr, 10);
}

// "bytes 1000-1999/2000"; nothing for a text of another form.
std::optional<uint64_t> ContentStart(HINTERNET request) {
  const auto text = HeaderText(request, HTTP_QUERY_CONTENT_RANGE);
  const size_t digits = text ? text->find_first_of(L"0123456789") : std::wstring::npos;
  if (digits == std::wstring::npos) return std::nullopt;
  return std::wcstoull(text->c_str() + digits, nullptr, 10);
}

// The length before decoding; 0 when it is not known.
uint64_t CompressedContentLength(HINTERNET request) {
  ULONGLONG length = 0;
  DWORD size = sizeof length;
  WinInet().InternetQueryOption(request, INTERNET_OPTION_COMPRESSED_CONTENT_LENGTH, &length, &size);
  return length;
}

HttpHead ReadHead(HINTERNET request) {
  HttpHead head;
  DWORD status = 0;
  DWORD size = sizeof status;
  WinInet().HttpQueryInfo(request, HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &status, &size, nullptr);
  head.statusCode = status;
  head.length = ContentLength(request);
  head.announced = head.length ? *head.length : CompressedContentLength(request);
  head.contentStart = ContentStart(request);
  head.isPage = HeaderText(request, HTTP_QUERY_CONTENT_TYPE).value_or(L"").starts_with(L"text/html");
  return head;
}

}  // namespace

// What the thread and the line share. The thread brings, the line takes; each looks at the other's words under the
// lock.
struct HttpLine::Exchange {
  HttpRequest request;
  HttpSession session;                // closed after the handles below
  InternetHandle connection, opened;  // the line closes them too, when it gives up

  SRWLOCK lock = SRWLOCK_INIT;
  CONDITION_VARIABLE brought = CONDITION_VARIABLE_INIT, taken = CONDITION_VARIABLE_INIT;
  std::optional<HttpHead> head;
  std::string bytes;
  bool finished = false;
  uint32_t error = 0;
  bool abandoned = false;
  bool stopped = false;
  bool calling = false;  // the thread is inside a call on the request, or about to enter it

  void BringHead(const HttpHead& newHead) {
    const Lock guard(lock);
    head = newHead;
    WakeConditionVariable(&brought);
  }

  // Between two reads: leaves the one and enters the next. False when nobody wants more.
  bool BringBytes(const char* chunk, DWORD count) {
    const Lock guard(lock);
    calling = false;
    while (!abandoned && bytes.size() >= kReadAhead) SleepConditionVariableSRW(&taken, &lock, INFINITE, 0);
    if (abandoned) return false;
    bytes.append(chunk, count);
    if (bytes.size() >= kWorthWaking) WakeConditionVariable(&brought);
    calling = true;
    return true;
  }

  // Waits until what was brought has been taken, so that what follows can't be mixed up with it. False as above.
  bool WaitUntilTaken() {
    const Lock guard(lock);
    while (!abandoned && (head || !bytes.empty())) SleepConditionVariableSRW(&taken, &lock, INFINITE, 0);
    return !abandoned;
  }

  // Around every call that may take long. False once abandoned: the handle may have been closed by then, and its value
  // be another request's.
  bool EnterCall() {
    const Lock guard(lock);
    calling = !abandoned;
    return calling;
  }
  bool LeaveCall() {
    const Lock guard(lock);
    calling = false;
    return !abandoned;
  }

  void Finish(uint32_t withError) {
    const Lock guard(lock);
    finished = true;
    error = withError;
    WakeConditionVariable(&brought);
  }

  // Wakes who waits for the thread. The lock keeps this from falling between his look at the word and his wait.
  void Stop() {
    const Lock guard(lock);
    stopped = true;
    WakeConditionVariable(&brought);
  }

  // Keeps a handle that was just opened. Null, with the thread's last error as it was, when that failed or nobody wants
  // it any more.
  HINTERNET Keep(InternetHandle& place, HINTERNET handle) {
    InternetHandle opening(handle);
    const Lock guard(lock);
    if (abandoned) return nullptr;
    place = std::move(opening);
    return handle;
  }

  void Abandon() {
    InternetHandle closedConnection, closedRequest;
    {
      const Lock guard(lock);
      abandoned = true;
      WakeConditionVariable(&taken);
      if (!calling) return;  // the thread ends at its next step, and the handles with it
      closedRequest = std::move(opened);
      closedConnection = std::move(connection);
    }
    closedRequest.Reset();  // the documented way to end what another thread waits for
  }
};

namespace {

using Exchange = HttpLine::Exchange;

// Returns 0 or the error; a connection that is closed without a word has none of its own.
uint32_t Send(HINTERNET request, Exchange& exchange) {
  const std::wstring& headers = exchange.request.headers;
  std::string& body = exchange.request.body;
  if (!exchange.EnterCall()) return ERROR_CANCELLED;
  const BOOL sent = WinInet().HttpSendRequest(request, headers.empty() ? nullptr : headers.c_str(),
                                              static_cast<DWORD>(headers.size()), body.empty() ? nullptr : body.data(),
                                              static_cast<DWORD>(body.size()));
  const DWORD error = GetLastError();
  if (!exchange.LeaveCall()) return ERROR_CANCELLED;
  if (sent) return ERROR_SUCCESS;
  return error != ERROR_SUCCESS ? error : DWORD{ERROR_INTERNET_CONNECTION_ABORTED};
}

// After a certificate of an unknown authority once more with relaxed security flags.
uint32_t SendForgivingly(HINTERNET request, Exchange& exchange) {
  uint32_t error = Send(request, exchange);
  if (error != ERROR_INTERNET_INVALID_CA) return error;
  RelaxSecurity(request);
  return Send(request, exchange);
}

// The one place where requests are opened. Null on failure, with the thread's last error.
HINTERNET OpenRequest(Exchange& exchange) {
  const HttpRequest& wanted = exchange.request;
  const INTERNET_PORT port = PortOfScheme(wanted.target.scheme);
  const HINTERNET connection =
      exchange.Keep(exchange.connection, WinInet().InternetConnect(exchange.session->Get(), wanted.target.host.c_str(),
                                                                   port, L"", L"", INTERNET_SERVICE_HTTP, 0, 0));
  if (!connection) return nullptr;
  SetTimeouts(connection, wanted.timeoutMs);
  const DWORD flags = wanted.flags | kForgivingFlags | (port == INTERNET_DEFAULT_HTTPS_PORT ? INTERNET_FLAG_SECURE : 0);
  const std::wstring object = wanted.target.path + wanted.target.extraInfo;
  const HINTERNET request = exchange.Keep(
      exchange.opened,
      WinInet().HttpOpenRequest(connection, wanted.verb, object.c_str(), nullptr, nullptr, nullptr, flags, 0));
  if (!request) return nullptr;
  SetTimeouts(request, wanted.timeoutMs);  // what is set on a session or connection doesn't reach it on every system
  if (wanted.rangeStart != 0) SetHeader(request, L"Range: bytes=" + std::to_wstring(wanted.rangeStart) + L"-");
  if (wanted.askForGzip) SetHeader(request, L"Accept-Encoding: gzip");
  if (wanted.setDecoding) SetDecoding(request, wanted.askForGzip);
  return request;
}

// Reads to the end of the body. Returns 0 or the error; nothing more is wanted when the line was abandoned.
uint32_t ReadBody(HINTERNET request, Exchange& exchange) {
  char chunk[kHttpChunk];
  if (!exchange.EnterCall()) return ERROR_SUCCESS;
  for (;;) {
    DWORD count = 0;
    SetLastError(ERROR_SUCCESS);  // only an error that this read reports counts
    const BOOL done = WinInet().InternetReadFile(request, chunk, sizeof chunk, &count);
    const DWORD error = GetLastError();
    if (!done || count == 0) {
      exchange.LeaveCall();
      return !done || error == kErrorDecodingFailed ? error : ERROR_SUCCESS;
    }
    if (!exchange.BringBytes(chunk, count)) return ERROR_SUCCESS;
  }
}

// Asks once more, on the same request, for a body that needs no decoding.
uint32_t SendAgainWithoutGzip(HINTERNET request, Exchange& exchange) {
  exchange.request.askForGzip = false;
  SetDecoding(request, false);
  SetHeader(request, L"Accept-Encoding:");  // removes it
  return SendForgivingly(request, exchange);
}

// Returns 0 or the error that ended the exchange.
uint32_t Carry(Exchange& exchange) {
  const HINTERNET request = OpenRequest(exchange);
  if (!request) return GetLastError();
  uint32_t error = SendForgivingly(request, exchange);
  if (error != ERROR_SUCCESS) return error;
  exchange.BringHead(ReadHead(request));
  if (exchange.request.headOnly) return ERROR_SUCCESS;
  error = ReadBody(request, exchange);
  if (error == kErrorDecodingFailed && exchange.request.askForGzip && exchange.WaitUntilTaken()) {
    error = SendAgainWithoutGzip(request, exchange);
    if (error != ERROR_SUCCESS) return error;
    HttpHead head = ReadHead(request);
    head.withoutGzip = true;
    exchange.BringHead(head);
    error = ReadBody(request, exchange);
  }
  return error;
}

DWORD WINAPI CarryToItsEnd(void* shared) {
  const std::unique_ptr<std::shared_ptr<Exchange>> own(static_cast<std::shared_ptr<Exchange>*>(shared));
  const std::shared_ptr<Exchange>& exchange = *own;
  const uint32_t error = Carry(*exchange);
  // The words of the server belong to the thread that it answered.
  if (error == ERROR_INTERNET_EXTENDED_ERROR) RememberServerText();
  exchange->Finish(NetworkError(error));
  return 0;
}

}  // namespace

void SetTimeouts(HINTERNET handle, uint32_t milliseconds) {
  DWORD value = milliseconds;
  for (const DWORD option : {INTERNET_OPTION_CONNECT_TIMEOUT, INTERNET_OPTION_RECEIVE_TIMEOUT,
                             INTERNET_OPTION_SEND_TIMEOUT, INTERNET_OPTION_DATA_SEND_TIMEOUT}) {
    WinInet().InternetSetOption(handle, option, &value, sizeof value);
  }
}

HttpLine::HttpLine(HttpSession session, HttpRequest request, std::stop_token stop, HttpPatience patience)
    : exchange_(std::make_shared<Exchange>()),
      patience_(patience),
      wake_(std::move(stop), [exchange = exchange_.get()] { exchange->Stop(); }) {
  exchange_->request = std::move(request);
  exchange_->session = std::move(session);
  auto shared = std::make_unique<std::shared_ptr<Exchange>>(exchange_);
  const KernelHandle thread(CreateThread(nullptr, 0, CarryToItsEnd, shared.get(), 0, nullptr));
  if (thread) {
    (void)shared.release();  // it is the thread's now
  } else {
    exchange_->Finish(GetLastError());
  }
}

HttpLine::~HttpLine() { exchange_->Abandon(); }

HttpEvent HttpLine::Next() {
  if (used_ == taken_.size()) {
    if (auto event = WaitForMore()) return *event;
  }
  const std::string_view chunk = std::string_view(taken_).substr(used_, kHttpChunk);
  used_ += chunk.size();
  return {.kind = HttpEvent::Bytes, .bytes = chunk};
}

std::string_view HttpLine::TakeRest() {
  const Lock guard(exchange_->lock);
  taken_.erase(0, used_);
  if (!exchange_->head) taken_ += std::exchange(exchange_->bytes, {});  // else they belong to another body
  used_ = taken_.size();
  return taken_;
}

std::optional<HttpEvent> HttpLine::WaitForMore() {
  Exchange& exchange = *exchange_;
  const Lock guard(exchange.lock);
  uint64_t deadline = GetTickCount64() + patience_.silenceMs;
  bool hurrying = false;
  for (;;) {
    const uint64_t now = GetTickCount64();
    if (exchange.stopped && !hurrying) {
      deadline = std::min(deadline, now + patience_.afterStopMs);
      hurrying = true;
    }
    if (hurrying && now >= deadline) return HttpEvent{.kind = HttpEvent::End, .stopped = true};
    if (exchange.head) {
      WakeConditionVariable(&exchange.taken);
      return HttpEvent{.kind = HttpEvent::Head, .head = *std::exchange(exchange.head, std::nullopt)};
    }
    if (!exchange.bytes.empty()) {
      taken_.clear();
      used_ = 0;
      std::swap(taken_, exchange.bytes);
      WakeConditionVariable(&exchange.taken);
      return std::nullopt;
    }
    if (exchange.finished) return HttpEvent{.kind = HttpEvent::End, .error = exchange.error};
    if (now >= deadline) return HttpEvent{.kind = HttpEvent::End, .error = ERROR_INTERNET_TIMEOUT};
    SleepConditionVariableSRW(&exchange.brought, &exchange.lock, static_cast<DWORD>(std::min(deadline - now, kLookMs)),
                              0);
  }
}
