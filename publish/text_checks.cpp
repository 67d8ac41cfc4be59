// What is wrong with the manifest before it is a document.
#include <algorithm>
#include <string>

#include "ascii.h"
#include "checks.h"
#include "system/text.h"

namespace {

using tinyxml2::XMLDocument;

int LineAt(std::string_view text, size_t offset) {
  return 1 + static_cast<int>(std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(offset), '\n'));
}

// Whether the text is what one gets back from its characters; false also for U+FFFD itself where it stands for garbage.
bool IsUtf8(std::string_view text) { return WideToUtf8(Utf8ToWide(text)) == text; }

void CheckUtf8(const ManifestFile& manifest, const Reporter& report) {
  std::string_view rest = manifest.text;
  for (size_t offset = 0; offset < manifest.text.size();) {
    const size_t end = std::min(manifest.text.find('\n', offset), manifest.text.size());
    const std::string_view line = rest.substr(offset, end - offset);
    if (!IsUtf8(line)) {
      report.Error(LineAt(manifest.text, offset), "the file is not UTF-8; save it as UTF-8");
      return;
    }
    offset = end + 1;
  }
}

// The value of `encoding` in the XML declaration, in lower case; empty when there is none.
std::string DeclaredEncoding(const XMLDocument& document) {
  const auto* declaration = document.FirstChild() ? document.FirstChild()->ToDeclaration() : nullptr;
  if (!declaration) return "";
  const std::string text = LowerAscii(declaration->Value());
  const size_t name = text.find("encoding");
  const size_t open = name == std::string::npos ? name : text.find_first_of("\"'", name);
  if (open == std::string::npos) return "";
  return text.substr(open + 1, text.find(text[open], open + 1) - open - 1);
}

void CheckDeclaredEncoding(const ManifestFile& manifest, const Reporter& report) {
  const std::string encoding = DeclaredEncoding(manifest.document);
  if (encoding.empty() || encoding == "utf-8") return;
  report.Error(1, "the declaration says " + Quoted(encoding) + ", but the installer always reads UTF-8");
}

void CheckWellFormed(const ManifestFile& manifest, const Reporter& report) {
  const XMLDocument& document = manifest.document;
  if (!document.Error()) return;
  // The library's own words hold its source line and our text; its name of the error says enough.
  report.Error(document.ErrorLineNum(), std::string("not well-formed XML (") +
                                            XMLDocument::ErrorIDToName(document.ErrorID()) +
                                            "); no player would see any package");
}

constexpr TextCheck kChecks[] = {
    {"utf-8", CheckUtf8},
    {"encoding", CheckDeclaredEncoding},
    {"well-formed", CheckWellFormed},
};

}  // namespace

std::span<const TextCheck> TextChecks() { return kChecks; }
