#include "describe.h"

#include <algorithm>

#include "address.h"
#include "ascii.h"
#include "check.h"
#include "package_file.h"
#include "package_types.h"
#include "program_file.h"

namespace {

constexpr char kIndent[] = "      ";

std::string WithoutExtension(const std::string& name) {
  const size_t dot = name.rfind('.');
  return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

// What looks like an installer program is one only when nothing was said; programs can also be copied.
std::string LikelyFiletype(const Description& description, bool isArchive) {
  if (isArchive) return kZipType;
  return LooksLikeProgram(description.file) ? kInstallerType : "";
}

void Complete(Description& description, bool isArchive) {
  if (description.filename.empty()) description.filename = FileNameOf(description.file);
  if (description.title.empty()) description.title = WithoutExtension(description.filename);
  if (description.name.empty() && description.folder.empty()) description.name = description.title;
  if (description.filetype.empty()) description.filetype = LikelyFiletype(description, isArchive);
  if (description.filetype == "file") description.filetype.clear();
  if (description.filetype == kInstallerType && description.install.empty()) description.install = description.filename;
  for (auto& [key, url] : description.urls) {
    if (url.ends_with('/')) url += UrlEscaped(description.filename);
  }
}

std::string TextElement(const char* name, const std::string& text) {
  return text.empty() ? "" : std::string(kIndent) + "<" + name + ">" + XmlEscaped(text) + "</" + name + ">\n";
}

std::string ValueElement(const char* name, const std::string& value) {
  return value.empty() ? "" : std::string(kIndent) + "<" + name + " value=\"" + XmlEscaped(value) + "\"/>\n";
}

std::string Attribute(const char* name, const std::string& value) {
  return value.empty() ? "" : std::string(" ") + name + "=\"" + XmlEscaped(value) + "\"";
}

std::string Joined(const std::vector<std::string>& pieces) {
  std::string text;
  for (const std::string& piece : pieces) text += (text.empty() ? "" : "|") + piece;
  return text;
}

std::string Sources(const Description& description) {
  if (description.urls.empty()) return "";
  std::string text = std::string(kIndent) + "<sources>\n";
  for (const auto& [key, url] : description.urls) {
    text += std::string(kIndent) + "  <source" + Attribute("key", key) + Attribute("url", url) + "/>\n";
  }
  return text + kIndent + "</sources>\n";
}

std::string Task(const char* name, const std::string& path, const std::string& second) {
  return path.empty() ? "" : std::string(kIndent) + "  <" + name + Attribute("path", path) + second + "/>\n";
}

std::string Tasks(const Description& d) {
  std::string text = Task("install", d.install, Attribute("args", d.installArguments));
  for (const std::string& addon : d.addons)
    text += std::string(kIndent) + "  <addon" + Attribute("name", addon) + "/>\n";
  text += Task("link", d.link, Attribute("title", d.linkTitle));
  text += Task("execute", d.execute, Attribute("args", d.executeArguments));
  return text.empty() ? "" : std::string(kIndent) + "<tasks>\n" + text + kIndent + "</tasks>\n";
}

std::string Print(const Description& d, const PackageFile& file) {
  const uint64_t upsize = file.archive.isArchive && d.filetype == kZipType ? file.archive.unpackedSize : file.size;
  return "    <package>\n" + TextElement("title", d.title) + TextElement("group", d.group) +
         TextElement("tooltip", d.tooltip) + ValueElement("name", d.name) + ValueElement("filename", d.filename) +
         ValueElement("filetype", d.filetype) + ValueElement("folder", d.folder) +
         ValueElement("size", std::to_string(file.size)) + ValueElement("upsize", std::to_string(upsize)) +
         ValueElement("md5", file.md5) + ValueElement("verify", Joined(d.verify)) +
         ValueElement("default", d.isDefault ? "true" : "false") + Sources(d) + Tasks(d) + "    </package>\n";
}

// The element in a manifest of its own, with a catalogue of just its sources.
Findings Check(const Description& description, const std::string& element) {
  std::string catalogue;
  for (const auto& [key, url] : description.urls) catalogue += "<source" + Attribute("key", key) + " title=\"-\"/>";
  const std::string defaultKey = description.urls.empty() ? "" : Attribute("default", description.urls.begin()->first);
  const std::string text = "<downloader><sources" + defaultKey + ">" + catalogue + "</sources><packages>\n" + element +
                           "</packages></downloader>";
  Findings findings = CheckManifest(*ParseManifestText(description.file, text), {.skipped = {"catalogue"}});
  // Lines of a text that nobody sees.
  for (Finding& finding : findings.list) finding.line = 0;
  return findings;
}

}  // namespace

std::optional<DescribedPackage> DescribePackage(Description description, const Progress& progress) {
  const PackageFile file = SurveyPackageFile(description.file, true, "", progress);
  if (!file.exists || file.md5.empty()) return std::nullopt;
  Complete(description, file.archive.isArchive);
  DescribedPackage described;
  described.text = Print(description, file);
  described.encrypted = std::any_of(file.archive.entries.begin(), file.archive.entries.end(),
                                    [](const ArchiveEntry& e) { return e.info.encryption != ZipEncryption::None; });
  described.findings = Check(description, described.text);
  return described;
}
