// A Windows that knows dark mode, of any build: while it lives, the program's look-up of the entry points finds these
// instead of the system's. They record what they are asked and change nothing. The same for the high-contrast setting.
#pragma once

#include <windows.h>

#include <uxtheme.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "app/theme_api.h"
#include "support/test_window.h"

class DarkWindows {
 public:
  explicit DarkWindows(uint32_t build = 22631, uint32_t major = 10);
  ~DarkWindows();
  DarkWindows(const DarkWindows&) = delete;
  DarkWindows& operator=(const DarkWindows&) = delete;

  // The user's settings.
  bool userWantsDark = true;
  bool highContrast = false;
  // What this Windows lacks.
  std::set<int> missingOrdinals;
  bool lacksComposition = false;

  // What was asked for, in order: "135(1)", "104", "106(1)".
  std::vector<std::string> calls;
  std::set<int> lookedUp;  // ordinals
  std::map<HWND, bool> allowed;
  // The style last given to a window; no text is the system's own style.
  struct Style {
    std::optional<std::wstring> name, idList;
    bool operator==(const Style&) const = default;
  };
  std::map<HWND, Style> styles;
  std::vector<std::pair<HWND, bool>> compositionColors;
  int openThemes = 0, themesOpened = 0;
  // Of the last text drawn with a theme.
  struct DrawnText {
    std::wstring text;
    int part = 0, state = 0;
    DWORD flags = 0;
  } drawnText;

  // Sends what the system sends when the user has chosen an appearance.
  static void TellColorSetChange(HWND window);

 private:
  const uint32_t oldMajor_, oldBuild_;
};

// The main window with its components page, on a thread of its own as TestWindow has it, and without a manifest.
std::unique_ptr<TestWindow> OpenMainWindow();
