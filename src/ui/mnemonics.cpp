#include "ui/mnemonics.h"

#include <windows.h>

#include "core/context.h"
#include "core/localization.h"

namespace {

// All that the menu bar and the pages of the main window show to be pressed. The order is that in which they choose
// their letters.
constexpr unsigned kMainWindowTexts[] = {STR_FILE, STR_DOWNLOAD_SOURCE, STR_OPTIONS, STR_INSTALL,
                                         STR_OPEN, STR_CANCEL,          STR_EXIT,    STR_DELETE_TEMP_FILES};

// Letters that have a key of their own, without a further one, on the keyboards of our languages.
bool HasKey(wchar_t letter) {
  return (letter >= L'a' && letter <= L'z') || (letter >= L'A' && letter <= L'Z') ||
         (letter >= L'\u0410' && letter <= L'\u044F');
}

// For characters above U+FFFF, which our texts don't have, this isn't right.
wchar_t LowerCase(wchar_t letter) {
  return static_cast<wchar_t>(reinterpret_cast<UINT_PTR>(CharLowerW(reinterpret_cast<wchar_t*>(UINT_PTR{letter}))));
}

// A text that isn't among them in the window's language takes a letter that they leave.
std::wstring MarkInMainWindow(const std::wstring& text) {
  Mnemonics mnemonics;
  for (const unsigned id : kMainWindowTexts) {
    const std::wstring other = LoadLocalizedString(id, app.uiLanguage);
    const std::wstring marked = mnemonics.Mark(other);
    if (other == text) return marked;
  }
  return mnemonics.Mark(text);
}

bool BeginsWord(const std::wstring& text, size_t place) { return place == 0 || text[place - 1] == L' '; }

}  // namespace

// The first letter if it is free, else that of another word, else any with a key of its own, else any at all.
size_t Mnemonics::FindLetter(const std::wstring& text) const {
  enum { BeginningsOfWords, LettersWithKey, AllLetters };
  for (const int candidates : {BeginningsOfWords, LettersWithKey, AllLetters}) {
    for (size_t i = 0; i < text.size(); ++i) {
      if (candidates == BeginningsOfWords && !BeginsWord(text, i)) continue;
      if (candidates == AllLetters ? !IsCharAlphaW(text[i]) : !HasKey(text[i])) continue;
      if (taken_.find(LowerCase(text[i])) == std::wstring::npos) return i;
    }
  }
  return std::wstring::npos;
}

std::wstring Mnemonics::Mark(const std::wstring& text) {
  const size_t letter = FindLetter(text);
  if (letter == std::wstring::npos) return WithoutMnemonic(text);
  taken_ += LowerCase(text[letter]);
  return WithoutMnemonic(text.substr(0, letter)) + L'&' + WithoutMnemonic(text.substr(letter));
}

std::wstring WithoutMnemonic(const std::wstring& text) {
  std::wstring escaped;
  for (const wchar_t character : text) escaped.append(character == L'&' ? 2 : 1, character);
  return escaped;
}

std::wstring LoadMarkedString(unsigned id) { return MarkInMainWindow(LoadLocalizedString(id)); }

std::wstring MarkAnew(std::wstring marked) {
  std::erase(marked, L'&');  // these texts have none of their own
  return MarkInMainWindow(marked);
}
