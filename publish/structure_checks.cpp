// Elements and attributes: those that the program would skip without a word, and those that it would miss.
#include <string>
#include <vector>

#include "checks.h"
#include "schema.h"

namespace {

using tinyxml2::XMLElement;

// The identifier of the package that the element belongs to; empty outside of packages.
std::string PackageOf(const XMLElement& element) {
  for (const tinyxml2::XMLNode* node = &element; node; node = node->Parent()) {
    const XMLElement* candidate = node->ToElement();
    if (!candidate || std::string_view(candidate->Name()) != "package") continue;
    const XMLElement* filename = candidate->LastChildElement("filename");
    return filename ? AttributeOf(*filename, "value") : "";
  }
  return "";
}

std::string Tag(const XMLElement& element) { return std::string("<") + element.Name() + ">"; }

std::string DidYouMean(std::string_view meant) { return meant.empty() ? "" : "; did you mean " + Quoted(meant) + "?"; }

void CheckRoot(const ManifestFile& manifest, const Reporter& report) {
  const XMLElement* first = manifest.document.RootElement();
  if (!manifest.root) {
    const std::string found = first ? "the root is " + Tag(*first) : "there is no element at all";
    report.Error(first ? first->GetLineNum() : 1, found + "; it must be <downloader>");
  }
  for (auto* element = first; element; element = element->NextSiblingElement()) {
    if (!manifest.root || element == manifest.root) continue;
    report.Error(element->GetLineNum(), Tag(*element) + " beside the root <downloader> is never read");
  }
}

void CheckAnyPackage(const ManifestFile& manifest, const Reporter& report) {
  if (manifest.root && manifest.packages.empty()) {
    report.Error(manifest.root->GetLineNum(), "there is no package, so the installer would show an empty list");
  }
}

void CheckUnknownElements(const ManifestFile& manifest, const Reporter& report) {
  if (!manifest.root) return;
  VisitKnownElements(*manifest.root, [&](const XMLElement& element, const ElementRule& rule) {
    std::vector<std::string_view> names;
    for (const ElementRule& child : rule.children) names.push_back(child.name);
    for (auto* child = element.FirstChildElement(); child; child = child->NextSiblingElement()) {
      if (FindChild(rule, child->Name())) continue;
      report.About(PackageOf(*child))
          .Error(child->GetLineNum(), "the installer knows no " + Tag(*child) + " in " + Tag(element) +
                                          DidYouMean(LikelyMeant(child->Name(), names)));
    }
  });
}

void CheckUnknownAttributes(const ManifestFile& manifest, const Reporter& report) {
  if (!manifest.root) return;
  VisitKnownElements(*manifest.root, [&](const XMLElement& element, const ElementRule& rule) {
    std::vector<std::string_view> names;
    for (const AttributeRule& attribute : rule.attributes) names.push_back(attribute.name);
    for (auto* attribute = element.FirstAttribute(); attribute; attribute = attribute->Next()) {
      if (FindAttribute(rule, attribute->Name())) continue;
      report.About(PackageOf(element))
          .Error(attribute->GetLineNum(), Tag(element) + " has no attribute " + Quoted(attribute->Name()) +
                                              DidYouMean(LikelyMeant(attribute->Name(), names)));
    }
  });
}

// A text that stands where only attributes are read has its own check.
void CheckMissingAttributes(const ManifestFile& manifest, const Reporter& report) {
  if (!manifest.root) return;
  VisitKnownElements(*manifest.root, [&](const XMLElement& element, const ElementRule& rule) {
    if (element.GetText()) return;
    for (const AttributeRule& attribute : rule.attributes) {
      if (!attribute.required || element.Attribute(std::string(attribute.name).c_str())) continue;
      report.About(PackageOf(element))
          .Error(element.GetLineNum(), Tag(element) + " lacks the attribute " + Quoted(attribute.name));
    }
  });
}

void CheckMisplacedText(const ManifestFile& manifest, const Reporter& report) {
  if (!manifest.root) return;
  VisitKnownElements(*manifest.root, [&](const XMLElement& element, const ElementRule& rule) {
    for (auto* node = element.FirstChild(); node; node = node->NextSibling()) {
      const tinyxml2::XMLText* text = node->ToText();
      if (!text || rule.text == Text::Allowed) continue;
      const bool hasValue = FindAttribute(rule, "value");
      // It may be the password itself, which is never printed.
      const bool isSecret = rule.name == "password";
      const std::string quoted = isSecret ? "" : " " + Quoted(text->Value());
      const std::string value = isSecret ? "\"...\"" : Quoted(text->Value());
      const std::string advice = hasValue ? "; write <" + std::string(element.Name()) + " value=" + value + "/>" : "";
      report.About(PackageOf(element))
          .Error(text->GetLineNum(), "the text" + quoted + " in " + Tag(element) + " is not read" + advice);
    }
  });
}

void CheckRepeatedElements(const ManifestFile& manifest, const Reporter& report) {
  if (!manifest.root) return;
  VisitKnownElements(*manifest.root, [&](const XMLElement& element, const ElementRule& rule) {
    if (rule.repeatable || !element.PreviousSiblingElement(element.Name()) || &element == manifest.root) return;
    const bool isSection = element.Parent() == manifest.root;
    report.About(PackageOf(element))
        .Error(element.GetLineNum(),
               Tag(element) + " stands here once more; only the " + (isSection ? "first" : "last") + " one counts");
  });
}

constexpr DocumentCheck kChecks[] = {
    {"root", CheckRoot},
    {"any-package", CheckAnyPackage},
    {"unknown-element", CheckUnknownElements},
    {"unknown-attribute", CheckUnknownAttributes},
    {"missing-attribute", CheckMissingAttributes},
    {"text", CheckMisplacedText},
    {"repeated", CheckRepeatedElements},
};

}  // namespace

std::span<const DocumentCheck> StructureChecks() { return kChecks; }
