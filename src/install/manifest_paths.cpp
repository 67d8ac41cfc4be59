#include "install/manifest_paths.h"

#include <vector>

#include "install/package_texts.h"
#include "system/path_names.h"
#include "system/text.h"

namespace {

// Empty for the folder that it is relative to.
std::wstring RelativePath(std::wstring_view path) {
  std::wstring relative = NormalizePath(path);
  if (!relative.empty() && IsSeparator(relative.front())) relative.erase(0, 1);
  return relative;
}

// The paths that a package names below its target, as they stand in the manifest.
std::vector<std::wstring> PathsBelowTarget(const Package& package) {
  std::vector<std::wstring> paths;
  for (const std::string& piece : SplitTaskText(package.verify)) paths.push_back(WidenBytes(piece));
  for (const std::string& task : {package.install, package.link, package.execute}) {
    if (!task.empty()) paths.push_back(WidenBytes(SplitTaskText(task)[0]));
  }
  return paths;
}

}  // namespace

bool StaysInside(std::wstring_view path) {
  const std::wstring relative = RelativePath(path);
  return relative.empty() || IsSafeRelativePath(relative);
}

std::wstring PathInTarget(const std::wstring& target, std::wstring_view path) {
  const std::wstring relative = RelativePath(path);
  return relative.empty() ? target : JoinPath(target, relative);
}

std::optional<std::wstring> FindUnsafePath(const Package& package) {
  const std::wstring file = WidenBytes(package.filename);
  if (!IsSafeFileName(file)) return file;
  std::vector<std::wstring> paths = PathsBelowTarget(package);
  if (package.folder.empty()) paths.push_back(package.name);
  for (const std::wstring& path : paths) {
    if (!StaysInside(path)) return path;
  }
  return std::nullopt;
}
