// The command `updater`: the element that makes older programs replace themselves.
#pragma once

#include <string>
#include <vector>

struct UpdaterElement {
  std::string text;     // the element, indented for its place in a manifest; empty when it was refused
  std::string refusal;  // why
  std::string version;  // of the program
  bool isSigned = false;
};

// The first address is the first that players' programs ask.
UpdaterElement DescribeUpdater(const std::string& program, const std::vector<std::string>& urls,
                               const std::string& helpUrl);
