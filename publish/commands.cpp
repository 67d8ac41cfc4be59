#include "commands.h"

#include <algorithm>
#include <iostream>

#include "address.h"
#include "check_site.h"
#include "fill.h"
#include "package_types.h"
#include "terminal.h"
#include "updater.h"

namespace {

int Refuse(const std::string& why) {
  std::cerr << "zendora-publish: " << Printable(why) << "\n";
  return kUnusable;
}

int Tell(const Findings& findings, bool strict, bool json) {
  ClearProgress();
  json ? PrintFindingsAsJson(std::cout, findings) : PrintFindings(std::cout, findings);
  const bool bad = CountOf(findings, Severity::Error) != 0 || (strict && CountOf(findings, Severity::Warning) != 0);
  return bad ? kFindings : kClean;
}

void PrintLine(const std::string& text) { std::cout << Printable(text) << "\n"; }

bool IsFolder(const std::string& path) {
  std::error_code error;
  return std::filesystem::is_directory(PathFromUtf8(path), error);
}

}  // namespace

int RunCheck(const CheckArguments& arguments) {
  const auto names = CheckNames();
  for (const std::string& name : arguments.skipped) {
    if (std::find(names.begin(), names.end(), name) == names.end()) return Refuse("there is no check \"" + name + "\"");
  }
  const auto manifest = LoadManifestFile(arguments.manifest);
  if (!manifest) return Refuse("can't read \"" + arguments.manifest + "\"");
  CheckOptions options;
  options.skipped = {arguments.skipped.begin(), arguments.skipped.end()};
  options.progress = TerminalProgress();
  if (!arguments.files.empty()) {
    if (!IsFolder(arguments.files)) return Refuse("there is no folder \"" + arguments.files + "\"");
    options.filesFolder = arguments.files;
  }
  return Tell(CheckManifest(*manifest, options), arguments.strict, arguments.json);
}

int RunFill(const FillArguments& arguments) {
  const auto manifest = LoadManifestFile(arguments.manifest);
  if (!manifest) return Refuse("can't read \"" + arguments.manifest + "\"");
  if (!manifest->root) return Refuse("\"" + arguments.manifest + "\" is no manifest; zendora-publish check tells why");
  if (!IsFolder(arguments.files)) return Refuse("there is no folder \"" + arguments.files + "\"");
  const Filled filled = FillManifest(*manifest, arguments.files, TerminalProgress());
  ClearProgress();
  for (const Change& change : filled.changes) {
    PrintLine(manifest->path + ":" + std::to_string(change.line) + ": " + change.package + ": " + change.element + " " +
              Quoted(change.before) + " -> " + Quoted(change.after));
  }
  for (const std::string& problem : filled.problems) PrintLine(manifest->path + ": error: " + problem);
  PrintLine(manifest->path + ": " + Counted(filled.changes.size(), "change"));
  if (arguments.output.empty()) {
    if (!filled.changes.empty()) std::cout << "nothing was written; -o FILE writes\n";
  } else if (!ReplaceFile(arguments.output, filled.text)) {
    return Refuse("can't write \"" + arguments.output + "\"");
  }
  return filled.problems.empty() ? kClean : kFindings;
}

int RunDescribe(const DescribeArguments& arguments) {
  Description description = arguments.description;
  if (arguments.filetype == "zip") description.filetype = kZipType;
  if (arguments.filetype == "installer") description.filetype = kInstallerType;
  if (arguments.filetype == "file") description.filetype = "file";
  for (const std::string& source : arguments.urls) {
    const size_t equals = source.find('=');
    if (equals == std::string::npos || equals == 0) return Refuse("--url takes KEY=URL");
    description.urls[source.substr(0, equals)] = source.substr(equals + 1);
  }
  const auto described = DescribePackage(description, TerminalProgress());
  ClearProgress();
  if (!described) return Refuse("can't read \"" + description.file + "\"");
  std::cout << described->text;
  if (described->encrypted) {
    std::cerr << description.file << ": note: it is encrypted; add <password value=\"...\"/> by hand\n";
  }
  if (!described->findings.list.empty()) PrintFindings(std::cerr, described->findings);
  return CountOf(described->findings, Severity::Error) == 0 ? kClean : kFindings;
}

int RunUpdater(const UpdaterArguments& arguments) {
  const UpdaterElement element = DescribeUpdater(arguments.program, arguments.urls, arguments.helpUrl);
  if (!element.refusal.empty()) return Refuse(arguments.program + ": refused: " + element.refusal);
  std::cout << element.text;
  std::cerr << arguments.program << ": version " << element.version
            << (element.isSigned ? ", signed\n" : ", not signed\n");
  return kClean;
}

int RunCheckSite(const CheckSiteArguments& arguments) {
  const auto manifest = LoadManifestFile(arguments.manifest);
  if (!manifest) return Refuse("can't read \"" + arguments.manifest + "\"");
  if (!manifest->root) return Refuse("\"" + arguments.manifest + "\" is no manifest; zendora-publish check tells why");
  if (const std::string fault = AddressFault(arguments.site); !fault.empty()) return Refuse(fault);
  if (!arguments.caFile.empty()) {
    const auto certificates = ReadFile(arguments.caFile);
    if (!certificates) return Refuse("can't read \"" + arguments.caFile + "\"");
    if (certificates->find("-----BEGIN ") == std::string::npos)
      return Refuse("\"" + arguments.caFile + "\" holds no certificate");
  }
  const SiteFindings result =
      CheckSite(*manifest, {arguments.site, arguments.download, arguments.caFile, TerminalProgress()});
  const int code = Tell(result.findings, arguments.strict, arguments.json);
  return result.unreachable ? kNetworkFailed : code;
}
