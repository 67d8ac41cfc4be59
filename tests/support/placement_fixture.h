// A run in its install phase with one downloaded package, "pack.bin", and the installation page.
#pragma once

#include <gtest/gtest.h>

#include "app/context.h"
#include "install/installation.h"
#include "support/temp_folder.h"
#include "support/test_window.h"

using Lines = std::vector<std::wstring>;

class PlacementFixture : public testing::Test {
 protected:
  PlacementFixture() {
    run_.tmpPath = folder_ / L"tmp";
    run_.installPath = folder_ / L"games";
    package_.filename = "pack.bin";
    WriteTestFile(packagePath_, "the package");
  }

  std::wstring InTarget(const std::wstring& name) const { return target_ + L"\\" + name; }

  TempFolder folder_;
  TestWindow window_;
  Installation run_;
  Package package_;
  const std::wstring target_ = folder_ / L"target";
  const std::wstring packagePath_ = folder_ / L"tmp\\pack.bin";
};
