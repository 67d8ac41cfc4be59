#include "net/error_text.h"

#include "net/wininet_api.h"
#include "system/shared_state.h"

namespace {

SharedValue<std::wstring>& serverText = *new SharedValue<std::wstring>;

std::wstring LastResponseText() {
  DWORD code = 0;
  DWORD length = 0;
  WinInet().InternetGetLastResponseInfo(&code, nullptr, &length);
  // One more for the terminator, which the length leaves out.
  std::wstring text(++length, L'\0');
  if (!WinInet().InternetGetLastResponseInfo(&code, text.data(), &length)) return L"";
  text.resize(length);
  return text;
}

std::wstring SystemText(uint32_t code) {
  wchar_t* buffer = nullptr;
  const DWORD length =
      FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_FROM_SYSTEM,
                     nullptr, code, 0, reinterpret_cast<wchar_t*>(&buffer), 0, nullptr);
  std::wstring text(buffer, length);
  LocalFree(buffer);
  return text;
}

}  // namespace

std::wstring GetErrorText(uint32_t code) {
  const std::wstring text = code == ERROR_INTERNET_EXTENDED_ERROR ? *serverText.Get() : std::wstring();
  return text.empty() ? SystemText(code) : text;
}

void RememberServerText() { serverText.Set(LastResponseText()); }
