#include "app/main_menu.h"

#include <string>

#include "core/context.h"
#include "core/localization.h"
#include "manifest/manifest_store.h"
#include "system/text.h"
#include "system/threads.h"
#include "ui/mnemonics.h"

namespace {

// Places in the menu bar.
constexpr UINT kFilePlace = 0, kSourcesPlace = 1, kOptionsPlace = 2;
enum class By : BOOL { Command = FALSE, Position = TRUE };

// Gives an item its text and, where there is one, a popup, which the menu owns from then on.
void SetItem(HMENU menu, UINT item, By by, const std::wstring& text, HMENU popup = nullptr) {
  MENUITEMINFOW info{};
  info.cbSize = sizeof(info);
  info.fMask = MIIM_STRING | (popup ? MIIM_SUBMENU : 0u);
  info.dwTypeData = const_cast<wchar_t*>(text.c_str());
  info.hSubMenu = popup;
  SetMenuItemInfoW(menu, item, static_cast<BOOL>(by), &info);
}

void AppendChoice(HMENU popup, UINT_PTR command, const std::wstring& text, bool chosen) {
  AppendMenuW(popup, MF_STRING | (chosen ? MF_CHECKED : MF_UNCHECKED), command, text.c_str());
}

HMENU BuildLanguagePopup(uint32_t current) {
  const HMENU popup = CreatePopupMenu();
  Mnemonics mnemonics;
  for (const auto& [language, name] : UiLanguages()) {
    AppendChoice(popup, language, mnemonics.Mark(name), language == current);
  }
  return popup;
}

HMENU BuildSourcePopup() {
  const auto manifest = CurrentManifest();
  const auto selected = app.selectedSource.Get();
  const HMENU popup = CreatePopupMenu();
  UINT_PTR command = kFirstSourceCommand;
  for (const auto& [key, source] : manifest->sources) {
    AppendChoice(popup, command++, WithoutMnemonic(WidenBytes(source.title)), key == *selected);
  }
  return popup;
}

void FillFilePopup(HMENU menu) {
  const uint32_t language = app.uiLanguage;
  const auto& names = UiLanguages();
  const auto name = names.find(language);
  Mnemonics mnemonics;
  SetItem(menu, kFilePlace, By::Position, LoadMarkedString(STR_FILE));
  SetItem(menu, COMMAND_LANGUAGES, By::Command, mnemonics.Mark(name != names.end() ? name->second : std::wstring()),
          BuildLanguagePopup(language));
  SetItem(menu, COMMAND_ABOUT, By::Command, mnemonics.Mark(LoadLocalizedString(STR_HELP)));
  SetItem(menu, COMMAND_EXIT, By::Command, mnemonics.Mark(LoadLocalizedString(STR_EXIT)));
}

void FillOptionsPopup(HMENU menu) {
  Mnemonics mnemonics;
  SetItem(menu, kOptionsPlace, By::Position, LoadMarkedString(STR_OPTIONS));
  SetItem(menu, COMMAND_SPEED_LIMIT, By::Command, mnemonics.Mark(LoadLocalizedString(STR_SET_SPEED_LIMIT)));
  SetItem(menu, COMMAND_TEMP_FOLDER, By::Command, mnemonics.Mark(LoadLocalizedString(STR_CHANGE_TEMP_FOLDER)));
  SetItem(menu, COMMAND_DELETE_APP_DATA, By::Command, mnemonics.Mark(LoadLocalizedString(STR_DELETE_APP_DATA)));
}

HMENU BuildMenu() {
  const HMENU menu = LoadMenuW(app.instance, MAKEINTRESOURCEW(MENU_MAIN));
  FillFilePopup(menu);
  SetItem(menu, kSourcesPlace, By::Position, LoadMarkedString(STR_DOWNLOAD_SOURCE), BuildSourcePopup());
  FillOptionsPopup(menu);
  return menu;
}

bool IsMenuOpen() {
  GUITHREADINFO thread = {};
  thread.cbSize = sizeof thread;
  return GetGUIThreadInfo(GetCurrentThreadId(), &thread) && (thread.flags & GUI_INMENUMODE) != 0;
}

// A menu that is no window's is nobody's. One that the user has open is still in use; it is left to the process.
void ReplaceMenu(HMENU menu) {
  const HMENU previous = GetMenu(app.mainWindow);
  if (!SetMenu(app.mainWindow, menu)) {
    DestroyMenu(menu);
  } else if (!IsMenuOpen()) {
    DestroyMenu(previous);
  }
}

}  // namespace

void BuildMainMenu() { ReplaceMenu(BuildMenu()); }

bool CanDeleteAppData() { return !IsThreadActive(app.workerThread) && !app.updateInProgress; }

void OnMenuOpens(HMENU popup) {
  EnableMenuItem(popup, COMMAND_DELETE_APP_DATA, CanDeleteAppData() ? MF_ENABLED : MF_GRAYED);
}
