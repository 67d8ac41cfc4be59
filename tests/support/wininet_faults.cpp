#include "support/wininet_faults.h"

#include <utility>

namespace {

// What the entry points, which have no object, work on.
struct {
  int readsBefore;
  BOOL result;
  DWORD error;
  decltype(WinInetApi::InternetReadFile) original;
} readFault;

struct {
  std::deque<DWORD> errors;
  int sends;
  decltype(WinInetApi::HttpSendRequest) original;
} sendFaults;

}  // namespace

ReadFault::ReadFault(int readsBefore, BOOL result, DWORD error) : exchanged_(WinInet().InternetReadFile, &Read) {
  readFault = {readsBefore, result, error, exchanged_.Original()};
}

BOOL WINAPI ReadFault::Read(HINTERNET request, LPVOID buffer, DWORD size, LPDWORD count) {
  if (readFault.readsBefore-- != 0) return readFault.original(request, buffer, size, count);
  *count = 0;
  SetLastError(readFault.error);
  return readFault.result;
}

SendFaults::SendFaults(std::deque<DWORD> errors) : exchanged_(WinInet().HttpSendRequest, &Send) {
  sendFaults = {std::move(errors), 0, exchanged_.Original()};
}

int SendFaults::Sends() const { return sendFaults.sends; }

BOOL WINAPI SendFaults::Send(HINTERNET request, LPCWSTR headers, DWORD headersLength, LPVOID body, DWORD bodyLength) {
  ++sendFaults.sends;
  if (sendFaults.errors.empty()) return sendFaults.original(request, headers, headersLength, body, bodyLength);
  SetLastError(sendFaults.errors.front());
  sendFaults.errors.pop_front();
  return FALSE;
}
