// Steps that GET and POST requests share.
#pragma once

#include <cstdint>
#include <string>

#include "net/http_client.h"
#include "net/wininet_api.h"

// Opens a WinINet session with the system's proxy settings.
InternetHandle OpenSession(const std::wstring& userAgent);

// Sends a request; after a certificate of an unknown authority (12045) once more with relaxed security flags.
// `headers` and `body` may be empty. On failure the thread's last error tells why.
bool SendForgivingly(HINTERNET request, const std::wstring& headers, std::string body);

// Reads status and announced length into `result`. False when the status is neither 200 nor 206.
bool ReadResponseHead(HINTERNET request, HttpResult& result);
