// A run in its install phase with one downloaded package, "pack.bin", and the installation page.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "install/installation.h"
#include "manifest/manifest_model.h"
#include "support/temp_folder.h"
#include "support/test_window.h"

class PlacementFixture : public testing::Test {
 protected:
  PlacementFixture() {
    run_.tmpPath = folder_ / L"tmp";
    run_.installPath = folder_ / L"games";
    package_.filename = "pack.bin";
    WriteTestFile(packagePath_, "the package");
  }

  const StatsRecord& Stats() { return run_.packageStats[package_.filename]; }
  const InstallPageControls& Page() const { return window_.Installation(); }
  // What the log says of failures.
  std::vector<std::wstring> ErrorLines() const {
    std::vector<std::wstring> lines = window_.LogLines();
    std::erase_if(lines, [](const std::wstring& line) { return !line.starts_with(L"[ERROR]"); });
    return lines;
  }

  TempFolder folder_;
  TestWindow window_;
  Installation run_;
  Package package_;
  const std::wstring target_ = folder_ / L"target";
  const std::wstring packagePath_ = folder_ / L"tmp\\pack.bin";
};
