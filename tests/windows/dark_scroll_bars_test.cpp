#include "app/dark_scroll_bars.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::wstring opened;
HTHEME WINAPI RecordOpening(HWND window, const wchar_t* classList) {
  opened = (window ? L"window " : L"") + std::wstring(classList);
  return nullptr;
}

// A module as the loader maps it, with the delayed import of two functions.
struct Module {
  IMAGE_DOS_HEADER dos{};
  IMAGE_NT_HEADERS headers{};
  IMAGE_DELAYLOAD_DESCRIPTOR libraries[2]{};
  char name[12] = "UxTheme.dll";
  DWORD_PTR names[3] = {IMAGE_ORDINAL_FLAG | 50, IMAGE_ORDINAL_FLAG | 49, 0}, slots[2] = {1, 2};
};

TEST(DarkScrollBars, OnlyTheOneImportIsLedElsewhere) {
  Module module;
  module.dos.e_magic = IMAGE_DOS_SIGNATURE;
  module.dos.e_lfanew = offsetof(Module, headers);
  module.headers.Signature = IMAGE_NT_SIGNATURE;
  IMAGE_OPTIONAL_HEADER& header = module.headers.OptionalHeader;
  header.Magic = IMAGE_NT_OPTIONAL_HDR_MAGIC;
  header.SizeOfImage = sizeof(Module);
  header.NumberOfRvaAndSizes = IMAGE_NUMBEROF_DIRECTORY_ENTRIES;
  header.DataDirectory[IMAGE_DIRECTORY_ENTRY_DELAY_IMPORT].VirtualAddress = offsetof(Module, libraries);
  module.libraries[0] = {{1}, offsetof(Module, name), 0, offsetof(Module, slots), offsetof(Module, names), 0, 0, 0};
  ASSERT_TRUE(DarkenScrollBars(reinterpret_cast<HMODULE>(&module), RecordOpening));
  EXPECT_EQ(module.slots[0], 1u);
  const auto open = reinterpret_cast<decltype(&RecordOpening)>(module.slots[1]);
  const auto window = reinterpret_cast<HWND>(1);
  open(window, L"ScrollBar");
  EXPECT_EQ(opened, L"Explorer::ScrollBar");
  open(window, L"Explorer::ScrollBar");
  EXPECT_EQ(opened, L"window Explorer::ScrollBar");
}

}  // namespace
