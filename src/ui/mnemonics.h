// The underlined letters that press a button or open a menu together with Alt. They are chosen while the program runs,
// so that they never collide, whatever the language.
#pragma once

#include <string>

// One set of texts that are shown together.
class Mnemonics {
 public:
  // The text as buttons and menus take it: a "&" of its own is doubled, and one stands before a letter that no other
  // text of the set has, if there is such a letter.
  std::wstring Mark(const std::wstring& text);

 private:
  size_t FindLetter(const std::wstring& text) const;

  std::wstring taken_;
};

// A text that can't be chosen with a letter: each "&" is doubled.
std::wstring WithoutMnemonic(const std::wstring& text);

// The text of a button or a title of the menu bar in the calling thread's language, marked so that all of the main
// window can be told apart, which may have another language by now. Any thread.
std::wstring LoadMarkedString(unsigned id);

// The same for such a text that has been marked before.
std::wstring MarkAnew(std::wstring marked);
