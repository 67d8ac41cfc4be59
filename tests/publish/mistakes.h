// The mistakes that publishers make, and what `check` says to each.
#pragma once

#include <span>
#include <string>
#include <utility>
#include <vector>

#include "publish/good_site.h"

struct Mistake {
  const char* check;                                       // that finds it
  const char* message;                                     // how the message begins, with its severity and package
  std::vector<std::pair<std::string, std::string>> edits;  // of the good manifest's text
  void (*spoil)(GoodSite& site) = nullptr;                 // what happens to the files, and else
};

std::span<const Mistake> ManifestMistakes();  // seen in the manifest alone
std::span<const Mistake> FileMistakes();      // seen when the files are looked at

// Makes world.zip anew, with these entries or with one more, and a manifest that says so.
struct TestEntry;
void RebuildWorld(GoodSite& site, const std::vector<TestEntry>& entries);
void AddToWorld(GoodSite& site, const TestEntry& more);
