// Descriptions of error codes.
#pragma once

#include <cstdint>
#include <string>

// The system's text for a Win32 error code exactly as it gives it (its line break at the end included), the server's
// words for ERROR_INTERNET_EXTENDED_ERROR; empty when there is none, as for most WinINet codes. The thread's last error
// stays as it was.
std::wstring GetErrorText(uint32_t code);
