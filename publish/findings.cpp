#include "findings.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>

namespace {

constexpr size_t kLongestQuote = 120;

const char* NameOf(Severity severity) {
  constexpr const char* kNames[] = {"note", "warning", "error"};
  return kNames[static_cast<size_t>(severity)];
}

std::vector<Finding> InLineOrder(const Findings& findings) {
  std::vector<Finding> sorted = findings.list;
  std::stable_sort(sorted.begin(), sorted.end(), [](const Finding& a, const Finding& b) { return a.line < b.line; });
  return sorted;
}

}  // namespace

void Reporter::Tell(Severity severity, int line, std::string message) const {
  findings_->list.push_back({severity, line, subject_, check_, std::move(message)});
}

size_t CountOf(const Findings& findings, Severity severity) {
  const auto matches = [=](const Finding& finding) { return finding.severity == severity; };
  return static_cast<size_t>(std::count_if(findings.list.begin(), findings.list.end(), matches));
}

void PrintFindings(std::ostream& out, const Findings& findings) {
  for (const Finding& finding : InLineOrder(findings)) {
    std::string line = findings.file + ":";
    if (finding.line != 0) line += std::to_string(finding.line) + ":";
    line += std::string(" ") + NameOf(finding.severity) + ": ";
    if (!finding.subject.empty()) line += finding.subject + ": ";
    out << Printable(line + finding.message + " [" + finding.check + "]") << "\n";
  }
  out << findings.file << ": " << Counted(CountOf(findings, Severity::Error), "error") << ", "
      << Counted(CountOf(findings, Severity::Warning), "warning") << "\n";
}

void PrintFindingsAsJson(std::ostream& out, const Findings& findings) {
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (const Finding& finding : InLineOrder(findings)) {
    list.push_back({{"line", finding.line},
                    {"severity", NameOf(finding.severity)},
                    {"package", finding.subject},
                    {"check", finding.check},
                    {"message", finding.message}});
  }
  const nlohmann::ordered_json document = {{"file", findings.file},
                                           {"errors", CountOf(findings, Severity::Error)},
                                           {"warnings", CountOf(findings, Severity::Warning)},
                                           {"findings", list}};
  constexpr auto kReplaceInvalidUtf8 = nlohmann::ordered_json::error_handler_t::replace;
  out << document.dump(2, ' ', false, kReplaceInvalidUtf8) << "\n";
}

std::string Printable(std::string_view text) {
  std::string printable;
  for (size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]),
               next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : 0);
    // U+0080 to U+009F, as UTF-8 writes them.
    const bool isSecondSet = byte == 0xC2 && next >= 0x80 && next < 0xA0;
    if (isSecondSet) ++i;
    printable += isSecondSet || byte < ' ' || byte == 0x7F ? '?' : text[i];
  }
  return printable;
}

std::string Counted(size_t count, const std::string& what) {
  const std::string plural = what.ends_with('s') ? "es" : "s";
  return std::to_string(count) + " " + what + (count == 1 ? "" : plural);
}

std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  quoted += text.substr(0, kLongestQuote);
  if (text.size() > kLongestQuote) quoted += "...";
  return quoted += '"';
}
