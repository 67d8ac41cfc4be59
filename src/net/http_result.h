// The outcome of a GET request, and the codes that the program reacts to.
#pragma once

#include <windows.h>
#include <wininet.h>

#include <cstdint>

// What became of a transfer. `error` is taken where the failure happened and 0 when the body ended regularly or the
// server answered with another status than 200 and 206. Codes are Win32 or WinINet ones, with these meanings of our
// own: 12002 also after a silence, 12030 for a body that ends before its announced length leaves the file too short and
// for a connection that is closed without an answer, 12031 for every reset, 12152 for an answer that can't be a part of
// the file that was asked for.
struct HttpResult {
  uint32_t error = 0;
  bool cancelled = false;   // by the progress callback, or by the stop that the client was given
  uint64_t total = 0;       // body length announced for this response, 0 when none was
  uint32_t statusCode = 0;  // 0 when there was no response
  uint64_t received = 0;    // body bytes
  bool cutShort = false;    // the body ended before its announced length, whatever was there before
  bool isPage = false;      // the body is a page (text/html) that came as a whole, such as one to sign in
};

// A body that can't be decoded. The headers have no name for it.
inline constexpr uint32_t kErrorDecodingFailed = 12175;

// Whether an answer brings a body that is taken.
constexpr bool IsAccepted(uint32_t statusCode) {
  return statusCode == HTTP_STATUS_OK || statusCode == HTTP_STATUS_PARTIAL_CONTENT;
}

// Errors that a brief outage causes: the same request may succeed a moment later.
constexpr bool IsRetryableNetworkError(uint32_t code) {
  return code == ERROR_INTERNET_TIMEOUT || code == ERROR_INTERNET_NAME_NOT_RESOLVED ||
         code == ERROR_INTERNET_CANNOT_CONNECT || code == ERROR_INTERNET_CONNECTION_ABORTED ||
         code == ERROR_INTERNET_CONNECTION_RESET;
}
