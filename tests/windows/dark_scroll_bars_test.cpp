// What is written into another module, on modules made for it.
#include "ui/theme/dark_scroll_bars.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <string>

namespace {

struct Image {
  IMAGE_DOS_HEADER dos;
  IMAGE_NT_HEADERS headers;
  IMAGE_DELAYLOAD_DESCRIPTOR libraries[3];
  char names[2][16];
  IMAGE_THUNK_DATA imports[4];  // of either library
  DWORD_PTR slots[2][4];
};

constexpr DWORD_PTR kUntouched = 0x1234;

void Describe(Image& image, DWORD library, const char* name) {
  strcpy(image.names[library], name);
  IMAGE_DELAYLOAD_DESCRIPTOR& descriptor = image.libraries[library];
  descriptor.Attributes.AllAttributes = 1;  // its addresses are relative
  descriptor.DllNameRVA = offsetof(Image, names) + sizeof image.names[0] * library;
  descriptor.ImportNameTableRVA = offsetof(Image, imports);
  descriptor.ImportAddressTableRVA = offsetof(Image, slots) + sizeof image.slots[0] * library;
}

DWORD Protect(Image* image, DWORD protection) {
  DWORD old = 0;
  VirtualProtect(image, sizeof *image, protection, &old);
  return old;
}

// A module as the common controls are: of two libraries that it loads late, the second is that of visual styles. The
// one before is gone.
Image& MakeModule() {
  static const auto memory = static_cast<Image*>(VirtualAlloc(nullptr, sizeof(Image), MEM_COMMIT, PAGE_READWRITE));
  Protect(memory, PAGE_READWRITE);
  Image& image = *memory;
  image = {};
  image.dos.e_magic = IMAGE_DOS_SIGNATURE;
  image.dos.e_lfanew = offsetof(Image, headers);
  image.headers.Signature = IMAGE_NT_SIGNATURE;
  image.headers.OptionalHeader.Magic = IMAGE_NT_OPTIONAL_HDR_MAGIC;
  image.headers.OptionalHeader.SizeOfImage = sizeof image;
  image.headers.OptionalHeader.NumberOfRvaAndSizes = IMAGE_NUMBEROF_DIRECTORY_ENTRIES;
  image.headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_DELAY_IMPORT].VirtualAddress =
      offsetof(Image, libraries);
  Describe(image, 0, "other.dll");
  Describe(image, 1, "UxTheme.DLL");
  image.imports[0].u1.AddressOfData = offsetof(Image, names);  // by name
  image.imports[1].u1.Ordinal = IMAGE_ORDINAL_FLAG | 47;
  image.imports[2].u1.Ordinal = IMAGE_ORDINAL_FLAG | 49;
  for (auto& slots : image.slots) std::ranges::fill(slots, kUntouched);
  return image;
}

HWND openedFor;
std::wstring openedClass;
HTHEME WINAPI RecordOpening(HWND window, const wchar_t* classList) {
  openedFor = window;
  openedClass = classList ? classList : L"none";
  return reinterpret_cast<HTHEME>(7);
}

bool Darken(Image& image) { return DarkenScrollBars(reinterpret_cast<HMODULE>(&image), RecordOpening); }

TEST(DarkScrollBars, LeadsOneCallThroughOurs) {
  Image& image = MakeModule();
  Protect(&image, PAGE_READONLY);  // as the loader leaves a module
  ASSERT_TRUE(Darken(image));
  EXPECT_EQ(std::ranges::count(image.slots[0], kUntouched), 4);
  EXPECT_EQ(std::ranges::count(image.slots[1], kUntouched), 3);
  EXPECT_EQ(Protect(&image, PAGE_READONLY), DWORD{PAGE_READONLY}) << "as it was";

  const auto open = reinterpret_cast<decltype(&RecordOpening)>(image.slots[1][2]);
  const HWND window = reinterpret_cast<HWND>(3);
  EXPECT_EQ(open(window, L"ScrollBar"), reinterpret_cast<HTHEME>(7));
  EXPECT_EQ(openedFor, nullptr);
  EXPECT_EQ(openedClass, L"Explorer::ScrollBar");
  for (const wchar_t* other : {L"scrollbar", L"ScrollBars", L"Header", L""}) {
    open(window, other);
    EXPECT_EQ(openedFor, window);
    EXPECT_EQ(openedClass, other);
  }
  open(window, nullptr);
  EXPECT_EQ(openedClass, L"none");
}

TEST(DarkScrollBars, LeavesOtherModulesAlone) {
  const std::function<void(Image&)> faults[] = {
      [](Image& image) { image.dos.e_magic = 0; },
      [](Image& image) { image.headers.OptionalHeader.DataDirectory[13].VirtualAddress = 0; },
      [](Image& image) { strcpy(image.names[1], "uxtheme.dl"); },
      [](Image& image) { image.libraries[1].Attributes.AllAttributes = 0; },
      [](Image& image) { image.libraries[1].ImportAddressTableRVA = sizeof(Image) - 1; },  // partly outside
      [](Image& image) { image.imports[1].u1.Ordinal = 0; },                               // the end of the table
  };
  for (const auto& fault : faults) {
    Image& image = MakeModule();
    fault(image);
    EXPECT_FALSE(Darken(image)) << "fault " << &fault - faults;
    EXPECT_EQ(image.slots[1][2], kUntouched);
  }
  EXPECT_FALSE(DarkenScrollBars(nullptr, RecordOpening));
}

}  // namespace
