// Error texts for message boxes.
#pragma once

#include <cstdint>
#include <string>

// "Error: <code>\n", the system's description of the code and "\n" if it has one, then `extra`. A code of 0 stands
// for the calling thread's last error; if that is 0 too, only `extra` is given.
std::wstring FormatErrorMessage(uint32_t code, const std::wstring& extra);
