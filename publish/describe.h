// The command `describe`: a finished `package` element for a file.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "disk.h"
#include "findings.h"

struct Description {
  std::string file = {};      // on this machine
  std::string filename = {};  // the identifier; empty: the file's own name
  std::string title = {};     // empty: the file's name without its extension
  std::string group = {}, tooltip = {};
  std::string name = {};      // empty, with no folder: the title
  std::string folder = {};    // a placeholder
  std::string filetype = {};  // empty: what the file looks like
  bool isDefault = false;
  std::vector<std::string> verify = {};
  std::map<std::string, std::string> urls =
      {};  // by source key; an address that ends with "/" is completed with the filename
  std::string install = {}, installArguments = {}, link = {}, linkTitle = {}, execute = {},
              executeArguments = {};  // paths in the package, and more
  std::vector<std::string> addons = {};
};

struct DescribedPackage {
  std::string text;        // the element, indented for its place in a manifest
  bool encrypted = false;  // its password is missing in the text, because passwords are never printed
  Findings findings;       // what `check` says about it
};

// Nothing when the file can't be read.
std::optional<DescribedPackage> DescribePackage(Description description, const Progress& progress);
