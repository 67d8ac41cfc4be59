#include "install/finishing_tasks.h"

#include <shlobj.h>

#include "install/client_config.h"
#include "install/manifest_paths.h"
#include "install/package_texts.h"
#include "system/files.h"
#include "system/path_names.h"
#include "system/shortcut.h"
#include "system/text.h"
#include "ui/message_boxes.h"
#include "ui/page_controls.h"

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
  const std::wstring program = PathInTarget(targetFolder, Piece(pieces, 0));
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
  RunProcess(false, false, PathInTarget(targetFolder, Piece(pieces, 0)), Piece(pieces, 1));
}
