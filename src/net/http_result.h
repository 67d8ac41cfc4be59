// The outcome of a GET request.
#pragma once

#include <cstdint>

// What became of a transfer. `error` is read where the failure happened and 0 when the body ended regularly or the
// server answered with another status than 200 and 206. A body that ends early without an error of its own (the
// connection was closed) counts as kErrorConnectionAborted when its length was announced and the file is shorter.
struct HttpResult {
  uint32_t error = 0;       // Win32 or WinINet code
  bool cancelled = false;   // the progress callback asked to stop
  uint64_t total = 0;       // body length announced for this response, 0 when none was
  uint32_t statusCode = 0;  // 0 when there was no response
  uint64_t received = 0;    // body bytes
};
