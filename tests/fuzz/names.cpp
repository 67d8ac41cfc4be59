// Names and paths out of manifests and archives: what is taken for safe stays inside.
#include <vector>

#include "fuzz/fuzzing.h"
#include "install/manifest_paths.h"
#include "install/package_texts.h"
#include "system/path_names.h"
#include "system/text.h"

namespace {

const std::wstring kTarget = L"C:\\Games\\Target";

void RequireInsideTarget(std::wstring_view path) {
  const std::wstring whole = PathInTarget(kTarget, path);
  if (whole == kTarget) return;
  Require(whole.starts_with(kTarget + L"\\"), "a path in the target begins with it");
  Require(!LeadsOut(std::wstring_view(whole).substr(kTarget.size() + 1)),
          "a path that stays inside leads nowhere else");
}

void TryPath(const std::wstring& path) {
  const std::wstring normal = NormalizePath(path);
  Require(NormalizePath(normal) == normal, "a normal path stays as it is");
  if (IsSafeRelativePath(path)) Require(!LeadsOut(path), "a safe path stays inside");
  if (IsSafeFileName(path)) Require(!LeadsOut(path) && LastComponent(path) == path, "a safe name has no folder");
  if (StaysInside(path)) RequireInsideTarget(path);
  if (const std::wstring folder = ParentFolder(normal); !folder.empty()) {
    const std::wstring joined = JoinPath(folder, LastComponent(normal));
    Require(joined.size() == normal.size() && normal.starts_with(folder), "folder and name make the path again");
  }
}

void TryPackage(const Package& package) {
  if (FindUnsafePath(package)) return;
  Require(!LeadsOut(WidenBytes(package.filename)), "a package's file stays in its folder");
  for (const std::string& piece : SplitTaskText(package.verify)) RequireInsideTarget(WidenBytes(piece));
  for (const std::string& task : {package.install, package.link, package.execute}) {
    if (!task.empty()) RequireInsideTarget(WidenBytes(SplitTaskText(task)[0]));
  }
  RequireInsideTarget(package.name);
}

}  // namespace

void FuzzOne(const std::string& input) {
  TryPath(WidenBytes(input));
  TryPath(Utf8ToWide(input));

  const std::wstring entry = EntryPath(input);
  Require(entry.find(L'/') == std::wstring::npos, "an entry's path has only one kind of separator");
  if (IsSafeRelativePath(entry)) Require(!LeadsOut(entry), "a safe entry stays inside");

  std::string joined;
  for (const std::string& piece : SplitTaskText(input)) joined.append("|").append(piece);
  Require(joined == (input.empty() ? "" : "|" + input), "the pieces of a task make it again");

  Package package;
  std::string_view rest = input;
  package.filename = TakeLine(rest);
  for (const auto field : {&Package::verify, &Package::install, &Package::link, &Package::execute}) {
    package.*field = TakeLine(rest);
  }
  package.name = WidenBytes(rest);
  TryPackage(package);
}
