// One request and its answer, on a thread of their own: whoever waits for the answer can give up at any moment,
// whatever the system is busy with (a name, a connection, a server that says nothing).
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

#include "net/crack_url.h"
#include "net/wininet_api.h"

// What is asked for. The strings are the caller's only until HttpLine has been constructed.
struct HttpRequest {
  const wchar_t* verb = L"GET";
  ParsedUrl target;         // http or https
  DWORD flags = 0;          // INTERNET_FLAG_...; those for https and for forgiven certificates are added
  uint64_t rangeStart = 0;  // not 0: only the bytes from here on, as they are
  bool askForGzip = false;
  bool setDecoding = false;  // tells WinINet whether to decode gzip
  std::wstring headers;      // whole lines, for the body
  std::string body;
  bool headOnly = false;   // the body of the answer is of no interest
  uint32_t timeoutMs = 0;  // of each of WinINet's own phases
};

// The head of an answer.
struct HttpHead {
  uint32_t statusCode = 0;               // 0: there was no answer
  uint64_t announced = 0;                // length of the body, or that before decoding; 0 when neither is known
  std::optional<uint64_t> length;        // Content-Length
  std::optional<uint64_t> contentStart;  // first byte, of a part of a file (Content-Range)
  bool isPage = false;                   // Content-Type text/html
  bool withoutGzip = false;              // asked for once more, because what came couldn't be decoded: begin anew
};

// How long to wait.
struct HttpPatience {
  uint32_t silenceMs = 0;    // without anything new
  uint32_t afterStopMs = 0;  // what an answer may still take when the wait is stopped
};

struct HttpEvent {
  enum { Head, Bytes, End } kind = End;
  HttpHead head = {};
  std::string_view bytes = {};  // at most kHttpChunk; valid until the next call
  uint32_t error = 0;           // End: 0, or why there is no more; ERROR_INTERNET_TIMEOUT after a silence
  bool stopped = false;         // End: by the stop
};

inline constexpr size_t kHttpChunk = 4096;

// Sets all of WinINet's time-outs of a session, connection or request.
void SetTimeouts(HINTERNET handle, uint32_t milliseconds);

// A WinINet session. Closing it closes all that was opened in it, and what is opened next may get the same handles: it
// is shared by the threads of its requests, the last of which closes it.
using HttpSession = std::shared_ptr<const InternetHandle>;

class HttpLine {
 public:
  // Starts the request in a session.
  HttpLine(HttpSession session, HttpRequest request, std::stop_token stop, HttpPatience patience);
  // Closes the connection, also one that is still in use.
  ~HttpLine();
  HttpLine(const HttpLine&) = delete;
  HttpLine& operator=(const HttpLine&) = delete;

  // Waits for what comes next: a head, then bytes, then the end; after a head `withoutGzip` all of it once more. Where
  // there is no answer the end comes at once. After the end it must not be called again.
  HttpEvent Next();

  // What has come of the body and was not handed out yet, for whoever gives the transfer up; valid until the next call.
  std::string_view TakeRest();

  struct Exchange;

 private:
  // A head or the end; nothing when bytes have been taken over.
  std::optional<HttpEvent> WaitForMore();

  std::shared_ptr<Exchange> exchange_;  // shared with the thread, which may outlive the line
  HttpPatience patience_;
  std::string taken_;  // bytes taken over from the thread
  size_t used_ = 0;    // of them handed out
  std::stop_callback<std::function<void()>> wake_;
};
