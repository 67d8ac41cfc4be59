// Which elements and attributes a manifest may have. The program skips what it doesn't know without a word, so this is
// where a misspelt name shows.
#pragma once

#include <tinyxml2.h>

#include <functional>
#include <span>
#include <string_view>

struct AttributeRule {
  std::string_view name;
  bool required = false;
};

// Where an element's value stands, apart from attributes.
enum class Text { None, Allowed };

struct ElementRule {
  std::string_view name;
  std::span<const AttributeRule> attributes;
  std::span<const ElementRule> children;
  Text text = Text::None;
  bool repeatable = false;  // otherwise only one of several counts
};

// Null when the rule has no such attribute or child.
const AttributeRule* FindAttribute(const ElementRule& rule, std::string_view name);
const ElementRule* FindChild(const ElementRule& rule, std::string_view name);

// Called with each element that is known, and its rule.
using RuleVisitor = std::function<void(const tinyxml2::XMLElement& element, const ElementRule& rule)>;

// Visits the root and all known elements below it, in document order.
void VisitKnownElements(const tinyxml2::XMLElement& root, const RuleVisitor& visit);

// What a misspelt name was probably to be: one that differs in letter case or by up to two letters; else empty.
std::string_view LikelyMeant(std::string_view name, std::span<const std::string_view> known);
