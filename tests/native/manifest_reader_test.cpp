#include "manifest/manifest_reader.h"

#include <gtest/gtest.h>
#include <tinyxml2.h>

using Names = std::vector<std::string>;

// Reads a document whose root holds `content`. Returns the source to select from now on, if it changes.
static std::optional<std::string> ReadInto(Manifest& manifest, const std::string& content, const char* selected = "") {
  tinyxml2::XMLDocument document;
  document.Parse(("<other/><downloader>" + content + "</downloader>").c_str());
  tinyxml2::XMLElement* root = FindManifestRoot(document);
  TakeUpdater(*root, manifest.updater);
  EXPECT_EQ(root->FirstChildElement("updater"), nullptr) << content;
  ReadPackages(*root, manifest);
  return ReadSources(*root, selected, manifest);
}

static Package ReadPackage(const std::string& children) {
  Manifest manifest;
  ReadInto(manifest, "<packages><package>" + children + "</package></packages>");
  return manifest.packages.begin()->second;
}

TEST(ManifestReader, ReadsEveryFieldOfAPackage) {
  const Package package = ReadPackage(R"(
      <title>Main &amp; files</title><group>Game</group><tooltip value="All of it"/><name value="Zendora"/>
      <filename value="main.zip"/><filetype value="zip"/><password value="secret"/><folder value="{gta}"/><unknown/>
      <default value="true"/><md5 value="d41d"/><verify value="a.dll|b\c.exe"/><size value="6000000000"/><upsize value="0x200000000"/>
      <sources><source key="us" url="https://us"/><source key="eu" url="https://eu"/></sources><tasks>
        <reg name="HKEY_CURRENT_USER\Z" order="before"><key name="b" value="2"/><key name="a" value="1"/></reg>
        <link path="z.exe" title="Zendora"/><install path="setup.exe"/><execute args="-run"/><reg><key/></reg>
        <addon name="config"/><addon/><unknown/></tasks>)");
  EXPECT_EQ(package.title + L"|" + package.group + L"|" + package.tooltip + L"|" + package.name,
            L"Main & files|Game|All of it|Zendora");
  EXPECT_EQ((Names{package.filename, package.filetype, package.password, package.folder, package.md5, package.verify}),
            (Names{"main.zip", "zip", "secret", "{gta}", "d41d", "a.dll|b\\c.exe"}));
  EXPECT_TRUE(package.isDefault);
  EXPECT_EQ(package.size, 6000000000);
  EXPECT_EQ(package.upsize, 0x200000000);
  EXPECT_EQ(package.sources.at("us") + package.sources.at("eu"), "https://ushttps://eu");
  EXPECT_EQ((Names{package.link, package.install, package.execute}), (Names{"z.exe|Zendora", "setup.exe|", "|-run"}));
  EXPECT_EQ(package.addons, (Names{"config", ""}));
  EXPECT_EQ(package.registryItems.at(0).keyPath, "HKEY_CURRENT_USER\\Z");
  EXPECT_EQ(package.registryItems.at(0).phase, RegistryPhase::Pre);
  EXPECT_EQ(package.registryItems.at(0).values.at("a") + package.registryItems.at(0).values.at("b"), "12");
  EXPECT_EQ(package.registryItems.at(1).phase, RegistryPhase::Post);
}

TEST(ManifestReader, ValuesInOtherForms) {
  EXPECT_EQ(ReadPackage("<title>one</title><title value='2'>\xD0\x96 cut\xD0</title>").title, L"\u0416 cut\uFFFD");
  EXPECT_EQ(ReadPackage("<name value='\xD0\x96'/>").name, (std::wstring{0xD0, 0x96})) << "bytes, not text";
  for (const std::string size : {"-5", "many", ""}) EXPECT_EQ(ReadPackage("<size value='" + size + "'/>").size, 0);
  EXPECT_FALSE(ReadPackage("<default value='True'/>").isDefault);
}

TEST(ManifestReader, SelectionFollowsTheCatalogueOfSources) {
  const std::string two = "<source key='us'/><source key='eu'/></sources>";
  Manifest manifest;
  EXPECT_EQ(ReadInto(manifest, "<sources/>", "us"), "");
  EXPECT_EQ(ReadInto(manifest, "<sources default='eu'>" + two, "us"), std::nullopt);
  EXPECT_EQ(ReadInto(manifest, "<sources default='us'>" + two, "gone"), "us");
  EXPECT_EQ(ReadInto(manifest, "<sources>" + two, "US"), "eu");
  EXPECT_EQ(ReadInto(manifest, "<packages/>", "gone"), std::nullopt);
}

TEST(ManifestReader, OnlyAnUpdaterWithAHashChangesTheAnnouncement) {
  Manifest manifest;
  manifest.updater = {"known", "https://help", 5, {"https://old"}};
  ReadInto(manifest, "<updater helpURL='https://new' filesize='9'/>");
  EXPECT_EQ(manifest.updater.helpURL, "https://help");
  ReadInto(manifest,
           "<updater md5='0123456789abcdef0123456789abcdef, longer'>"
           "<source url='b'/><source/></updater><updater md5='second'/>");
  EXPECT_EQ(manifest.updater.md5, "0123456789abcdef0123456789abcdef");
  EXPECT_EQ(manifest.updater.urls, (std::deque<std::string>{"b", ""}));
}
