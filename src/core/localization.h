// The texts of the program in its seven languages, and which language is used.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "resource.h"

// Primary language identifier -> the language's own name, in the order of the language menu.
const std::map<uint32_t, std::wstring>& UiLanguages();

// The language to use: the stored one, or for 0 the user's own Windows language (languages whose speakers mostly read
// Russian give Russian). English when that language is not offered.
uint32_t ResolveUiLanguage(uint32_t stored);

// The language in which the calling thread loads strings from now on. Every thread calls it before its first string.
void SetThreadLanguage(uint32_t language);

// The language that the calling thread set last; English before that.
uint32_t ThreadLanguage();

// The text of a string resource (STR_...) in the calling thread's language, else in English, else empty. Any thread.
std::wstring LoadLocalizedString(unsigned id);
// The same in another language.
std::wstring LoadLocalizedString(unsigned id, uint32_t language);
