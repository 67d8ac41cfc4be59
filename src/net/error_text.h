// Descriptions of error codes.
#pragma once

#include <cstdint>
#include <string>

// The system's text for a Win32 error code exactly as it gives it (its line break at the end included), the words that
// a server said last for ERROR_INTERNET_EXTENDED_ERROR; empty when there is none, as for most WinINet codes. Any
// thread.
std::wstring GetErrorText(uint32_t code);

// Keeps the words with which a server has just refused the calling thread's request.
void RememberServerText();
