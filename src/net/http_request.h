// Steps that GET and POST requests share.
#pragma once

#include <cstdint>
#include <string>

#include "net/http_result.h"
#include "net/wininet_api.h"

// Opens a WinINet session with the system's proxy settings.
InternetHandle OpenSession(const std::wstring& userAgent);

// Sends a request; after a certificate of an unknown authority (12045) once more with relaxed security flags.
// `headers` and `body` may be empty. On failure the thread's last error tells why.
bool SendForgivingly(HINTERNET request, const std::wstring& headers, std::string body);

// Reads status and announced length into `result`. False when the status is neither 200 nor 206; `result.error` is then
// what the query left.
bool ReadResponseHead(HINTERNET request, HttpResult& result);

// A piece of a body, as large as one read asks for.
struct BodyChunk {
  char bytes[4096];
  DWORD size = 0;
};

// Reads the next piece. False at the end of the body and after a failure; `result.error` tells which.
bool ReadChunk(HINTERNET request, BodyChunk& chunk, HttpResult& result);

// Sets `result.error` for a body that seems to have ended regularly, but before the length that was announced for it.
// `offset` is the part of the file that was there before.
void FlagShortBody(HINTERNET request, uint64_t offset, HttpResult& result);
