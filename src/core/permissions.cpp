#include "core/permissions.h"

#include <windows.h>
// Needs windows.h before it.
#include <lmcons.h>

#include "core/context.h"
#include "system/files.h"
#include "system/process.h"

// The Users group goes by its SID, because its name differs between languages.
std::wstring BuildRepairParameters(const std::wstring& appDataPath, const std::wstring& userName) {
  return L"/c icacls \"" + appDataPath + L"\" /grant:r " + userName + L":(F) & icacls \"" + appDataPath +
         L"\\Zendora\" /grant:r *S-1-5-32-545:(OI)(CI)(F) /T /grant:r " + userName + L":(OI)(CI)(F) /T";
}

bool RepairPermissions() {
  // Static: when the name can't be had this time, an earlier one still serves.
  static wchar_t userNameBuffer[UNLEN + 1];
  DWORD capacity = UNLEN + 1;
  GetUserNameW(userNameBuffer, &capacity);
  // By its full path, and in the system folder: of a bare name, its own or icacls, the current folder would be searched
  // first, and this runs elevated.
  return RunElevated(SystemFilePath(L"cmd.exe"), BuildRepairParameters(app.appDataPath, userNameBuffer),
                     app.mainWindow);
}
