#include "update/replaced_program.h"

#include <windows.h>

#include "core/context.h"
#include "net/file_hash.h"
#include "system/files.h"
#include "system/path_names.h"

std::wstring UpdateFilePath() { return JoinPath(*app.tmpPath.Get(), L"launcher.update"); }

std::wstring NewProgramPath() { return app.exePath + L".new"; }

void RemoveReplacedProgram() {
  constexpr int kTries = 20;
  constexpr DWORD kPauseMs = 50;
  const int tries = app.mainWindow ? 1 : kTries;  // a window must not freeze meanwhile
  for (int i = 1; !DeleteFileW(app.backupPath.c_str()) && i < tries; ++i) {
    const DWORD error = GetLastError();
    if (error != ERROR_ACCESS_DENIED && error != ERROR_SHARING_VIOLATION) return;
    Sleep(kPauseMs);
  }
}

void RestoreReplacedProgram() {
  if (!app.exePath.ends_with(kBackupExtension)) return;
  const std::wstring program = app.exePath.substr(0, app.exePath.size() - kBackupExtension.size());
  if (PathExists(program) || !MoveFileExW(app.exePath.c_str(), program.c_str(), MOVEFILE_WRITE_THROUGH)) return;
  app.backupPath = app.exePath;
  app.exePath = program;
}

void RemoveForgottenCopy() {
  if (app.updateInProgress) return;
  if (FileExistsNonEmpty(UpdateFilePath())) DeleteFileW(NewProgramPath().c_str());  // of an update that was interrupted
  if (!PathExists(app.backupPath)) return;
  const std::string ownHash = ComputeFileMd5(app.exePath, nullptr);
  if (!ownHash.empty() && ownHash == ComputeFileMd5(UpdateFilePath(), nullptr)) DeleteFileW(app.backupPath.c_str());
}
