#include "install/finishing_tasks.h"

#include <shlobj.h>

#include "app/page_controls.h"
#include "install/client_config.h"
#include "install/shortcut.h"
#include "install/task_text.h"
#include "system/files.h"
#include "system/path_names.h"
#include "system/process.h"
#include "system/text.h"

namespace {

// A piece of a task text, widened; empty when there are fewer pieces.
std::wstring Piece(const std::vector<std::string>& pieces, size_t index) {
  return index < pieces.size() ? WidenBytes(pieces[index]) : L"";
}

}  // namespace

void RunAddons(const Package& package, const std::string& targetFolder) {
  for (const std::string& name : package.addons) {
    AppendLog(L"Processing installation addon: " + WidenBytes(name));
    ApplyGameClientConfig(targetFolder, name);
  }
}

void CreateDesktopLink(const Package& package, const std::wstring& targetFolder) {
  const auto pieces = SplitTaskText(package.link);
  const std::wstring program = JoinPath(targetFolder, Piece(pieces, 0));
  if (!FileExistsNonEmpty(program)) return;
  const std::wstring title = Piece(pieces, 1);
  const std::wstring name = title.empty() ? LastComponent(program) : title;
  const std::wstring desktop = SpecialFolder(CSIDL_DESKTOP);
  if (desktop.empty()) return;
  if (!IsSafeRelativePath(name + L".lnk")) {
    AppendLog(L"[ERROR] Unsafe path (" + name + L")");
    return;
  }
  CreateShortcut(program, JoinPath(desktop, name), Piece(pieces, 2));
}

void RunExecuteTask(const Package& package, const std::wstring& targetFolder) {
  const auto pieces = SplitTaskText(package.execute);
  if (pieces.empty()) return;
  RunProcess(false, false, JoinPath(targetFolder, Piece(pieces, 0)), Piece(pieces, 1));
}
