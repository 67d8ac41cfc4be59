// The texts of the program in its seven languages, and which language is used.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "resource.h"

// Primary language identifier -> the language's own name, in the order of the language menu.
const std::map<uint32_t, std::wstring>& UiLanguages();

// Settles app.uiLanguage from a stored language, or with 0 from the user's own Windows language (languages whose
// speakers mostly read Russian get Russian). False when that language is not offered: nothing changes then.
bool ResolveUiLanguage(uint32_t candidate);

// The language in which the calling thread loads strings from now on. Every thread calls it before its first string.
void SetThreadLanguage(uint32_t language);

// The language that the calling thread set last; English before that.
uint32_t ThreadLanguage();

// The text of a string resource (STR_...) in the calling thread's language, else in English, else empty. Any thread.
std::wstring LoadLocalizedString(unsigned id);
