#include "install/verify_list.h"

#include <windows.h>

#include "app/localization.h"
#include "app/message_boxes.h"
#include "install/task_text.h"
#include "net/telemetry_reports.h"
#include "system/files.h"
#include "system/path_names.h"
#include "system/text.h"

namespace {

void TellWhatIsMissing(const std::wstring& path) {
  const std::wstring text = LoadLocalizedString(STR_COMPONENT_FAILED) + L"\n\n" +
                            LoadLocalizedString(STR_REQUIRED_FILE_MISSING) + L":\n" + path + L"\n\n" +
                            LoadLocalizedString(STR_OTHER_PROGRAM_HINT);
  ShowBox(text, LoadLocalizedString(STR_ERROR), MB_ICONERROR);
}

}  // namespace

PlacementResult CheckVerifyList(Installation& run, const Package& package, const std::wstring& target) {
  for (const std::string& piece : SplitTaskText(package.verify)) {
    const std::wstring path = JoinPath(target, WidenBytes(piece));
    if (IsDirectory(path) || PathExists(path)) continue;
    const DWORD error = GetLastError();
    run.errorRecords += VerifyFailedRecord(package.filename, error, path);
    TellWhatIsMissing(path);
    return {.error = error};
  }
  return {.ok = true};
}
