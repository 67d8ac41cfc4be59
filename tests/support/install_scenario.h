// What an installation needs around it: folders of its own, a server, a window with the installation page, and a run
// with one package, "fox". The test's thread plays the worker.
#pragma once

#include <gtest/gtest.h>

#include "core/context.h"
#include "install/run_state.h"
#include "manifest/manifest_model.h"
#include "support/scripted_server.h"
#include "support/temp_folder.h"
#include "support/test_window.h"
#include "system/files.h"

// The package's file, and another one of the same length, with their hashes.
inline const std::string kFox = "The quick brown fox jumps over the lazy dog";
inline const std::string kFoxMd5 = "9e107d9d372bb6826bd81d3542a419d6";
inline const std::string kOther = "The quick brown fox jumps over the lazy cat";
inline const std::string kOtherMd5 = "71bd588d5ad9b6abe87b831b45f8fa95";

class InstallScenario : public testing::Test {
 protected:
  InstallScenario() {
    app.tmpPath.Set(run_.tmpPath = folder_ / L"tmp");
    app.installPath.Set(run_.installPath = folder_ / L"games");
    app.selectedSource.Set(run_.selectedSource = "main");
    app.manifestPath = folder_ / L"manifest.xml";
    CreateDirectories(run_.tmpPath);
    run_.downloads.SetGzipEnabled(false);
    package_.filename = "fox";
    package_.title = L"The Fox";
    package_.size = 43;
    package_.md5 = kFoxMd5;
    package_.sources = {{"main", "http://zendora.example/fox"}};
    server_.Answer("/fox", Serving(kFox));
  }

  static ScriptedAnswer Serving(const std::string& body, int status = 200) { return {.status = status, .body = body}; }

  const TempFolder folder_;
  const std::wstring file_ = folder_ / L"tmp\\fox", target_ = folder_ / L"games\\Fox";
  ScriptedServer server_;
  const TestWindow window_;
  RunState run_;
  Package package_;
};
