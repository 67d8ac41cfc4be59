// AppContext: the process-wide state. Each field says who writes it and who reads it; fields without a word about
// threads are written by start-up, before any other thread exists, and only read afterwards.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/window_hold.h"
#include "system/handles.h"
#include "system/shared_state.h"

struct ComponentsPageControls;
struct InstallPageControls;

inline constexpr wchar_t kProductTitle[] = L"Zendora Installer";
inline constexpr wchar_t kWindowClassName[] = L"Zendora_Installer";
inline constexpr wchar_t kApplicationId[] = L"app.zendora.installer";
inline constexpr std::wstring_view kManifestName = L"manifest.xml";  // of the cached manifest's file
inline constexpr std::wstring_view kBackupExtension = L".backup";    // of what a self-update leaves behind

enum Page : int { NoPage = 0, ComponentsPage = 1, InstallPage = 2, ClosingPage = 3 };

// Why the program ends, as the reports tell it.
enum CloseReason : int {
  NotEnding = 0,
  SystemShutdown = 1,
  ClosedByApplication = 2,
  CriticalShutdown = 3,
  LogOff = 4,
  ClosedByMessage = 5,  // sent from another thread or program
};

struct AppContext {
  // Identity and environment
  HINSTANCE instance = nullptr;
  SharedWord<HWND> mainWindow;  // written by the UI thread at creation
  KernelHandle instanceMutex;   // released by the UI thread when the window is destroyed
  bool isAdmin = false;
  bool isWow64 = false;
  uint32_t osMajor = 0, osMinor = 0, osBuild = 0;
  std::wstring userAgent;
  uint32_t startupWaitMs = 0;

  // Paths; none is longer than kMaxPathLength characters
  std::wstring registryKeyPath;  // below HKEY_CURRENT_USER
  std::wstring exePath;
  std::wstring backupPath;  // exePath with kBackupExtension
  std::wstring appDataPath;
  std::wstring dataDir;
  SharedValue<std::wstring> tmpPath;      // also written by the UI thread's folder picker; read by all threads
  SharedValue<std::wstring> installPath;  // likewise
  std::wstring manifestPath;              // the cache of the manifest, in the tmpPath of start-up
  std::wstring commandLine;               // the last one received; UI thread

  // Options and selection
  SharedWord<uint32_t> uiLanguage{LANG_ENGLISH};      // primary language identifier; written by the UI thread
  SharedValue<std::vector<std::string>> installList;  // written by the UI thread; read by all
  SharedValue<std::string> selectedSource;            // written by the UI thread and by LoadManifest; read by all
  std::string uuid;                                   // 36 characters, or empty
  SharedWord<bool> deleteTmpFiles;                    // written by the UI thread; read by the worker
  SharedWord<uint32_t> maxDownloadSpeedKB;            // 0 = no limit; written by the UI thread, read by the worker
  SharedWord<uint32_t> speedLimitBytes;               // maxDownloadSpeedKB * 1024; likewise

  // Window, threads and shutdown
  SharedWord<int> currentPage{NoPage};  // a Page; written by the UI thread, read by all
  // The controls of the page that is shown; null while the page doesn't exist. Written by the UI thread. The record of
  // a page that was replaced stays, because another thread may hold it.
  PublishingWord<ComponentsPageControls*> componentsPage;
  PublishingWord<InstallPageControls*> installPage;
  KernelHandle manifestThread, workerThread;  // UI thread
  bool darkModeSupported = false;
  SharedWord<bool> darkMode;  // written by the UI thread and by that of the update dialog; read by both
  StopWish cancelRequested;   // uttered by the UI thread and the worker, never cleared; polled by all
  // Held by the worker during a run, and by the self-update while it replaces the program: the window that is closed
  // meanwhile waits. Its requests to close are counted by the UI thread.
  WindowHold windowHold;
  SharedWord<int> closeReason{NotEnding};  // a CloseReason; written by the UI thread, read by the worker
  // A relaunch that the main window performs when it is destroyed. Written by the UI thread, or by the manifest
  // thread right before it posts WM_CLOSE: first what the relaunch is like, then that there is one.
  bool restartElevated = false;
  bool restartDropsCommandLine = false;  // the new process gets restartArgs only
  std::wstring restartArgs;
  PublishingWord<bool> restartRequested;
  SharedWord<bool> lockedByUpdate;    // the update has disabled the main window; manifest thread, read by the UI thread
  SharedWord<bool> updateInProgress;  // set by the manifest thread, never cleared; read by the UI and manifest threads
  SharedWord<bool> selectionFromUser;  // installList came from the checked rows; UI thread, read by the worker
  // Size of the primary screen in pixels, measured when the main window is created.
  int desktopWidth = 0, desktopHeight = 0;
};

// Made before the entry point runs and never destroyed, because other threads may outlive the UI thread's last
// return.
extern AppContext& app;
