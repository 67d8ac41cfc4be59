// What is done when a package's files are placed: paths that must be there, programs, shortcuts, registry values.
#include <algorithm>
#include <iterator>
#include <set>
#include <string>

#include "ascii.h"
#include "checks.h"
#include "install/manifest_paths.h"
#include "install/package_texts.h"
#include "package_types.h"
#include "system/path_names.h"
#include "system/text.h"
#include "task_paths.h"

namespace {

using tinyxml2::XMLElement;

constexpr std::string_view kInstallPath = "{install_path}";

template <typename Visitor>
void ForEachTask(const PackageEntry& entry, const char* name, Visitor visit) {
  for (const XMLElement* task : entry.Grandchildren("tasks", name)) visit(*task);
}

template <typename Visitor>
void ForEachRegistryValue(const PackageEntry& entry, Visitor visit) {
  ForEachTask(entry, "reg", [&](const XMLElement& task) {
    for (auto* key = task.FirstChildElement("key"); key; key = key->NextSiblingElement("key")) visit(*key);
  });
}

void CheckPathsStayInside(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  for (const TaskPath& task : TaskPathsOf(entry)) {
    if (StaysInside(WidenBytes(task.path))) continue;
    report.Error(task.line, "the path " + Quoted(task.path) + " of <" + task.element +
                                "> leads out of the target folder or is none; the installer refuses the package");
  }
}

void CheckPathsNamed(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  for (const TaskPath& task : TaskPathsOf(entry)) {
    // An installer program that is no part of an archive is started itself, whatever the path.
    if (!task.path.empty() || (task.element == "install" && entry.package.filetype == "application/x-msdownload"))
      continue;
    report.Error(task.line, "<" + task.element + "> has an empty path" +
                                (task.element == "verify" ? "; one \"|\" too many?" : ""));
  }
}

void CheckPathsAscii(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  for (const TaskPath& task : TaskPathsOf(entry)) {
    if (IsAscii(task.path)) continue;
    report.Warning(task.line, "letters beyond ASCII in the path " + Quoted(task.path) + " of <" + task.element +
                                  "> are taken byte by byte");
  }
}

void CheckShortcutName(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  ForEachTask(entry, "link", [&](const XMLElement& task) {
    const std::string attribute = AttributeOf(task, "title");
    const std::string title = attribute.substr(0, attribute.find('|'));
    if (title.empty() || IsSafeRelativePath(WidenBytes(title + ".lnk"))) return;
    report.Error(task.GetLineNum(),
                 "the title " + Quoted(title) + " of <link> is no name for a file, so there would be no shortcut");
  });
}

// The program joins a task's attributes with "|" and splits them there again. What stands behind the title of a link
// becomes the shortcut's description.
void CheckTaskBars(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  for (const char* name : {"link", "install", "execute"}) {
    ForEachTask(entry, name, [&](const XMLElement& task) {
      const bool isLink = name == std::string("link");
      const std::string path = AttributeOf(task, "path"), second = AttributeOf(task, isLink ? "title" : "args");
      const auto bars = std::count(second.begin(), second.end(), '|');
      if (path.find('|') == std::string::npos && bars <= (isLink ? 1 : 0)) return;
      report.Error(task.GetLineNum(), std::string("\"|\" in <") + name + "> ends the path or its arguments there");
    });
  }
}

// The program compares only the beginning, letter for letter, and takes all else for a key of the machine's root.
bool HasRoot(std::string_view name) {
  constexpr std::string_view kRoots[] = {"HKEY_LOCAL_MACHINE", "HKEY_CURRENT_USER", "HKEY_CLASSES_ROOT",
                                         "HKEY_CURRENT_CONFIG", "HKEY_USERS"};
  return std::find(std::begin(kRoots), std::end(kRoots), name.substr(0, name.find_first_of("\\/"))) != std::end(kRoots);
}

bool LooksLikeRoot(std::string_view name) {
  const std::string lower = LowerAscii(name);
  return lower.starts_with("hk") || lower.find("hkey_") != std::string::npos;
}

void CheckRegistryKeys(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  ForEachTask(entry, "reg", [&](const XMLElement& task) {
    const std::string name = AttributeOf(task, "name");
    if (name.empty()) return;
    if (LooksLikeRoot(name) && !HasRoot(name)) {
      report.Error(task.GetLineNum(), "registry root of " + Quoted(name) +
                                          " is unknown; write it in full, e.g. HKEY_CURRENT_USER\\Software\\...");
    } else if (ParseRegistryKeyPath(name).subkey.empty()) {
      report.Error(task.GetLineNum(), "registry path " + Quoted(name) + " names a root only");
    } else if (name.find('/') != std::string::npos) {
      report.Warning(task.GetLineNum(), "registry path " + Quoted(name) + " holds \"/\", which separates no keys");
    }
  });
}

void CheckRegistryOrder(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  ForEachTask(entry, "reg", [&](const XMLElement& task) {
    const char* order = task.Attribute("order");
    if (!order || order == std::string("before") || order == std::string("after")) return;
    report.Error(task.GetLineNum(), "order " + Quoted(order) + " counts as \"after\"; only \"before\" is early");
  });
}

void CheckRegistryNames(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  ForEachTask(entry, "reg", [&](const XMLElement& task) {
    std::set<std::string> names;
    for (auto* key = task.FirstChildElement("key"); key; key = key->NextSiblingElement("key")) {
      const std::string name = AttributeOf(*key, "name");
      if (names.insert(LowerAscii(name)).second) continue;
      report.Error(key->GetLineNum(),
                   "registry value " + Quoted(name) + " stands in this <reg> once more; one of them is lost");
    }
  });
}

// Whether the text holds something that was meant to be replaced, whatever its spelling.
bool LooksLikePlaceholder(std::string_view text) {
  std::string plain = LowerAscii(text);
  std::erase_if(plain, [](char c) { return c == '_' || c == '-' || c == ' '; });
  constexpr std::string_view kBeginnings[] = {"{install", "%install", "{gtasa", "{mtasa"};
  return std::any_of(std::begin(kBeginnings), std::end(kBeginnings),
                     [&](std::string_view beginning) { return plain.find(beginning) != std::string::npos; });
}

void CheckPlaceholders(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  ForEachRegistryValue(entry, [&](const XMLElement& key) {
    std::string value = AttributeOf(key, "value");
    ReplaceFirst(value, kInstallPath, "");
    if (value.find(kInstallPath) != std::string::npos) {
      report.Error(key.GetLineNum(), "only the first {install_path} of a value is replaced");
    } else if (LooksLikePlaceholder(value)) {
      report.Error(key.GetLineNum(), "the placeholder in " + Quoted(AttributeOf(key, "value")) +
                                         " is unknown; did you mean {install_path}?");
    }
  });
}

// Registry values are the only task in which a placeholder is replaced.
void CheckUselessPlaceholders(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  for (const char* name : {"link", "install", "execute"}) {
    ForEachTask(entry, name, [&](const XMLElement& task) {
      for (const auto* attribute = task.FirstAttribute(); attribute; attribute = attribute->Next()) {
        if (!LooksLikePlaceholder(attribute->Value())) continue;
        report.Error(task.GetLineNum(), std::string("no placeholder is replaced in ") + attribute->Name() + " of <" +
                                            name + ">, " + Quoted(attribute->Value()));
      }
    });
  }
  const Package& package = entry.package;
  const XMLElement* folderName = entry.Child("name");
  const std::string name = folderName ? AttributeOf(*folderName, "value") : "";
  if (package.folder.empty() && (LooksLikePlaceholder(name) || IsKnownFolder(name))) {
    report.Error(entry.LineOf("name"), "no placeholder is replaced in the name " + Quoted(name) +
                                           "; one for a known folder belongs into <folder value=\"...\"/>");
  }
}

// Programs get their arguments, and the registry its values, in the code page of the player's system.
void CheckTaskTextsAscii(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  const auto check = [&](const XMLElement& element, const char* attribute) {
    if (IsAscii(AttributeOf(element, attribute))) return;
    report.Warning(element.GetLineNum(), std::string("letters beyond ASCII in ") + attribute + " of <" +
                                             element.Name() + "> are taken byte by byte");
  };
  ForEachTask(entry, "link", [&](const XMLElement& task) { check(task, "title"); });
  ForEachTask(entry, "install", [&](const XMLElement& task) { check(task, "args"); });
  ForEachTask(entry, "execute", [&](const XMLElement& task) { check(task, "args"); });
  ForEachTask(entry, "reg", [&](const XMLElement& task) { check(task, "name"); });
  ForEachRegistryValue(entry, [&](const XMLElement& key) {
    check(key, "name");
    check(key, "value");
  });
}

void CheckAddons(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  ForEachTask(entry, "addon", [&](const XMLElement& task) {
    const std::string name = AttributeOf(task, "name");
    if (name.empty() || name == "mtasa_config") return;
    report.Error(task.GetLineNum(),
                 "addon " + Quoted(name) + " is unknown and does nothing; there is \"mtasa_config\"");
  });
}

constexpr PackageCheck kChecks[] = {
    {"path", CheckPathsStayInside},
    {"path-empty", CheckPathsNamed},
    {"path-ascii", CheckPathsAscii},
    {"link-title", CheckShortcutName},
    {"task-bar", CheckTaskBars},
    {"registry-key", CheckRegistryKeys},
    {"registry-order", CheckRegistryOrder},
    {"registry-name", CheckRegistryNames},
    {"placeholder", CheckPlaceholders},
    {"placeholder-place", CheckUselessPlaceholders},
    {"task-ascii", CheckTaskTextsAscii},
    {"addon", CheckAddons},
};

}  // namespace

std::span<const PackageCheck> TaskChecks() { return kChecks; }
