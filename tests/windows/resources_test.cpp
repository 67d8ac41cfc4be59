#include <gtest/gtest.h>
#include <tinyxml2.h>
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <string>
#include <string_view>

#include "app/context.h"
#include "app/localization.h"
#include "system/text.h"

namespace {

// The bytes of a resource that is stored in exactly this language; empty when there is none.
std::string_view Resource(const wchar_t* type, unsigned id, unsigned language) {
  const HRSRC found = FindResourceExW(app.instance, type, MAKEINTRESOURCEW(id), static_cast<WORD>(language));
  if (!found) return {};
  const void* bytes = LockResource(LoadResource(app.instance, found));
  return {static_cast<const char*>(bytes), SizeofResource(app.instance, found)};
}

BOOL CALLBACK AddLanguage(HMODULE, LPCWSTR, LPCWSTR, WORD language, LONG_PTR languages) {
  reinterpret_cast<std::set<unsigned>*>(languages)->insert(language);
  return TRUE;
}

std::set<unsigned> LanguagesOf(const wchar_t* type, unsigned id) {
  std::set<unsigned> languages;
  EnumResourceLanguagesW(app.instance, type, MAKEINTRESOURCEW(id), AddLanguage, reinterpret_cast<LONG_PTR>(&languages));
  return languages;
}

// A text as one language's own string table has it, without falling back to English.
std::wstring TextIn(unsigned language, unsigned id) {
  const std::string_view bytes = Resource(RT_STRING, id / 16 + 1, language);
  if (bytes.empty()) return {};
  auto text = reinterpret_cast<const wchar_t*>(bytes.data());
  for (unsigned i = 0; i < id % 16; ++i) text += 1 + *text;
  return std::wstring(text + 1, *text);
}

// How a text ends, as far as it matters for what the program puts behind it.
std::wstring Ending(const std::wstring& text) {
  const size_t lastOther = text.find_last_not_of(L".:?! ");
  return lastOther == std::wstring::npos ? text : text.substr(lastOther + 1);
}

std::string_view BytesOf(std::wstring_view text) {
  return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)};
}

}  // namespace

TEST(Resources, AreStoredInTheLanguagesTheyAreLookedUpIn) {
  const std::set<unsigned> english = {LANG_ENGLISH}, neutral = {LANG_NEUTRAL};
  std::set<unsigned> all;
  for (const auto& [language, name] : UiLanguages()) all.insert(language);

  EXPECT_EQ(LanguagesOf(RT_MENU, MENU_MAIN), english);
  EXPECT_EQ(LanguagesOf(RT_ACCELERATOR, ACCELERATORS_MAIN), english);
  for (const unsigned dialog : {DIALOG_ABOUT, DIALOG_SPEED_LIMIT, DIALOG_UPDATE}) {
    EXPECT_EQ(LanguagesOf(RT_DIALOG, dialog), english) << "dialog " << dialog;
  }
  EXPECT_EQ(LanguagesOf(RT_GROUP_ICON, ICON_APPLICATION), neutral);
  for (unsigned block = STR_PRODUCT_TITLE / 16 + 1; block <= STR_BAD_CONNECTION / 16 + 1; ++block) {
    EXPECT_EQ(LanguagesOf(RT_STRING, block), all) << "string block " << block;
  }
}

// The program joins texts with ": ", " (", line breaks and question marks; a translation must end as the English does.
TEST(Resources, TranslationsFitTheJointsOfTheEnglishTexts) {
  for (const auto& [language, name] : UiLanguages()) {
    SCOPED_TRACE(WideToUtf8(name));
    int unlikeEnglish = 0;
    for (unsigned id = STR_PRODUCT_TITLE; id <= STR_BAD_CONNECTION; ++id) {
      const std::wstring english = TextIn(LANG_ENGLISH, id), text = TextIn(language, id);
      const std::string shown = "text " + std::to_string(id) + ": " + WideToUtf8(text);
      if (text != english) ++unlikeEnglish;
      ASSERT_FALSE(text.empty()) << shown;
      EXPECT_NE(text.front(), L' ') << shown;
      EXPECT_EQ(Ending(text), Ending(english)) << shown;
      EXPECT_EQ(text.find_first_of(L"&\t\r\n\""), std::wstring::npos) << shown;
      EXPECT_EQ(text.find(L"  "), std::wstring::npos) << shown;
      EXPECT_EQ(text.find(L'\uFFFD'), std::wstring::npos) << shown;
    }
    EXPECT_EQ(TextIn(language, STR_PRODUCT_TITLE), kProductTitle);
    EXPECT_NE(TextIn(language, STR_START_AS_ADMINISTRATOR).find(kProductTitle), std::wstring::npos);
    EXPECT_TRUE(unlikeEnglish > 70 || language == LANG_ENGLISH) << "hardly anything is translated";
  }
}

// Characters that each language can't be written without; they get lost when a file is read in a wrong code page.
TEST(Resources, TranslationsKeepTheirLetters) {
  EXPECT_EQ(TextIn(LANG_GERMAN, STR_OPEN), L"\u00D6ffnen");
  EXPECT_EQ(TextIn(LANG_SPANISH, STR_TOTAL_SIZE), L"Tama\u00F1o total");
  EXPECT_EQ(TextIn(LANG_POLISH, STR_ERROR), L"B\u0142\u0105d");
  EXPECT_EQ(TextIn(LANG_PORTUGUESE, STR_OPTIONS), L"Op\u00E7\u00F5es");
  EXPECT_EQ(TextIn(LANG_RUSSIAN, STR_FILE), L"\u0424\u0430\u0439\u043B");
  EXPECT_EQ(TextIn(LANG_TURKISH, STR_EXIT), L"\u00C7\u0131k\u0131\u015F");
}

TEST(Resources, MenuHasItsCommandsInTheirPlaces) {
  const HMENU menu = LoadMenuW(app.instance, MAKEINTRESOURCEW(MENU_MAIN));
  ASSERT_TRUE(menu);
  const std::vector<std::vector<UINT>> expected = {
      {COMMAND_LANGUAGES, 0, COMMAND_ABOUT, COMMAND_EXIT},
      {},
      {COMMAND_SPEED_LIMIT, COMMAND_TEMP_FOLDER, COMMAND_DELETE_APP_DATA},
  };
  ASSERT_EQ(GetMenuItemCount(menu), 3);
  for (int position = 0; position < 3; ++position) {
    std::vector<UINT> commands;
    const HMENU popup = GetSubMenu(menu, position);
    for (int i = 0; popup && i < GetMenuItemCount(popup); ++i) commands.push_back(GetMenuItemID(popup, i));
    EXPECT_EQ(commands, expected[static_cast<size_t>(position)]) << "popup " << position;
  }
  DestroyMenu(menu);
}

TEST(Resources, QuestionMarkOpensTheAboutDialog) {
  const HACCEL table = LoadAcceleratorsW(app.instance, MAKEINTRESOURCEW(ACCELERATORS_MAIN));
  ACCEL entries[3] = {};
  ASSERT_EQ(CopyAcceleratorTableW(table, entries, 3), 2);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(entries[i].fVirt & 0x7F, FALT);  // a character, not a virtual key
    EXPECT_EQ(entries[i].key, L"?/"[i]);
    EXPECT_EQ(entries[i].cmd, COMMAND_ABOUT);
  }
}

TEST(Resources, IconHasEverySizeInAFormThatVistaReads) {
  const std::string_view group = Resource(RT_GROUP_ICON, ICON_APPLICATION, LANG_NEUTRAL);
  ASSERT_GE(group.size(), 6u);
  constexpr size_t kEntrySize = 14;
  std::vector<int> sizes;
  for (size_t at = 6; at + kEntrySize <= group.size(); at += kEntrySize) {
    const int size = static_cast<unsigned char>(group[at]) ? static_cast<unsigned char>(group[at]) : 256;
    sizes.push_back(size);
    WORD image = 0;
    std::memcpy(&image, &group[at + 12], sizeof image);
    const bool packed = Resource(RT_ICON, image, LANG_NEUTRAL).substr(0, 4) == "\x89PNG";
    EXPECT_EQ(packed, size == 256) << "size " << size;

    const auto icon = static_cast<HICON>(
        LoadImageW(app.instance, MAKEINTRESOURCEW(ICON_APPLICATION), IMAGE_ICON, size, size, LR_DEFAULTCOLOR));
    EXPECT_TRUE(icon) << "size " << size;
    DestroyIcon(icon);
  }
  EXPECT_EQ(sizes, (std::vector<int>{16, 32, 48, 256}));
}

TEST(Resources, VersionBlockTellsTheProductsVersion) {
  constexpr size_t kFixedInfoPlace = 40;  // behind the block's header and key, at a multiple of 4
  const std::string_view block = Resource(RT_VERSION, VS_VERSION_INFO, LANG_ENGLISH);
  VS_FIXEDFILEINFO info{};
  ASSERT_GE(block.size(), kFixedInfoPlace + sizeof info);
  std::memcpy(&info, &block[kFixedInfoPlace], sizeof info);
  EXPECT_EQ(info.dwSignature, 0xFEEF04BDu);
  EXPECT_EQ(info.dwFileVersionMS, MAKELONG(0, 4));
  EXPECT_EQ(info.dwFileVersionLS, MAKELONG(8, 0));

  const std::wstring version(kProductVersion, std::end(kProductVersion) - 1);
  EXPECT_NE(block.find(BytesOf(L"ProductVersion" + std::wstring(1, L'\0'))), std::string_view::npos);
  EXPECT_NE(block.find(BytesOf(std::wstring(1, L'\0') + version + std::wstring(1, L'\0'))), std::string_view::npos);
  EXPECT_NE(block.find(BytesOf(kProductTitle)), std::string_view::npos);
}

// Windows refuses to start a program whose manifest it can't read.
TEST(Resources, ApplicationManifestIsWellFormedAndAsksForNoRights) {
  const std::string_view text = Resource(RT_MANIFEST, 1, LANG_NEUTRAL);
  tinyxml2::XMLDocument document;
  ASSERT_EQ(document.Parse(text.data(), text.size()), tinyxml2::XML_SUCCESS);
  const tinyxml2::XMLHandle assembly(document.FirstChildElement("assembly"));

  const auto* level = tinyxml2::XMLHandle(assembly)
                          .FirstChildElement("trustInfo")
                          .FirstChildElement("security")
                          .FirstChildElement("requestedPrivileges")
                          .FirstChildElement("requestedExecutionLevel")
                          .ToElement();
  ASSERT_TRUE(level);
  EXPECT_STREQ(level->Attribute("level"), "asInvoker");
  EXPECT_STREQ(level->Attribute("uiAccess"), "false");

  const auto* controls = tinyxml2::XMLHandle(assembly)
                             .FirstChildElement("dependency")
                             .FirstChildElement("dependentAssembly")
                             .FirstChildElement("assemblyIdentity")
                             .ToElement();
  ASSERT_TRUE(controls);
  EXPECT_STREQ(controls->Attribute("name"), "Microsoft.Windows.Common-Controls");
  EXPECT_STREQ(controls->Attribute("version"), "6.0.0.0");

  int systems = 0;
  const auto* system = tinyxml2::XMLHandle(assembly)
                           .FirstChildElement("compatibility")
                           .FirstChildElement("application")
                           .FirstChildElement("supportedOS")
                           .ToElement();
  for (; system; system = system->NextSiblingElement("supportedOS")) ++systems;
  EXPECT_EQ(systems, 5);
}
