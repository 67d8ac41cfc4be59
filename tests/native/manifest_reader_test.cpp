#include "manifest/manifest_reader.h"

#include <gtest/gtest.h>
#include <tinyxml2.h>

namespace {

using tinyxml2::XMLDocument;

// Reads the packages of a document whose root holds `content` into `manifest`.
void ReadInto(Manifest& manifest, const std::string& content) {
  XMLDocument document;
  ASSERT_EQ(document.Parse(("<downloader>" + content + "</downloader>").c_str()), tinyxml2::XML_SUCCESS) << content;
  ReadPackages(*FindManifestRoot(document), manifest);
}

Package ReadOnePackage(const std::string& children) {
  Manifest manifest;
  ReadInto(manifest, "<packages><package>" + children + "</package></packages>");
  EXPECT_EQ(manifest.packages.size(), 1u);
  return manifest.packages.empty() ? Package{} : manifest.packages.begin()->second;
}

const std::string kFullDocument = R"(<?xml version="1.0" encoding="UTF-8"?>
<other/>
<downloader>
  <updater md5="0123456789abcdef0123456789abcdef" helpURL="https://h" filesize="0x20">
    <source url="https://u/1"/><source url="https://u/2"/>
  </updater>
  <sources default="eu"><source key="us" title="America"/><source key="eu" title="Europe"/></sources>
  <packages>
    <package>
      <title>Main &amp; files</title><group>Game</group><tooltip value="All of it"/>
      <name value="Zendora"/><filename value="main.zip"/><filetype value="application/x-zip-compressed"/>
      <password value="secret"/><folder value="{gta}"/><md5 value="d41d8cd98f00b204e9800998ecf8427e"/>
      <verify value="a.dll|b\c.exe"/><size value="6000000000"/><upsize value="0x200000000"/><default value="true"/>
      <sources><source key="us" url="https://us/main.zip"/><source key="eu" url="https://eu/main.zip"/></sources>
      <tasks>
        <reg name="HKEY_CURRENT_USER\Software\Z" order="before"><key name="b" value="2"/><key name="a" value="1"/></reg>
        <link path="z.exe" title="Zendora"/><install path="setup.exe" args="/S"/><execute path="z.exe" args="-run"/>
        <addon name="config"/><addon name="extra"/><reg name="HKEY_LOCAL_MACHINE\Software\Z"/><unknown/>
      </tasks>
      <unknown value="?"/>
    </package>
  </packages>
</downloader>
)";

}  // namespace

TEST(ManifestReader, ReadsEveryField) {
  XMLDocument document;
  ASSERT_EQ(document.Parse(kFullDocument.c_str()), tinyxml2::XML_SUCCESS);
  Manifest manifest;
  ReadPackages(*FindManifestRoot(document), manifest);

  ASSERT_EQ(manifest.packageOrder, std::vector<std::string>{"main.zip"});
  const Package& package = manifest.packages.at("main.zip");
  EXPECT_EQ(package.title, L"Main & files");
  EXPECT_EQ(package.group, L"Game");
  EXPECT_EQ(package.tooltip, L"All of it");
  EXPECT_EQ(package.name, L"Zendora");
  EXPECT_EQ(package.filename, "main.zip");
  EXPECT_EQ(package.filetype, "application/x-zip-compressed");
  EXPECT_EQ(package.password, "secret");
  EXPECT_EQ(package.folder, "{gta}");
  EXPECT_EQ(package.md5, "d41d8cd98f00b204e9800998ecf8427e");
  EXPECT_EQ(package.verify, "a.dll|b\\c.exe");
  EXPECT_EQ(package.size, 6000000000);
  EXPECT_EQ(package.upsize, 0x200000000);
  EXPECT_TRUE(package.isDefault);
  using Texts = std::map<std::string, std::string>;
  EXPECT_EQ(package.sources, (Texts{{"eu", "https://eu/main.zip"}, {"us", "https://us/main.zip"}}));
  EXPECT_EQ(package.link, "z.exe|Zendora");
  EXPECT_EQ(package.install, "setup.exe|/S");
  EXPECT_EQ(package.execute, "z.exe|-run");
  EXPECT_EQ(package.addons, (std::vector<std::string>{"config", "extra"}));
  ASSERT_EQ(package.registryItems.size(), 2u);
  EXPECT_EQ(package.registryItems[0].keyPath, "HKEY_CURRENT_USER\\Software\\Z");
  EXPECT_EQ(package.registryItems[0].phase, RegistryPhase::Pre);
  EXPECT_EQ(package.registryItems[0].values, (Texts{{"a", "1"}, {"b", "2"}}));
  EXPECT_EQ(package.registryItems[1].keyPath, "HKEY_LOCAL_MACHINE\\Software\\Z");
  EXPECT_EQ(package.registryItems[1].phase, RegistryPhase::Post);
}

TEST(ManifestReader, Sizes) {
  const std::pair<std::string, int64_t> cases[] = {
      {R"(<size value="0x10"/>)", 16},
      {R"(<size value="0XfF"/>)", 255},
      {R"(<size value="4294967296"/>)", 4294967296},
      {R"(<size value="-5"/>)", -5},
      {R"(<size value="many"/>)", 0},
      {R"(<size value=""/>)", 0},
      {R"(<size value="0x"/>)", 0},
      {"<size>7</size>", 0},
      {R"(<size value="1"/><size value="2"/>)", 2},
      {R"(<size value="1"/><size/>)", 0},
  };
  for (const auto& [xml, size] : cases) EXPECT_EQ(ReadOnePackage(xml).size, size) << xml;
}

TEST(ManifestReader, DisplayTextsAreUtf8AndNamesAreBytes) {
  const std::pair<std::string, std::wstring> titles[] = {
      {"<title>\xD0\x96</title>", L"\u0416"},
      {R"(<title value="attribute"/>)", L"attribute"},
      {R"(<title value="attribute">text</title>)", L"text"},
      {R"(<title value="attribute"><b>text</b></title>)", L"attribute"},
      {"<title><![CDATA[a<b]]></title>", L"a<b"},
      {"<title/>", L""},
      {"<title>cut\xD0</title>", L"cut\uFFFD"},
      {"<title>one</title><title>two</title>", L"two"},
      {"<Title>other case</Title>", L""},
  };
  for (const auto& [xml, title] : titles) EXPECT_EQ(ReadOnePackage(xml).title, title) << xml;
  EXPECT_EQ(ReadOnePackage("<name value=\"\xD0\x96\"/>").name, (std::wstring{0xD0, 0x96}));
  EXPECT_EQ(ReadOnePackage("<name>text</name>").name, L"");
}

TEST(ManifestReader, OnlyTheExactWordMakesAPackageDefault) {
  for (const std::string value : {"True", " true", "true ", "1", "", "false"}) {
    EXPECT_FALSE(ReadOnePackage("<default value=\"" + value + "\"/>").isDefault) << value;
  }
  EXPECT_FALSE(ReadOnePackage("<default/>").isDefault);
  EXPECT_TRUE(ReadOnePackage(R"(<default value="true"/>)").isDefault);
  EXPECT_FALSE(ReadOnePackage(R"(<default value="true"/><default value="no"/>)").isDefault);
}

TEST(ManifestReader, Tasks) {
  const Package package = ReadOnePackage(R"(
      <tasks>
        <link path="first" title="First"/><link path="last"/>
        <install path="i"/><execute args="a"/>
        <reg name="one" order="Before"><key name="n" value="old"/><key name="n" value="new"/><key/></reg>
      </tasks>
      <tasks><addon name="x"/><reg order="before"/><addon/></tasks>)");
  EXPECT_EQ(package.link, "last|");
  EXPECT_EQ(package.install, "i|");
  EXPECT_EQ(package.execute, "|a");
  EXPECT_EQ(package.addons, (std::vector<std::string>{"x", ""}));
  ASSERT_EQ(package.registryItems.size(), 2u);
  EXPECT_EQ(package.registryItems[0].phase, RegistryPhase::Post);
  EXPECT_EQ(package.registryItems[0].values, (std::map<std::string, std::string>{{"", ""}, {"n", "new"}}));
  EXPECT_EQ(package.registryItems[1].keyPath, "");
  EXPECT_EQ(package.registryItems[1].phase, RegistryPhase::Pre);
}

TEST(ManifestReader, OrderFollowsTheDocumentAndPackagesStayKnown) {
  const auto package = [](const std::string& filename, const std::string& md5) {
    return "<package><filename value=\"" + filename + "\"/><md5 value=\"" + md5 + "\"/></package>";
  };
  Manifest manifest;
  ReadInto(manifest, "<packages>" + package("z", "1") + "<other/>" + package("a", "2") + package("z", "3") +
                         "<package/></packages>");
  EXPECT_EQ(manifest.packageOrder, (std::vector<std::string>{"z", "a", "z", ""}));
  EXPECT_EQ(manifest.packages.at("z").md5, "3");

  ReadInto(manifest, "<sources/>");
  EXPECT_EQ(manifest.packageOrder.size(), 4u);

  ReadInto(manifest, "<packages>" + package("a", "4") + "</packages>");
  EXPECT_EQ(manifest.packageOrder, std::vector<std::string>{"a"});
  EXPECT_EQ(manifest.packages.at("a").md5, "4");
  EXPECT_EQ(manifest.packages.at("z").md5, "3");

  ReadInto(manifest, "<packages/>");
  EXPECT_TRUE(manifest.packageOrder.empty());
}

TEST(ManifestReader, SourceCatalogueAndSelection) {
  struct Case {
    std::string sources, selected;
    std::optional<std::string> newSelection;
  };
  const std::string two = R"(<source key="us" title="America"/><source key="eu" title="Europe"/>)";
  const Case cases[] = {
      {"<sources>" + two + "</sources>", "us", std::nullopt},
      {"<sources default=\"eu\">" + two + "</sources>", "us", std::nullopt},
      {"<sources default=\"us\">" + two + "</sources>", "", "us"},
      {"<sources default=\"us\">" + two + "</sources>", "gone", "us"},
      {"<sources default=\"absent\">" + two + "</sources>", "gone", "absent"},
      {"<sources default=\"\">" + two + "</sources>", "gone", ""},
      {"<sources>" + two + "</sources>", "gone", "eu"},
      {"<sources>" + two + "</sources>", "US", "eu"},
      {"<sources><source title=\"nameless\"/></sources>", "", ""},
      {"<sources/>", "us", ""},
      {"<sources default=\"eu\"/>", "us", "eu"},
      {"<packages/>", "gone", std::nullopt},
  };
  for (const Case& c : cases) {
    XMLDocument document;
    document.Parse(("<downloader>" + c.sources + "</downloader>").c_str());
    Manifest manifest;
    EXPECT_EQ(ReadSources(*FindManifestRoot(document), c.selected, manifest), c.newSelection)
        << c.sources << " with " << c.selected;
  }
}

TEST(ManifestReader, CatalogueIsReplacedWhole) {
  XMLDocument document;
  document.Parse(R"(<downloader><sources><source key="b" title="1"/><source key="b" title="2"/>
                    <source key="a"/><other key="c"/></sources></downloader>)");
  Manifest manifest;
  manifest.sources["old"] = {"old", "Old"};
  ReadSources(*FindManifestRoot(document), "", manifest);
  ASSERT_EQ(manifest.sources.size(), 2u);
  EXPECT_EQ(manifest.sources.at("b").key, "b");
  EXPECT_EQ(manifest.sources.at("b").title, "2");
  EXPECT_EQ(manifest.sources.at("a").title, "");
}

TEST(ManifestReader, Updater) {
  struct Case {
    std::string xml;
    UpdaterInfo expected;
  };
  const UpdaterInfo known = {"known", "https://help", 5, {"https://old"}};
  const std::string longMd5 = "0123456789abcdef0123456789abcdef";
  const Case cases[] = {
      {"<packages/>", known},
      {R"(<updater helpURL="https://new" filesize="9"><source url="u"/></updater>)", known},
      {R"(<updater md5="m"/>)", {"m", "https://help", 0, {}}},
      {R"(<updater md5="" helpURL=""/>)", {"", "", 0, {}}},
      {R"(<updater md5="m" helpURL="https://new" filesize="4294967295"><source url="b"/><source/><source url="a"/></updater>)",
       {"m", "https://new", 4294967295u, {"b", "", "a"}}},
      {R"(<updater md5="m" filesize="big"/>)", {"m", "https://help", 0, {}}},
      {"<updater md5=\"" + longMd5 + "more\"/>", {longMd5, "https://help", 0, {}}},
      {R"(<updater md5="first"/><updater md5="second"/>)", {"first", "https://help", 0, {}}},
  };
  for (const Case& c : cases) {
    XMLDocument document;
    document.Parse(("<downloader>" + c.xml + "</downloader>").c_str());
    tinyxml2::XMLElement* root = FindManifestRoot(document);
    UpdaterInfo updater = known;
    EXPECT_EQ(TakeUpdater(*root, updater), c.xml.starts_with("<updater")) << c.xml;
    EXPECT_EQ(updater.md5, c.expected.md5) << c.xml;
    EXPECT_EQ(updater.helpURL, c.expected.helpURL) << c.xml;
    EXPECT_EQ(updater.filesize, c.expected.filesize) << c.xml;
    EXPECT_EQ(updater.urls, c.expected.urls) << c.xml;
    EXPECT_EQ(root->FirstChildElement("updater"), nullptr) << c.xml;
  }
}

TEST(ManifestReader, RootIsTheFirstTopLevelDownloader) {
  struct Case {
    const char* xml;
    bool found;
  };
  for (const Case& c : {Case{"<a/><downloader/>", true}, Case{"<a><downloader/></a>", false},
                        Case{"<Downloader/>", false}, Case{"<!-- downloader -->", false}}) {
    XMLDocument document;
    document.Parse(c.xml);
    EXPECT_EQ(FindManifestRoot(document) != nullptr, c.found) << c.xml;
  }
}

// Whatever a damaged document still says is read without harm, and the order never names an unknown package.
TEST(ManifestReader, SurvivesDamagedDocuments) {
  int read = 0;
  const auto tryReading = [&](const std::string& text) {
    XMLDocument document;
    if (document.Parse(text.data(), text.size()) != tinyxml2::XML_SUCCESS) return;
    tinyxml2::XMLElement* root = FindManifestRoot(document);
    if (!root) return;
    ++read;
    Manifest manifest;
    TakeUpdater(*root, manifest.updater);
    ReadSources(*root, "", manifest);
    ReadPackages(*root, manifest);
    EXPECT_LE(manifest.updater.md5.size(), 32u);
    for (const std::string& filename : manifest.packageOrder) EXPECT_TRUE(manifest.packages.contains(filename)) << text;
  };
  for (size_t i = 0; i < kFullDocument.size(); ++i) {
    tryReading(kFullDocument.substr(0, i));
    for (const char damage : {'\0', 'x', '"', '<', '>', '/', '&', '\xFF'}) {
      std::string damaged = kFullDocument;
      damaged[i] = damage;
      tryReading(damaged);
    }
  }
  EXPECT_GT(read, 1000);
}
