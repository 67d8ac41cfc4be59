#include "updater.h"

#include "address.h"
#include "ascii.h"
#include "md5.h"
#include "program_file.h"

namespace {

constexpr char kProductName[] = "Zendora Installer";

// Why the file must not become every player's program; empty when it may.
std::string Refusal(const std::string& path, const ProgramFile& program) {
  if (!SizeOfFile(path)) return "it can't be read";
  if (!program.isProgram) return "it is no Windows program";
  if (!program.is32Bit) return "it is no 32-bit program";
  if (program.productName != kProductName) return std::string("its product name is not \"") + kProductName + "\"";
  if (program.productVersion.empty()) return "it has no version";
  return "";
}

std::string AddressRefusal(const std::vector<std::string>& urls, const std::string& helpUrl) {
  for (const std::string& url : urls) {
    if (const std::string fault = AddressFault(url); !fault.empty()) return fault;
  }
  return helpUrl.empty() ? "" : AddressFault(helpUrl);
}

}  // namespace

UpdaterElement DescribeUpdater(const std::string& program, const std::vector<std::string>& urls,
                               const std::string& helpUrl) {
  UpdaterElement element;
  const ProgramFile facts = ReadProgramFile(program);
  element.refusal = Refusal(program, facts);
  if (element.refusal.empty()) element.refusal = AddressRefusal(urls, helpUrl);
  const std::string md5 = element.refusal.empty() ? Md5OfFile(program, {}) : "";
  if (element.refusal.empty() && md5.empty()) element.refusal = "it can't be read";
  if (!element.refusal.empty()) return element;

  element.version = facts.productVersion;
  element.isSigned = facts.isSigned;
  element.text = "  <updater md5=\"" + md5 + "\"" +
                 (helpUrl.empty() ? "" : " helpURL=\"" + XmlEscaped(helpUrl) + "\"") + " filesize=\"" +
                 std::to_string(*SizeOfFile(program)) + "\">\n";
  for (const std::string& url : urls) element.text += "    <source url=\"" + XmlEscaped(url) + "\"/>\n";
  element.text += "  </updater>\n";
  return element;
}
