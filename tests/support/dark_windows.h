// A Windows that knows dark mode, of any build: while it lives, the program's look-up of the entry points finds these
// instead of the system's. They record what they are asked and change nothing. The same for the high-contrast setting.
#pragma once

#include <windows.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "support/exchanged.h"
#include "support/replaced_import.h"

class DarkWindows {
 public:
  explicit DarkWindows(uint32_t build = 22631, uint32_t major = 10);
  ~DarkWindows();

  // The user's settings.
  bool userWantsDark = true, highContrast = false;
  // An entry point that this Windows lacks: its name, or its ordinal as "#135".
  std::string missing;

  std::map<HWND, bool> allowed, darkTitleBars;
  // The style last given to a window; no text is the system's own style.
  struct Style {
    std::optional<std::wstring> name, idList;
    bool operator==(const Style&) const = default;
  };
  std::map<HWND, Style> styles;
  std::wstring themedText;  // the last one drawn

  // Sends what the system sends when the user has chosen an appearance.
  static void TellColorSetChange(HWND window);

 private:
  static FARPROC WINAPI FindEntry(HMODULE module, const char* name);
  static BOOL WINAPI AnswerHighContrast(UINT action, UINT size, void* value, UINT flags);

  Exchanged<uint32_t> major_, build_;
  ReplacedImport<decltype(&GetProcAddress)> getProcAddress_;
  ReplacedImport<decltype(&SystemParametersInfoW)> systemParameters_;
};
