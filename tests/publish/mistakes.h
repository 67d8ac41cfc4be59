// The mistakes that publishers make, and what `check` says to each.
#pragma once

#include <functional>
#include <span>
#include <string>

#include "publish/good_site.h"

struct Mistake {
  const char* check;                           // that finds it
  const char* message;                         // how the message begins, with its severity and package
  std::function<void(GoodSite& site)> commit;  // makes it on a good site
};

std::span<const Mistake> ManifestMistakes();  // seen in the manifest alone
std::span<const Mistake> FileMistakes();      // seen when the files are looked at

// A mistake in the manifest's text.
std::function<void(GoodSite&)> Edit(const std::string& from, const std::string& to);
