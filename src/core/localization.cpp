#include "core/localization.h"

#include <windows.h>

#include "core/context.h"

namespace {

thread_local LANGID threadLanguage = LANG_ENGLISH;

// Languages whose speakers mostly read Russian.
bool ReadsRussian(LANGID language) {
  switch (language) {
    case LANG_UKRAINIAN:
    case LANG_BELARUSIAN:
    case LANG_KAZAK:
    case LANG_UZBEK:
    case LANG_TAJIK:
    case LANG_TURKMEN:
    case LANG_KYRGYZ:
    case LANG_ARMENIAN:
      return true;
    default:
      return false;
  }
}

// A string table is stored in blocks of 16 texts, each a length and as many characters, numbered from 1.
std::wstring LoadStringIn(LANGID language, unsigned id) {
  const HRSRC found = FindResourceExW(app.instance, RT_STRING, MAKEINTRESOURCEW(id / 16 + 1), language);
  const HGLOBAL block = found ? LoadResource(app.instance, found) : nullptr;
  auto text = block ? static_cast<const wchar_t*>(LockResource(block)) : nullptr;
  if (!text) return {};
  for (unsigned i = 0; i < id % 16; ++i) text += 1 + *text;
  return std::wstring(text + 1, *text);
}

}  // namespace

const std::map<uint32_t, std::wstring>& UiLanguages() {
  static const auto& languages = *new std::map<uint32_t, std::wstring>{
      {LANG_GERMAN, L"Deutsch"},
      {LANG_ENGLISH, L"English"},
      {LANG_SPANISH, L"Espa\u00F1ol"},
      {LANG_POLISH, L"Polski"},
      {LANG_PORTUGUESE, L"Portugu\u00EAs"},
      {LANG_RUSSIAN, L"\u0420\u0443\u0441\u0441\u043A\u0438\u0439"},
      {LANG_TURKISH, L"T\u00FCrk\u00E7e"},
  };
  return languages;
}

uint32_t ResolveUiLanguage(uint32_t stored) {
  uint32_t language = stored;
  if (language == 0) {
    language = PRIMARYLANGID(GetUserDefaultUILanguage());
    if (ReadsRussian(static_cast<LANGID>(language))) language = LANG_RUSSIAN;
  }
  return UiLanguages().contains(language) ? language : uint32_t{LANG_ENGLISH};
}

void SetThreadLanguage(uint32_t language) {
  threadLanguage = static_cast<LANGID>(language);
  SetThreadUILanguage(threadLanguage);
}

uint32_t ThreadLanguage() { return threadLanguage; }

std::wstring LoadLocalizedString(unsigned id) { return LoadLocalizedString(id, threadLanguage); }

// Not LoadStringW: which of a thread's, a user's and a system's languages that one prefers differs between systems,
// while this gives the same text on each.
std::wstring LoadLocalizedString(unsigned id, uint32_t language) {
  std::wstring text = LoadStringIn(MAKELANGID(static_cast<LANGID>(language), SUBLANG_NEUTRAL), id);
  return text.empty() ? LoadStringIn(MAKELANGID(LANG_ENGLISH, SUBLANG_NEUTRAL), id) : text;
}
