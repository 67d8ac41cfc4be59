// What fill, describe and updater make, and what they refuse to make.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "check.h"
#include "describe.h"
#include "fill.h"
#include "md5.h"
#include "publish/good_site.h"
#include "support/zip_builder.h"
#include "system/text.h"
#include "updater.h"

namespace {

Filled Fill(const GoodSite& site) { return FillManifest(*ParseManifestText("m", site.manifest), site.Files(), {}); }

TEST(Fill, ChangesWhatFilesTellAndNoOtherByte) {
  GoodSite site;
  const std::string good = site.manifest;
  // Everything that could lead astray: other quotation marks, comments, blanks, text that looks like an element.
  site.Replace("<size value=\"15\"/>", "<size\tvalue = '15'  />");
  site.Replace("<title>Guide</title>",
               "<title>Guide</title><!-- <size value=\"9\"/> --><group><![CDATA[<size value=\"9\"/>]]></group>");
  site.Replace("<downloader>", "<!-- <downloader><packages><package><size value=\"1\"/> -->\n<downloader>");
  const std::string before = site.manifest;
  EXPECT_TRUE(Fill(site).changes.empty());
  EXPECT_EQ(Fill(site).text, before);

  WriteBytes(site.File("guide.txt"), "Press any key, or none.\n");
  const Filled filled = Fill(site);
  ASSERT_EQ(filled.changes.size(), 3u);
  EXPECT_EQ(filled.changes[0].package + " " + filled.changes[0].element + " " + filled.changes[0].after,
            "guide.txt size 24");
  std::string expected = before;
  ReplaceFirst(expected, "'15'", "'24'");
  ReplaceFirst(expected, "<upsize value=\"15\"", "<upsize value=\"24\"");
  ReplaceFirst(expected, filled.changes[2].before, Md5OfFile(site.File("guide.txt"), {}));
  EXPECT_EQ(filled.text, expected);
}

TEST(Fill, LeavesWhatItCantKnow) {
  GoodSite site;
  WriteBytes(site.File("client.exe"), "MZ, another installer program");
  for (const Change& change : Fill(site).changes) EXPECT_NE(change.element, "upsize");
  site.Refill();
  WriteBytes(site.File("world.zip"), "no archive");
  std::filesystem::remove(site.File("guide.txt"));
  EXPECT_EQ(Fill(site).problems.size(), 2u);
  EXPECT_EQ(Fill(site).text, site.manifest);
}

TEST(Describe, GivesAPackageThatCheckAccepts) {
  const GoodSite site;
  WriteBytes(site.File("tool.exe"), ReadBytes(ZENDORA_TEST_PROGRAM));
  const std::pair<Description, const char*> kCases[] = {
      {{.file = site.File("world.zip"), .verify = {"game.exe", "data"}, .link = "game.exe"},
       "<verify value=\"game.exe|data\"/>"},
      {{.file = site.File("world.zip"), .title = "A <\"&\"> B", .folder = "{gtasa_folder}"},
       "<title>A &lt;&quot;&amp;&quot;&gt; B</title>"},
      {{.file = site.File("guide.txt"), .isDefault = true}, "<default value=\"true\"/>"},
      {{.file = site.File("guide.txt")}, "<upsize value=\"15\"/>"},
      {{.file = site.File("tool.exe")}, "<install path=\"tool.exe\"/>"},
  };
  for (auto [description, contains] : kCases) {
    description.urls = {{"main", "https://zendora.example/"}};
    const auto described = DescribePackage(description, {});
    ASSERT_TRUE(described);
    EXPECT_NE(described->text.find(contains), std::string::npos) << described->text;
    const std::string manifest = "<downloader><sources default=\"main\"><source key=\"main\" title=\"M\"/></sources>" +
                                 ("<packages>" + described->text) + "</packages></downloader>";
    const Findings findings =
        CheckManifest(*ParseManifestText("m", manifest), {.filesFolder = site.Files(), .skipped = {"group", "upsize"}});
    EXPECT_TRUE(findings.list.empty()) << described->text << findings.list[0].message;
  }
  EXPECT_FALSE(DescribePackage({.file = site.File("missing")}, {}));
  const auto copied = DescribePackage({.file = site.File("tool.exe"), .filetype = "file"}, {});
  EXPECT_EQ(copied->text.find("filetype"), std::string::npos);
  EXPECT_EQ(copied->text.find("<install"), std::string::npos);
}

TEST(Describe, NeverPrintsAPassword) {
  const GoodSite site;
  BuildZip(Utf8ToWide(site.File("world.zip")), {{"a", "content", "secret"}});
  const auto described = DescribePackage({.file = site.File("world.zip")}, {});
  EXPECT_TRUE(described->encrypted);
  EXPECT_EQ(described->text.find("password"), std::string::npos);
}

TEST(Describe, CompletesAnAddressAndTellsOfAUselessName) {
  const GoodSite site;
  std::filesystem::rename(site.File("guide.txt"), site.File("the guide.txt"));
  const auto described =
      DescribePackage({.file = site.File("the guide.txt"), .urls = {{"main", "https://zendora.example/a/"}}}, {});
  EXPECT_NE(described->text.find("url=\"https://zendora.example/a/the%20guide.txt\""), std::string::npos);
  EXPECT_EQ(CountOf(described->findings, Severity::Error), 1u);
}

TEST(Updater, DescribesOurProgramAndRefusesEverythingElse) {
  const GoodSite site;
  const auto describe = [&](const std::string& bytes) {
    WriteBytes(site.File("new.exe"), bytes);
    return DescribeUpdater(site.File("new.exe"), {"https://zendora.example/new.exe"}, "https://zendora.example/play/");
  };
  const std::string program = ReadBytes(ZENDORA_TEST_PROGRAM);
  const auto patched = [&](size_t at, const std::string& bytes) {
    return std::string(program).replace(at, bytes.size(), bytes);
  };
  EXPECT_EQ(describe(program).version, "4.0.9");
  EXPECT_EQ(describe(program).text, "  <updater md5=\"" + Md5OfFile(site.File("new.exe"), {}) +
                                        "\" helpURL=\"https://zendora.example/play/\" filesize=\"" +
                                        std::to_string(program.size()) +
                                        "\">\n    <source url=\"https://zendora.example/new.exe\"/>\n  </updater>\n");
  EXPECT_NE(DescribeUpdater(site.File("new.exe"), {"zendora.example/new.exe"}, "").refusal, "");
  const std::pair<std::string, const char*> kRefused[] = {
      {"", "it is no Windows program"},
      {"MZ", "it is no Windows program"},
      {patched(0x44, "\x64\x86"), "it is no 32-bit program"},
      {patched(0x278, "X"), "its product name is not \"Zendora Installer\""},
      {patched(0x2C0, std::string(1, '\0')), "it has no version"},
  };
  for (const auto& [bytes, refusal] : kRefused) {
    EXPECT_EQ(describe(bytes).refusal, refusal);
    EXPECT_EQ(describe(bytes).text, "");
  }
}

TEST(Disk, ReplacesWhatALinkPointsToAndNoOtherFile) {
  const GoodSite site;
  WriteBytes(site.File("link.new"), "the user's own");
  std::filesystem::create_symlink(site.File("guide.txt"), site.File("link"));
  ASSERT_TRUE(ReplaceFile(site.File("link"), "new"));
  EXPECT_EQ(ReadBytes(site.File("guide.txt")), "new");
  EXPECT_EQ(ReadBytes(site.File("link.new")), "the user's own");
  EXPECT_TRUE(std::filesystem::is_symlink(site.File("link")));
  const std::filesystem::directory_iterator files(site.Files());
  EXPECT_EQ(std::distance(begin(files), end(files)), 5);
}

TEST(Findings, ArePrintedLikeACompilersInTheOrderOfLines) {
  Findings findings{"m.xml", {}};
  Reporter(findings, "md5", "world.zip").Error(23, "md5 must be lower case");
  Reporter(findings, "group", "a\x1b[31mb\u009B31mc").Warning(7, "there is no group");
  Reporter(findings, "site-manifest").Note(0, "differs");
  std::ostringstream text, json;
  PrintFindings(text, findings);
  EXPECT_EQ(text.str(),
            "m.xml: note: differs [site-manifest]\n"
            "m.xml:7: warning: a?[31mb?31mc: there is no group [group]\n"
            "m.xml:23: error: world.zip: md5 must be lower case [md5]\n"
            "m.xml: 1 error, 1 warning\n");
  PrintFindingsAsJson(json, findings);
  EXPECT_NE(json.str().find("\"line\": 23,\n      \"severity\": \"error\",\n      \"package\": \"world.zip\""),
            std::string::npos);
}

}  // namespace
