#include "schema.h"

#include <algorithm>
#include <numeric>
#include <string>
#include <vector>

#include "ascii.h"

namespace {

constexpr AttributeRule kValue[] = {{"value", true}};
constexpr AttributeRule kOptionalValue[] = {{"value"}};
constexpr AttributeRule kNameAndValue[] = {{"name", true}, {"value", true}};
constexpr AttributeRule kKeyAndUrl[] = {{"key", true}, {"url", true}};
constexpr AttributeRule kKeyAndTitle[] = {{"key", true}, {"title", true}};
constexpr AttributeRule kUrl[] = {{"url", true}};
constexpr AttributeRule kPathAndTitle[] = {{"path", true}, {"title"}};
constexpr AttributeRule kPathAndArgs[] = {{"path", true}, {"args"}};
constexpr AttributeRule kRegistryItem[] = {{"name", true}, {"order"}};
constexpr AttributeRule kName[] = {{"name", true}};
constexpr AttributeRule kUpdaterAttributes[] = {{"md5", true}, {"helpURL"}, {"filesize"}};
constexpr AttributeRule kDefault[] = {{"default"}};

constexpr ElementRule kRegistryValues[] = {{"key", kNameAndValue, {}, Text::None, true}};
constexpr ElementRule kTasks[] = {
    {"reg", kRegistryItem, kRegistryValues, Text::None, true},
    {"link", kPathAndTitle, {}},
    {"install", kPathAndArgs, {}},
    {"execute", kPathAndArgs, {}},
    {"addon", kName, {}, Text::None, true},
};
constexpr ElementRule kPackageSources[] = {{"source", kKeyAndUrl, {}, Text::None, true}};
constexpr ElementRule kPackageChildren[] = {
    {"title", kOptionalValue, {}, Text::Allowed},
    {"group", kOptionalValue, {}, Text::Allowed},
    {"tooltip", kOptionalValue, {}, Text::Allowed},
    {"name", kValue, {}},
    {"filename", kValue, {}},
    {"filetype", kValue, {}},
    {"password", kValue, {}},
    {"folder", kValue, {}},
    {"md5", kValue, {}},
    {"verify", kValue, {}},
    {"size", kValue, {}},
    {"upsize", kValue, {}},
    {"default", kValue, {}},
    {"sources", {}, kPackageSources, Text::None, true},
    {"tasks", {}, kTasks, Text::None, true},
};
constexpr ElementRule kPackages[] = {{"package", {}, kPackageChildren, Text::None, true}};
constexpr ElementRule kUpdaterSources[] = {{"source", kUrl, {}, Text::None, true}};
constexpr ElementRule kCatalogueSources[] = {{"source", kKeyAndTitle, {}, Text::None, true}};
constexpr ElementRule kSections[] = {
    {"updater", kUpdaterAttributes, kUpdaterSources},
    {"sources", kDefault, kCatalogueSources},
    {"packages", {}, kPackages},
};
constexpr ElementRule kRoot = {"downloader", {}, kSections};

template <typename Rule>
const Rule* FindByName(std::span<const Rule> rules, std::string_view name) {
  const auto found = std::find_if(rules.begin(), rules.end(), [&](const Rule& rule) { return rule.name == name; });
  return found == rules.end() ? nullptr : &*found;
}

void Visit(const tinyxml2::XMLElement& element, const ElementRule& rule, const RuleVisitor& visit) {
  visit(element, rule);
  for (auto* child = element.FirstChildElement(); child; child = child->NextSiblingElement()) {
    if (const ElementRule* known = FindChild(rule, child->Name())) Visit(*child, *known, visit);
  }
}

// How many letters must be changed, added or dropped to make one text the other.
size_t EditDistance(std::string_view a, std::string_view b) {
  std::vector<size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), size_t{0});
  for (size_t i = 0; i < a.size(); ++i) {
    size_t diagonal = row[0];
    row[0] = i + 1;
    for (size_t j = 0; j < b.size(); ++j) {
      const size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
    }
  }
  return row.back();
}

}  // namespace

const AttributeRule* FindAttribute(const ElementRule& rule, std::string_view name) {
  return FindByName<AttributeRule>(rule.attributes, name);
}

const ElementRule* FindChild(const ElementRule& rule, std::string_view name) {
  return FindByName<ElementRule>(rule.children, name);
}

void VisitKnownElements(const tinyxml2::XMLElement& root, const RuleVisitor& visit) { Visit(root, kRoot, visit); }

std::string_view LikelyMeant(std::string_view name, std::span<const std::string_view> known) {
  constexpr size_t kLongestName = 32;  // what is longer is no slip of the pen
  if (name.size() > kLongestName) return {};
  std::string_view best;
  size_t bestDistance = 3;
  for (const std::string_view candidate : known) {
    const size_t distance = EditDistance(LowerAscii(name), LowerAscii(candidate));
    if (distance < bestDistance && distance < candidate.size()) {
      best = candidate;
      bestDistance = distance;
    }
  }
  return best;
}
