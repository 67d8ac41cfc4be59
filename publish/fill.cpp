#include "fill.h"

#include <map>

#include "check.h"
#include "md5.h"
#include "package_file.h"
#include "package_types.h"
#include "system/path_names.h"
#include "system/text.h"
#include "value_spans.h"

namespace {

// What the file says, by the name of the element.
using Values = std::map<std::string, std::string>;

// Empty, and a problem, when the file can't say it.
Values ValuesOf(const Package& package, const std::string& filesFolder, const Progress& progress, Filled& filled) {
  const std::string path = PackagePath(filesFolder, package);
  const auto fail = [&](const std::string& why) {
    filled.problems.push_back(package.filename + ": " + why);
    return Values();
  };
  if (!IsSafeFileName(WidenBytes(package.filename))) return fail("the filename is no plain file name");
  const auto size = SizeOfFile(path);
  if (!size) return fail("there is no file \"" + path + "\"");
  Values values = {{"size", std::to_string(*size)}, {"md5", Md5OfFile(path, progress)}};
  if (values["md5"].empty()) return fail("the file can't be read to its end");
  if (package.filetype == kZipType) {
    const Archive archive = SurveyArchive(path, "", Unpack::No, {});
    if (!archive.isArchive || !archive.complete) return fail("the file is no zip archive, or a damaged one");
    values["upsize"] = std::to_string(archive.unpackedSize);
  } else if (package.filetype != kInstallerType) {
    values["upsize"] = std::to_string(*size);
  }
  return values;
}

}  // namespace

Filled FillManifest(const ManifestFile& manifest, const std::string& filesFolder, const Progress& progress) {
  Filled filled;
  const PackageValues found = FindPackageValues(manifest.text);
  if (found.packageCount != manifest.packages.size()) {
    filled.text = manifest.text;
    filled.problems.push_back("the places of the values could not be found");
    return filled;
  }
  size_t copied = 0;
  auto span = found.spans.begin();
  for (size_t i = 0; i < manifest.packages.size(); ++i) {
    const Package& package = manifest.packages[i].package;
    const Values values = ValuesOf(package, filesFolder, progress, filled);
    for (; span != found.spans.end() && span->package == i; ++span) {
      const auto value = values.find(span->element);
      const std::string before = manifest.text.substr(span->begin, span->end - span->begin);
      if (value == values.end() || value->second == before) continue;
      filled.text.append(manifest.text, copied, span->begin - copied).append(value->second);
      copied = span->end;
      filled.changes.push_back({span->line, package.filename, span->element, before, value->second});
    }
  }
  filled.text.append(manifest.text, copied);
  return filled;
}
