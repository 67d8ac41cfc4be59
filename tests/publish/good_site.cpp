#include "publish/good_site.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>

#include "disk.h"
#include "fill.h"
#include "support/zip_builder.h"
#include "system/text.h"

namespace {

constexpr char kManifest[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<downloader>
  <updater md5="0123456789abcdef0123456789abcdef" helpURL="https://zendora.example/play/" filesize="123456">
    <source url="https://zendora.example/play/ZendoraInstaller-4.0.9.exe"/>
  </updater>
  <sources default="main">
    <source key="main" title="Main server"/>
    <source key="mirror" title="Mirror"/>
  </sources>
  <packages>
    <!-- a comment, with <package> in it -->
    <package>
      <title>The world: мир</title><group>Game</group>
      <tooltip>Everything &amp; more</tooltip>
      <name value="World"/><filename value="world.zip"/>
      <filetype value="application/x-zip-compressed"/>
      <size value="0"/><upsize value="0"/><md5 value="-"/>
      <verify value="game.exe|data/maps"/>
      <default value="true"/>
      <sources>
        <source key="main" url="https://zendora.example/packages/world.zip"/>
        <source key="mirror" url="https://mirror.zendora.example/packages/world.zip"/>
      </sources>
      <tasks>
        <reg name="HKEY_CURRENT_USER\Software\World" order="before">
          <key name="Path" value="{install_path}\data"/>
          <key name="Level" value="3"/>
        </reg>
        <addon name="mtasa_config"/>
        <link path="game.exe" title="World"/>
        <execute path="game.exe" args="/first"/>
      </tasks>
    </package>
    <package>
      <title>Client</title><group>Game</group>
      <name value="Client"/><filename value="client.exe"/>
      <filetype value="application/x-msdownload"/>
      <size value="0"/><upsize value="777"/><md5 value="-"/>
      <sources><source key="main" url="https://zendora.example/packages/client.exe"/></sources>
      <tasks><install path="setup.exe" args="/quiet"/></tasks>
    </package>
    <package>
      <title>Guide</title><group>Papers</group>
      <folder value="{5}"/>
      <filename value="guide.txt"/>
      <size value="0"/><upsize value="0"/><md5 value="-"/>
      <sources><source key="main" url="https://zendora.example/packages/guide.txt"/></sources>
    </package>
  </packages>
</downloader>
)";

}  // namespace

GoodSite::GoodSite() : manifest(kManifest) {
  std::string pattern = (std::filesystem::temp_directory_path() / "zendora-publish-XXXXXX").string();
  folder_ = mkdtemp(pattern.data());
  std::filesystem::create_directory(Files());
  BuildZip(
      Utf8ToWide(File("world.zip")),
      {{"data/", ""}, {"game.exe", TestBytes(5000)}, {"data/maps/one.map", TestBytes(9000, 2)}, {"data/empty", ""}});
  WriteBytes(File("client.exe"), "MZ, an installer program");
  WriteBytes(File("guide.txt"), "Press any key.\n");
  Refill();
}

GoodSite::~GoodSite() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

void GoodSite::Replace(std::string_view from, std::string_view to) {
  ASSERT_TRUE(ReplaceFirst(manifest, from, to)) << from;
}

void GoodSite::Refill() {
  const Filled filled = FillManifest(*ParseManifestText("manifest.xml", manifest), Files(), {});
  ASSERT_TRUE(filled.problems.empty()) << testing::PrintToString(filled.problems);
  manifest = filled.text;
}

void WriteBytes(const std::string& path, std::string_view bytes) { ASSERT_TRUE(ReplaceFile(path, bytes)) << path; }

std::string ReadBytes(const std::string& path) {
  const auto bytes = ReadFile(path);
  EXPECT_TRUE(bytes) << path;
  return bytes.value_or("");
}
