// WinINet, loaded from the system folder when it is first used: the program's own folder, where browsers put
// downloads, is never searched for it.
#pragma once

#include <windows.h>
#include <wininet.h>

#include "system/handles.h"

struct WinInetApi {
  decltype(&::InternetOpenW) InternetOpen;
  decltype(&::InternetConnectW) InternetConnect;
  decltype(&::InternetCloseHandle) InternetCloseHandle;
  decltype(&::InternetCrackUrlW) InternetCrackUrl;
  decltype(&::InternetReadFile) InternetReadFile;
  decltype(&::InternetQueryOptionW) InternetQueryOption;
  decltype(&::InternetSetOptionW) InternetSetOption;
  decltype(&::InternetGetLastResponseInfoW) InternetGetLastResponseInfo;
  decltype(&::HttpOpenRequestW) HttpOpenRequest;
  decltype(&::HttpAddRequestHeadersW) HttpAddRequestHeaders;
  decltype(&::HttpSendRequestW) HttpSendRequest;
  decltype(&::HttpQueryInfoW) HttpQueryInfo;
};

// The loaded entry points; every one is callable: where WinINet can't be loaded, calls fail with
// ERROR_MOD_NOT_FOUND. Tests exchange single entries. Any thread.
WinInetApi& WinInet();

struct InternetHandleTraits {
  using Type = HINTERNET;
  static Type Invalid() { return nullptr; }
  static void Close(Type handle) { WinInet().InternetCloseHandle(handle); }
};
using InternetHandle = UniqueHandle<InternetHandleTraits>;
