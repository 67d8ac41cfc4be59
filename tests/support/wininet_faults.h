// Failures of WinINet that no server can cause at will. At most one instance of each class lives at a time.
#pragma once

#include <windows.h>

#include <deque>

#include "net/wininet_api.h"
#include "support/exchanged.h"

// One InternetReadFile is not carried out: it reads nothing, leaves `error` and returns `result`.
class ReadFault {
 public:
  ReadFault(int readsBefore, BOOL result, DWORD error);

 private:
  static BOOL WINAPI Read(HINTERNET request, LPVOID buffer, DWORD size, LPDWORD count);

  Exchanged<decltype(WinInetApi::InternetReadFile)> exchanged_;
};

// The next sends of requests are not carried out and fail with these errors, in order.
class SendFaults {
 public:
  explicit SendFaults(std::deque<DWORD> errors);

  // Sends since this object was made, failed ones included.
  int Sends() const;

 private:
  static BOOL WINAPI Send(HINTERNET request, LPCWSTR headers, DWORD headersLength, LPVOID body, DWORD bodyLength);

  Exchanged<decltype(WinInetApi::HttpSendRequest)> exchanged_;
};
