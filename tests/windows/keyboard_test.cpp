// The main window without a mouse.
#include <set>

#include "app/commands.h"
#include "app/component_list.h"
#include "core/localization.h"
#include "install/run_display.h"
#include "support/test_manifest.h"
#include "support/test_window.h"
#include "ui/mailbox.h"

namespace {

class Keyboard : public testing::Test {
 protected:
  Keyboard() {
    app.isAdmin = true;
    LoadTestManifest(
        "<downloader><sources><source key='m' title='Main'/></sources><packages>"
        "<package><filename value='a'/></package><package><filename value='b'/></package></packages></downloader>");
    window_.Run(PopulateComponentList);
  }

  const TestWindow window_{CreateProgramWindow};
};

TEST_F(Keyboard, TabGoesRoundWhatTakesInput) {
  const auto& components = window_.Components();
  EXPECT_EQ(TabRound(window_.Window()),
            (std::vector<HWND>{components.itemsView, components.installButton.Window(),
                               components.installPathEdit.Window(), components.selectFolderButton.Window()}));
  window_.Run(ShowInstallPage);
  const auto& installation = window_.Installation();
  EXPECT_EQ(TabRound(window_.Window()),
            (std::vector<HWND>{installation.cancelButton.Window(), installation.logEdit.Window(),
                               installation.deleteTmpCheckbox.Window()}));
}

// The letters after "&", in lower case; "" for a text without one.
std::wstring LetterOf(std::wstring text) {
  for (size_t i = 0; i + 1 < text.size(); ++i) {
    if (text[i] != L'&') continue;
    if (text[i + 1] != L'&') return CharLowerW(text.data() + i + 1), text.substr(i + 1, 1);
    ++i;
  }
  return {};
}

void ExpectLettersOfTheirOwn(const std::vector<std::wstring>& texts) {
  std::set<std::wstring> letters;
  for (const std::wstring& text : texts) {
    EXPECT_NE(LetterOf(text), L"") << testing::PrintToString(text);
    EXPECT_TRUE(letters.insert(LetterOf(text)).second) << testing::PrintToString(texts);
  }
}

std::vector<std::wstring> TextsOf(HMENU menu) {
  std::vector<std::wstring> texts;
  for (int place = 0; place < GetMenuItemCount(menu); ++place) {
    wchar_t text[100] = L"";
    if (GetMenuStringW(menu, static_cast<UINT>(place), text, 100, MF_BYPOSITION)) texts.push_back(text);
  }
  return texts;
}

void ExpectLettersOfTheirOwnWith(HMENU menu, const std::vector<const Control*>& controls) {
  std::vector<std::wstring> together = TextsOf(menu);
  for (const Control* control : controls) together.push_back(TextOf(*control));
  ExpectLettersOfTheirOwn(together);
}

TEST_F(Keyboard, LettersNeverCollideInAnyLanguage) {
  for (const auto& [language, name] : UiLanguages()) {
    window_.Run([language = language] { SetUiLanguage(language); });
    const HMENU menu = GetMenu(window_.Window());
    for (const int popup : {0, 2}) ExpectLettersOfTheirOwn(TextsOf(GetSubMenu(menu, popup)));
    ExpectLettersOfTheirOwn(TextsOf(GetSubMenu(GetSubMenu(menu, 0), 0)));
    const auto& page = window_.Components();
    ExpectLettersOfTheirOwnWith(menu, {&page.selectFolderButton, &page.installButton});
  }
}

// The button keeps its text when the user changes the language during a run, and the worker keeps its language.
TEST_F(Keyboard, LettersOfARunNeverCollideWhateverLanguageItBeganIn) {
  for (const auto& [workers, workersName] : UiLanguages()) {
    SetThreadLanguage(workers);
    for (const auto& [language, name] : UiLanguages()) {
      window_.Run([first = workers, language = language] {
        SetUiLanguage(first);
        ShowInstallPage();
        SetUiLanguage(language);
      });
      const auto& page = window_.Installation();
      for (const unsigned shown : {STR_CANCEL, STR_EXIT}) {
        if (shown == STR_EXIT) OfferExit();
        ExpectLettersOfTheirOwnWith(GetMenu(window_.Window()), {&page.deleteTmpCheckbox, &page.cancelButton});
        std::wstring text = TextOf(page.cancelButton);
        std::erase(text, L'&');
        EXPECT_EQ(text, LoadLocalizedString(shown));
      }
    }
  }
}

// The first line that is shown, once all that was appended is there.
LRESULT TopLine(HWND log) {
  Mailbox::Settle(app.mainWindow);
  return SendMessageW(log, EM_GETFIRSTVISIBLELINE, 0, 0);
}

TEST_F(Keyboard, TheLogCanBeReadButNotChanged) {
  window_.Run(ShowInstallPage);
  const HWND log = window_.Installation().logEdit.Window();
  for (int i = 0; i < 40; ++i) AppendLog(L"line " + std::to_wstring(i));
  const LRESULT end = TopLine(log);
  EXPECT_GT(end, 20) << "it follows its end";
  const std::wstring text = TextOf(log);
  SendMessageW(log, EM_SETSEL, 0, 4);
  for (const UINT message : {UINT{WM_CUT}, UINT{WM_CLEAR}, UINT{WM_PASTE}, UINT{WM_UNDO}, UINT{EM_UNDO}}) {
    SendMessageW(log, message, 0, 0);
  }
  for (const WPARAM key : {VK_DELETE, VK_BACK}) SendMessageW(log, WM_KEYDOWN, key, 1);
  SendMessageW(log, WM_CHAR, L'x', 1);
  constexpr LPARAM kWithAlt = 1 << 29;
  SendMessageW(log, WM_SYSKEYDOWN, VK_BACK, kWithAlt | 1);
  EXPECT_EQ(TextOf(log), text);

  SendMessageW(log, WM_KEYDOWN, VK_HOME, 1);
  EXPECT_EQ(TopLine(log), 0);
  SendMessageW(log, WM_KEYDOWN, VK_DOWN, 1);
  AppendLog(L"more");
  EXPECT_EQ(TopLine(log), 1) << "what the user reads stays";
  DWORD from = 0, to = 0;
  SendMessageW(log, EM_GETSEL, reinterpret_cast<WPARAM>(&from), reinterpret_cast<LPARAM>(&to));
  EXPECT_EQ(to - from, 4u) << "so does what he has selected";
  SendMessageW(log, WM_KEYDOWN, VK_END, 1);
  AppendLog(L"and more");
  EXPECT_GT(TopLine(log), end + 1);
}

}  // namespace
