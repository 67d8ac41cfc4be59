#include "system/error_message.h"

#include <windows.h>

#include "app/localization.h"
#include "net/error_text.h"

std::wstring FormatErrorMessage(uint32_t code, const std::wstring& extra) {
  if (code == 0) code = GetLastError();
  if (code == 0) return extra;
  std::wstring message = LoadLocalizedString(STR_ERROR) + L": " + std::to_wstring(code) + L"\n";
  const std::wstring description = GetErrorText(code);
  if (!description.empty()) message += description + L"\n";
  return message + extra;
}
