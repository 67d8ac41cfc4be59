// Failures of WinINet that no server can cause at will.
#pragma once

#include <windows.h>

#include <deque>
#include <utility>

#include "net/wininet_api.h"

// While it lives, the next calls of one entry point fail with these errors, in order; 0 lets a call through.
template <auto entry>
class WinInetFaults;
template <typename... Arguments, BOOL (WINAPI* WinInetApi::*entry)(Arguments...)>
class WinInetFaults<entry> {
 public:
  explicit WinInetFaults(std::deque<DWORD> errors) {
    errors_ = std::move(errors);
    original_ = std::exchange(WinInet().*entry, &Call);
  }
  ~WinInetFaults() { WinInet().*entry = original_; }

 private:
  static BOOL WINAPI Call(Arguments... arguments) {
    const DWORD error = errors_.empty() ? 0 : errors_.front();
    if (!errors_.empty()) errors_.pop_front();
    if (error == 0) return original_(arguments...);
    SetLastError(error);
    return FALSE;
  }

  static inline BOOL(WINAPI* original_)(Arguments...);
  static inline std::deque<DWORD> errors_;
};

using SendFaults = WinInetFaults<&WinInetApi::HttpSendRequest>;
using ReadFaults = WinInetFaults<&WinInetApi::InternetReadFile>;
