// What fill, describe and updater make, and what they refuse to make.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "check.h"
#include "describe.h"
#include "fill.h"
#include "md5.h"
#include "publish/good_site.h"
#include "publish/program_bytes.h"
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

TEST(Fill, TellsWhatItCantFill) {
  GoodSite site;
  WriteBytes(site.File("world.zip"), "no archive");
  std::filesystem::remove(site.File("guide.txt"));
  const Filled filled = Fill(site);
  EXPECT_EQ(filled.problems.size(), 2u);
  EXPECT_EQ(filled.text, site.manifest);
}

TEST(Fill, KeepsTheUpsizeThatOnlyAnInstallerKnows) {
  GoodSite site;
  WriteBytes(site.File("client.exe"), "MZ, another installer program");
  for (const Change& change : Fill(site).changes) EXPECT_NE(change.element, "upsize");
}

// The element in a manifest, checked with the files.
Findings CheckElement(const GoodSite& site, const std::string& element) {
  const std::string text =
      "<downloader><sources default=\"main\"><source key=\"main\" title=\"M\"/></sources><packages>" + element +
      "</packages></downloader>";
  return CheckManifest(*ParseManifestText("m", text), {.filesFolder = site.Files(), .skipped = {"group"}});
}

TEST(Describe, GivesAPackageThatCheckAccepts) {
  const GoodSite site;
  const struct {
    Description description;
    const char* contains;
  } kCases[] = {
      {{.file = site.File("world.zip"), .verify = {"game.exe", "data"}, .link = "game.exe"},
       "<verify value=\"game.exe|data\"/>"},
      {{.file = site.File("world.zip"), .title = "A <\"&\"> B", .folder = "{gtasa_folder}"},
       "<title>A &lt;&quot;&amp;&quot;&gt; B</title>"},
      {{.file = site.File("guide.txt"), .isDefault = true}, "<default value=\"true\"/>"},
      {{.file = site.File("guide.txt")}, "<upsize value=\"15\"/>"},
  };
  for (const auto& [wanted, contains] : kCases) {
    Description description = wanted;
    if (description.folder.empty()) description.name = "Here";
    description.urls = {{"main", "https://zendora.example/"}};
    const auto described = DescribePackage(description, {});
    ASSERT_TRUE(described);
    EXPECT_NE(described->text.find(contains), std::string::npos) << described->text;
    const Findings findings = CheckElement(site, described->text);
    EXPECT_TRUE(findings.list.empty()) << described->text << findings.list[0].message;
  }
}

TEST(Describe, TakesAProgramForAnInstallerUnlessItIsToldOtherwise) {
  const GoodSite site;
  WriteBytes(site.File("tool.exe"), ProgramBytes({}));
  Description description{.file = site.File("tool.exe")};
  const std::string installer = DescribePackage(description, {})->text;
  EXPECT_NE(installer.find("<install path=\"tool.exe\"/>"), std::string::npos);
  description.filetype = "file";
  const std::string copied = DescribePackage(description, {})->text;
  EXPECT_EQ(copied.find("filetype"), std::string::npos);
  EXPECT_EQ(copied.find("<install"), std::string::npos);
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
  ASSERT_EQ(CountOf(described->findings, Severity::Error), 1u);
  EXPECT_FALSE(DescribePackage({.file = site.File("missing")}, {}));
}

TEST(Updater, DescribesOurProgramAndRefusesEverythingElse) {
  const struct {
    std::string bytes;
    const char* refusal;
  } kCases[] = {
      {ProgramBytes({}), ""},
      {"", "it is no Windows program"},
      {"MZ", "it is no Windows program"},
      {ProgramBytes({.machine = 0x8664, .magic = 0x20B}), "it is no 32-bit program"},
      {ProgramBytes({.productName = "Another Installer"}), "its product name is not \"Zendora Installer\""},
      {ProgramBytes({.productVersion = ""}), "it has no version"},
  };
  const GoodSite site;
  for (const auto& [bytes, refusal] : kCases) {
    WriteBytes(site.File("new.exe"), bytes);
    const UpdaterElement element =
        DescribeUpdater(site.File("new.exe"), {"https://zendora.example/new.exe"}, "https://zendora.example/play/");
    EXPECT_EQ(element.refusal, refusal);
    if (!element.refusal.empty()) {
      EXPECT_EQ(element.text, "");
      continue;
    }
    EXPECT_EQ(element.version, "4.0.9");
    EXPECT_EQ(element.text, "  <updater md5=\"" + Md5OfFile(site.File("new.exe"), {}) +
                                "\" helpURL=\"https://zendora.example/play/\" filesize=\"" +
                                std::to_string(bytes.size()) +
                                "\">\n    <source url=\"https://zendora.example/new.exe\"/>\n  </updater>\n");
  }
  EXPECT_NE(DescribeUpdater(site.File("new.exe"), {"zendora.example/new.exe"}, "").refusal, "");
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

TEST(Md5, IsTheStandards) {
  const GoodSite site;
  const struct {
    std::string content;
    const char* md5;
  } kCases[] = {
      {"", "d41d8cd98f00b204e9800998ecf8427e"},
      {"abc", "900150983cd24fb0d6963f7d28e17f72"},
      {std::string(3'000'000, 'a'), "99ddc9a3a46ea62c95652bdf937a1fb8"},
  };
  for (const auto& [content, md5] : kCases) {
    WriteBytes(site.File("content"), content);
    EXPECT_EQ(Md5OfFile(site.File("content"), {}), md5);
  }
  EXPECT_EQ(Md5OfFile(site.File("missing"), {}), "");
}

}  // namespace
