#include "net/crack_url.h"

#include "net/wininet_api.h"

ParsedUrl CrackUrl(const std::wstring& url) {
  // A length of 1 asks for a pointer into the URL.
  URL_COMPONENTSW parts = {};
  parts.dwStructSize = sizeof parts;
  parts.dwSchemeLength = parts.dwHostNameLength = parts.dwUserNameLength = 1;
  parts.dwPasswordLength = parts.dwUrlPathLength = parts.dwExtraInfoLength = 1;
  ParsedUrl parsed;
  if (!WinInet().InternetCrackUrl(url.c_str(), static_cast<DWORD>(url.size()), 0, &parts)) {
    parsed.error = GetLastError();
    return parsed;
  }
  parsed.scheme = parts.nScheme;
  parsed.host.assign(parts.lpszHostName, parts.dwHostNameLength);
  parsed.path.assign(parts.lpszUrlPath, parts.dwUrlPathLength);
  parsed.extraInfo.assign(parts.lpszExtraInfo, parts.dwExtraInfoLength);
  return parsed;
}

INTERNET_PORT PortOfScheme(INTERNET_SCHEME scheme) {
  if (scheme == INTERNET_SCHEME_HTTPS) return INTERNET_DEFAULT_HTTPS_PORT;
  if (scheme == INTERNET_SCHEME_HTTP) return INTERNET_DEFAULT_HTTP_PORT;
  return 0;
}
