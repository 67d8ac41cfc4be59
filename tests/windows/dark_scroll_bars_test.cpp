#include "app/dark_scroll_bars.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

std::wstring opened;
HTHEME WINAPI RecordOpening(HWND window, const wchar_t* classList) {
  opened = (window ? L"window " : L"") + std::wstring(classList ? classList : L"none");
  return nullptr;
}

// A module as the loader maps it, with the delayed import of two functions.
struct Module {
  IMAGE_DOS_HEADER dos{};
  IMAGE_NT_HEADERS headers{};
  IMAGE_DELAYLOAD_DESCRIPTOR libraries[2]{};
  char name[12] = "UxTheme.dll";
  DWORD_PTR names[3] = {IMAGE_ORDINAL_FLAG | 50, IMAGE_ORDINAL_FLAG | 49, 0}, slots[2] = {1, 2};

  Module() {
    dos.e_magic = IMAGE_DOS_SIGNATURE;
    dos.e_lfanew = offsetof(Module, headers);
    headers.Signature = IMAGE_NT_SIGNATURE;
    headers.OptionalHeader.Magic = IMAGE_NT_OPTIONAL_HDR_MAGIC;
    headers.OptionalHeader.SizeOfImage = sizeof(Module);
    headers.OptionalHeader.NumberOfRvaAndSizes = IMAGE_NUMBEROF_DIRECTORY_ENTRIES;
    headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_DELAY_IMPORT].VirtualAddress = At(libraries);
    libraries[0] = {{1}, At(name), 0, At(slots), At(names), 0, 0, 0};
  }
  DWORD At(const void* place) const {
    return static_cast<DWORD>(static_cast<const char*>(place) - reinterpret_cast<const char*>(this));
  }
  bool Darken() { return DarkenScrollBars(reinterpret_cast<HMODULE>(this), RecordOpening); }
};

TEST(DarkScrollBars, OnlyTheOneImportIsLedElsewhere) {
  Module module;
  ASSERT_TRUE(module.Darken());
  EXPECT_EQ(module.slots[0], 1u);
  const auto open = reinterpret_cast<decltype(&RecordOpening)>(module.slots[1]);
  const auto window = reinterpret_cast<HWND>(1);
  open(window, L"ScrollBar");
  EXPECT_EQ(opened, L"Explorer::ScrollBar");
  open(window, L"Explorer::ScrollBar");
  EXPECT_EQ(opened, L"window Explorer::ScrollBar");
  open(window, nullptr);
  EXPECT_EQ(opened, L"window none");
}

TEST(DarkScrollBars, ModuleThatIsOtherwiseStaysAsItIs) {
  void (*const changes[])(Module&) = {
      [](Module& module) { module.headers.OptionalHeader.Magic = 0x20B; },
      [](Module& module) { module.libraries[0].ImportAddressTableRVA = sizeof(Module) - 4; },
      [](Module& module) { module.names[1] = 49; },
  };
  for (const auto change : changes) {
    Module module;
    change(module);
    EXPECT_FALSE(module.Darken());
    EXPECT_EQ(module.slots[1], 2u);
  }
}

}  // namespace
