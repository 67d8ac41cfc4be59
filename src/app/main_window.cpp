#include "app/main_window.h"

#include <commctrl.h>

#include <optional>
#include <string>

#include "app/commands.h"
#include "app/component_list.h"
#include "app/dialogs.h"
#include "app/keyboard.h"
#include "app/main_menu.h"
#include "app/manifest_thread.h"
#include "app/pages.h"
#include "app/shutdown.h"
#include "app/single_instance.h"
#include "app/window_scale.h"
#include "core/context.h"
#include "core/localization.h"
#include "core/settings.h"
#include "core/window_messages.h"
#include "install/browse_for_path.h"
#include "install/transfer_status.h"
#include "system/threads.h"
#include "ui/mailbox.h"
#include "ui/message_boxes.h"
#include "ui/page_controls.h"
#include "ui/scale.h"
#include "ui/taskbar.h"
#include "ui/theme/dark_menu_bar.h"
#include "ui/theme/theme.h"

namespace {

void OnInfoTip(NMLVGETINFOTIPW& request) {
  const std::wstring tooltip = ComponentTooltip(request.iItem);
  if (tooltip.empty() || request.cchTextMax <= 0) return;
  const size_t length = tooltip.copy(request.pszText, static_cast<size_t>(request.cchTextMax) - 1);
  request.pszText[length] = L'\0';
}

LRESULT OnNotify(LPARAM lParam) {
  const auto header = reinterpret_cast<NMHDR*>(lParam);
  switch (header->code) {
    case HDN_BEGINTRACKW:
      return TRUE;  // the column keeps its width
    case LVN_GETINFOTIPW:
      OnInfoTip(*reinterpret_cast<NMLVGETINFOTIPW*>(lParam));
      return 0;
    case LVN_ITEMCHANGED:
      if (reinterpret_cast<const NMLISTVIEW*>(lParam)->uNewState & LVIS_STATEIMAGEMASK) UpdateTotalSize();
      return 0;
    case NM_SETFOCUS:
      OnListFocus(header->hwndFrom);
      return 0;
    case NM_DBLCLK:
      CheckOnlyComponent(reinterpret_cast<const NMITEMACTIVATE*>(lParam)->iItem);
      return 0;
    default:
      return 0;
  }
}

void OnComponentsPageClick(const ComponentsPageControls& page, HWND control) {
  if (control == page.selectFolderButton.Window()) {
    if (BrowseForPath(app.mainWindow, BrowseMode::InstallFolder)) page.installPathEdit.SetText(*app.installPath.Get());
  } else if (control == page.installButton.Window()) {
    StartInstallation();
  }
}

void OnInstallPageClick(const InstallPageControls& page, HWND control) {
  if (control == page.deleteTmpCheckbox.Window()) {
    app.deleteTmpFiles = page.deleteTmpCheckbox.IsChecked();
    SaveDeleteTmpFiles();
  } else if (control == page.cancelButton.Window()) {
    CancelOrExit();
  }
}

void OnClick(HWND control) {
  if (app.updateInProgress) {
    PromptDownloadLatest({}, ERROR_SUCCESS);
  } else if (app.currentPage == ComponentsPage) {
    OnComponentsPageClick(*app.componentsPage, control);
  } else if (app.currentPage == InstallPage) {
    OnInstallPageClick(*app.installPage, control);
  }
}

// False when the system is to see the command too.
bool OnMenuCommand(HWND window, int id) {
  switch (id) {
    case COMMAND_ABOUT:
      AboutDialog();
      return true;
    case COMMAND_EXIT:
      // The process must not end while an update has replaced half of the program; a close request waits for that.
      if (app.updateInProgress) {
        PostMessageW(window, WM_CLOSE, 0, 0);
      } else {
        DestroyWindow(window);
      }
      return true;
    case COMMAND_TEMP_FOLDER:
      BrowseForPath(window, BrowseMode::TempFolder);
      return true;
    case COMMAND_SPEED_LIMIT:
      SpeedLimitDialog();
      return true;
    case COMMAND_DELETE_APP_DATA:
      if (CanDeleteAppData()) DeleteAppData();
      return true;
    default:
      break;
  }
  if (id >= kFirstSourceCommand) {
    SelectSource(id - kFirstSourceCommand);
  } else if (UiLanguages().contains(static_cast<uint32_t>(id))) {
    SetUiLanguage(static_cast<uint32_t>(id));
  }
  return false;
}

LRESULT OnCommand(HWND window, WPARAM wParam, LPARAM lParam) {
  const WORD notification = HIWORD(wParam);
  if (notification == EN_CHANGE) return 0;
  if (notification == BN_CLICKED && lParam) {
    OnClick(reinterpret_cast<HWND>(lParam));
  } else if (OnMenuCommand(window, LOWORD(wParam))) {
    return 0;
  }
  return DefWindowProcW(window, WM_COMMAND, wParam, lParam);
}

// Labels and check boxes. An edit that is only read sends the same message, and grey is right for it.
bool IsOnWindowBackground(UINT message, HWND control) {
  const ComponentsPageControls* const page = app.componentsPage;
  return message == WM_CTLCOLORSTATIC && !(page && control == page->installPathEdit.Window());
}

LRESULT OnControlColors(UINT message, HDC dc, HWND control) {
  if (message == WM_CTLCOLORDLG || message == WM_CTLCOLORSTATIC) SetBkMode(dc, TRANSPARENT);
  HBRUSH brush = message == WM_CTLCOLORBTN ? DarkButtonColors(dc) : DarkStaticColors(dc);
  // Without a brush the system takes the grey of dialogs, but this window is white.
  if (!brush && IsOnWindowBackground(message, control)) brush = LightStaticColors(dc);
  return reinterpret_cast<LRESULT>(brush);
}

LRESULT OnFramePaint(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const LRESULT result = DefWindowProcW(window, message, wParam, lParam);
  PaintLineUnderMenuBar(window);
  return result;
}

void OnSettingChange(WPARAM wParam, LPARAM lParam) {
  if (!OnMainWindowSettingChange(wParam, lParam)) return;
  if (const InstallPageControls* page = app.installPage) ThemeUnstyledControl(page->deleteTmpCheckbox.Window());
}

// What other threads ask for (core/window_messages.h). True for their messages.
bool AnswerThreads(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case kFillComponentListMessage:
      PopulateComponentList();
      return true;
    case kSpeedTimerMessage:
      OnSpeedTimerRequest(wParam != FALSE);
      return true;
    case kShowNotesMessage:
      pageNotes.OnMessage(window, wParam);
      return true;
    case kTaskbarMessage:
      OnTaskbarMessage(window, wParam, lParam);
      return true;
    default:
      return false;
  }
}

// The messages that concern the window's looks. Nothing where the system is to answer.
std::optional<LRESULT> AnswerAppearance(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_ERASEBKGND:
      EraseBackground(window, reinterpret_cast<HDC>(wParam));
      return 1;
    case WM_SETTINGCHANGE:
      OnSettingChange(wParam, lParam);
      return 0;
    case WM_SYSCOLORCHANGE:
      PassColorChange(window);
      return 0;
    case kScaleChangedMessage:
      OnScaleChanged(window, LOWORD(wParam), *reinterpret_cast<const RECT*>(lParam));
      return 0;
    case kScaledSizeMessage:
      *reinterpret_cast<SIZE*>(lParam) = MainWindowSizeAt(static_cast<int>(wParam));
      return TRUE;
    case WM_NCPAINT:
    case WM_NCACTIVATE:
      return OnFramePaint(window, message, wParam, lParam);
    case kDrawMenuBarMessage:
    case kDrawMenuBarItemMessage:
      return DrawMenuBarPart(window, message, lParam) ? std::optional<LRESULT>(TRUE) : std::nullopt;
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORBTN:
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORSTATIC:
      return OnControlColors(message, reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam));
    case WM_THEMECHANGED:
      ForgetMenuTheme();
      return 0;
    default:
      return std::nullopt;
  }
}

LRESULT CALLBACK MainWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (AnswerThreads(window, message, wParam, lParam)) return 0;
  if (const auto answer = AnswerAppearance(window, message, wParam, lParam)) return *answer;
  switch (message) {
    case WM_NCCREATE:
      app.mainWindow = window;  // from the first message on
      SetScale(DpiOf(window));
      break;
    case WM_DESTROY:
      OnDestroy();
      return 0;
    case WM_ENABLE:
      // The end of any dialog or box enables its owner, but an update that has begun meanwhile needs it disabled.
      if (wParam && app.lockedByUpdate) EnableWindow(window, FALSE);
      break;
    case WM_CLOSE:
      if (!OnCloseRequest()) return 0;
      break;
    case WM_INITMENUPOPUP:
      OnMenuOpens(reinterpret_cast<HMENU>(wParam));
      return 0;
    case WM_ACTIVATE:
      OnActivate(LOWORD(wParam));
      break;
    case WM_SETFOCUS:
      FocusPage();
      return 0;
    case WM_ENDSESSION:
      if (wParam) OnEndSession(lParam);
      return 0;
    case WM_COPYDATA:
      OnForwardedCommandLine(wParam, *reinterpret_cast<const COPYDATASTRUCT*>(lParam));
      return 0;
    case WM_NOTIFY:
      return OnNotify(lParam);
    case WM_COMMAND:
      return OnCommand(window, wParam, lParam);
    default:
      break;
  }
  return DefWindowProcW(window, message, wParam, lParam);
}

HICON LoadApplicationIcon(HINSTANCE instance, int widthMetric, int heightMetric) {
  return static_cast<HICON>(LoadImageW(instance, MAKEINTRESOURCEW(ICON_APPLICATION), IMAGE_ICON,
                                       GetSystemMetrics(widthMetric), GetSystemMetrics(heightMetric), LR_SHARED));
}

}  // namespace

void RegisterMainWindowClass(HINSTANCE instance) {
  const INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_LISTVIEW_CLASSES | ICC_PROGRESS_CLASS | ICC_BAR_CLASSES};
  InitCommonControlsEx(&controls);
  WNDCLASSEXW description{};
  description.cbSize = sizeof(description);
  description.style = CS_HREDRAW | CS_VREDRAW;
  description.lpfnWndProc = MainWindowProc;
  description.hInstance = instance;
  description.hIcon = LoadApplicationIcon(instance, SM_CXICON, SM_CYICON);
  description.hIconSm = LoadApplicationIcon(instance, SM_CXSMICON, SM_CYSMICON);
  description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  description.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
  description.lpszMenuName = MAKEINTRESOURCEW(MENU_MAIN);
  description.lpszClassName = kWindowClassName;
  RegisterClassExW(&description);
}

bool CreateMainWindow(HINSTANCE instance, int showCommand) {
  app.instance = instance;
  MeasureDesktop();
  CreateThemeBrushes();
  const HWND window = CreateWindowExW(0, kWindowClassName, LoadLocalizedString(STR_PRODUCT_TITLE).c_str(),
                                      kMainWindowStyle, 0, 0, 0, 0, nullptr, nullptr, instance, nullptr);
  if (!window) return false;
  PlaceInMiddle(window);
  HideKeyboardCues(window);
  if (app.darkMode) AllowDarkMode(window);
  ShowComponentsPage();
  SetUiLanguage(app.uiLanguage);
  SetForegroundWindow(window);
  ShowWindow(window, showCommand);
  UpdateWindow(window);
  StartThreadOnce(app.manifestThread, ManifestThreadProc);
  return true;
}
