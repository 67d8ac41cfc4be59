// Form posts over WinINet, fire and forget. An instance belongs to the thread that made it.
#pragma once

#include <stop_token>
#include <string>

#include "net/crack_url.h"
#include "net/http_line.h"

class HttpPostClient {
 public:
  // All time-outs are 3 seconds. `stop` leaves a post that is under way, and each later one, 2 seconds at most; once
  // they didn't suffice, no more is posted.
  explicit HttpPostClient(std::wstring userAgent, std::stop_token stop = {});

  // The http or https address that forms go to. With any other address PostForm does nothing.
  void SetUrl(const std::wstring& url);

  // Posts a URL-encoded form. Never reads the answer; every failure is silent.
  void PostForm(std::string body);

 private:
  bool EnsureSession();

  std::wstring userAgent_;
  std::stop_token stop_;
  ParsedUrl target_;
  HttpSession session_;
  bool givenUp_ = false;
};
