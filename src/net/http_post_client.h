// Form posts over WinINet, fire and forget. An instance belongs to the thread that made it.
#pragma once

#include <string>

#include "net/crack_url.h"
#include "net/wininet_api.h"

class HttpPostClient {
 public:
  // Uses app.userAgent; all time-outs are 3 seconds.
  HttpPostClient();

  // The http or https address that forms go to. With any other address PostForm does nothing.
  void SetUrl(const std::wstring& url);

  // Posts a URL-encoded form. Never reads the answer; every failure is silent.
  void PostForm(std::string body);

 private:
  bool EnsureSession();
  void ApplyTimeouts();

  std::wstring userAgent_;
  ParsedUrl target_;
  INTERNET_PORT port_ = 0;  // 0: no target
  InternetHandle session_;
};
