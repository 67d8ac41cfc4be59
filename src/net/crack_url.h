// Taking a URL apart.
#pragma once

#include <windows.h>
#include <wininet.h>

#include <cstdint>
#include <string>

// A port, user name or password in the URL is not kept: the clients always connect to 443 or 80.
struct ParsedUrl {
  uint32_t error = 0;  // why it is no URL; 0 for one
  INTERNET_SCHEME scheme = INTERNET_SCHEME_DEFAULT;
  std::wstring host, path;
  std::wstring extraInfo;  // the query with its "?", or empty
};

ParsedUrl CrackUrl(const std::wstring& url);

// 443 for https, 80 for http, 0 for every other scheme.
INTERNET_PORT PortOfScheme(INTERNET_SCHEME scheme);
