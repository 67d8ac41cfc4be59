#include "net/error_text.h"
#include <windows.h>
std::wstring GetErrorText(uint32_t code) {
  wchar_t b[512]; DWORD e = GetLastError();
  DWORD n = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM|FORMAT_MESSAGE_IGNORE_INSERTS,nullptr,code,0,b,512,nullptr);
  if (n) SetLastError(e);
  return std::wstring(b,n);
}
