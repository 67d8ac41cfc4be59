#include "task_paths.h"

#include <algorithm>

#include "ascii.h"
#include "install/package_texts.h"

namespace {

void AddTask(const PackageEntry& entry, const char* name, std::vector<TaskPath>& paths) {
  for (const tinyxml2::XMLElement* task : entry.Grandchildren("tasks", name)) {
    paths.push_back({name, AttributeOf(*task, "path"), task->GetLineNum()});
  }
}

}  // namespace

std::vector<TaskPath> TaskPathsOf(const PackageEntry& entry) {
  std::vector<TaskPath> paths;
  for (const std::string& piece : SplitTaskText(entry.package.verify)) {
    paths.push_back({"verify", piece, entry.LineOf("verify")});
  }
  for (const char* name : {"link", "install", "execute"}) AddTask(entry, name, paths);
  return paths;
}

std::string ComparablePath(std::string_view path) {
  std::string comparable;
  while (!path.empty()) {
    const size_t end = std::min(path.find_first_of("\\/"), path.size());
    const std::string_view component = path.substr(0, end);
    if (!component.empty() && component != ".") {
      if (!comparable.empty()) comparable += '\\';
      comparable += LowerAscii(component);
    }
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return comparable;
}
