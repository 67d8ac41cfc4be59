#include "app/dark_scroll_bars.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace {

std::vector<std::pair<HWND, std::wstring>> opened;

HTHEME WINAPI RecordOpening(HWND window, const wchar_t* classList) {
  opened.emplace_back(window, classList ? classList : L"(none)");
  return reinterpret_cast<HTHEME>(0x5BAB);
}

constexpr DWORD kDirectory = 0x400, kLibraryName = 0x500, kOtherName = 0x540, kNames = 0x600, kSlots = 0x2000;
constexpr DWORD kImageSize = 0x3000;
constexpr DWORD_PTR kUnresolved = 0x11111111;
constexpr int kSlotCount = 3, kOpenSlot = 1;

// A module as the loader maps it, with a delayed import of three functions; the slots lie on a page of their own.
class Module {
 public:
  Module() : base_(static_cast<char*>(VirtualAlloc(nullptr, kImageSize, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE))) {
    auto& dos = At<IMAGE_DOS_HEADER>(0);
    dos.e_magic = IMAGE_DOS_SIGNATURE;
    dos.e_lfanew = 0x80;
    Headers().Signature = IMAGE_NT_SIGNATURE;
    auto& optional = Headers().OptionalHeader;
    optional.Magic = IMAGE_NT_OPTIONAL_HDR_MAGIC;
    optional.SizeOfImage = kImageSize;
    optional.NumberOfRvaAndSizes = IMAGE_NUMBEROF_DIRECTORY_ENTRIES;
    optional.DataDirectory[13] = {kDirectory, 3 * sizeof(IMAGE_DELAYLOAD_DESCRIPTOR)};

    memcpy(base_ + kOtherName, "uxtheme.drv", 12);
    memcpy(base_ + kLibraryName, "UxTheme.dll", 12);
    Library(0) = {{1}, kOtherName, 0, kSlots, kNames, 0, 0, 0};
    Library(1) = {{1}, kLibraryName, 0, kSlots + sizeof(DWORD_PTR), kNames + sizeof(DWORD_PTR), 0, 0, 0};
    Name(0) = IMAGE_ORDINAL_FLAG | 49;  // of the other library
    Name(1) = 0x700;                    // by name
    Name(2) = IMAGE_ORDINAL_FLAG | 49;
    Name(3) = IMAGE_ORDINAL_FLAG | 50;
    for (int i = 0; i <= kSlotCount; ++i) Slot(i) = kUnresolved + static_cast<DWORD>(i);
  }
  ~Module() { VirtualFree(base_, 0, MEM_RELEASE); }
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;

  template <typename T>
  T& At(DWORD address) {
    return *reinterpret_cast<T*>(base_ + address);
  }
  IMAGE_NT_HEADERS& Headers() { return At<IMAGE_NT_HEADERS>(0x80); }
  IMAGE_DELAYLOAD_DESCRIPTOR& Library(DWORD index) {
    return At<IMAGE_DELAYLOAD_DESCRIPTOR>(kDirectory + index * sizeof(IMAGE_DELAYLOAD_DESCRIPTOR));
  }
  DWORD_PTR& Name(DWORD index) { return At<DWORD_PTR>(kNames + index * sizeof(DWORD_PTR)); }
  DWORD_PTR& Slot(int index) { return At<DWORD_PTR>(kSlots + static_cast<DWORD>(index) * sizeof(DWORD_PTR)); }

  std::string Bytes() const { return {base_, kImageSize}; }
  DWORD SlotProtection() const {
    MEMORY_BASIC_INFORMATION memory{};
    VirtualQuery(base_ + kSlots, &memory, sizeof(memory));
    return memory.Protect;
  }
  void Protect() const {
    DWORD old = 0;
    VirtualProtect(base_, kImageSize, PAGE_READONLY, &old);
  }
  HMODULE Handle() const { return reinterpret_cast<HMODULE>(base_); }

 private:
  char* base_;
};

TEST(DarkScrollBars, OnlyTheOneImportIsLedElsewhere) {
  Module module;
  std::string expected = module.Bytes();
  module.Protect();
  ASSERT_TRUE(DarkenScrollBars(module.Handle(), &RecordOpening));
  EXPECT_EQ(module.SlotProtection(), static_cast<DWORD>(PAGE_READONLY));
  const DWORD_PTR replacement = module.Slot(2);
  memcpy(expected.data() + kSlots + 2 * sizeof(DWORD_PTR), &replacement, sizeof(replacement));
  EXPECT_TRUE(module.Bytes() == expected);

  const auto open = reinterpret_cast<decltype(&RecordOpening)>(replacement);
  const auto window = reinterpret_cast<HWND>(0x1234);
  opened.clear();
  for (const wchar_t* classList : {L"ScrollBar", L"Scrollbar", L"Explorer::ScrollBar", L"", (const wchar_t*)nullptr}) {
    EXPECT_EQ(open(window, classList), reinterpret_cast<HTHEME>(0x5BAB));
  }
  const std::vector<std::pair<HWND, std::wstring>> calls{{nullptr, L"Explorer::ScrollBar"},
                                                         {window, L"Scrollbar"},
                                                         {window, L"Explorer::ScrollBar"},
                                                         {window, L""},
                                                         {window, L"(none)"}};
  EXPECT_EQ(opened, calls);
}

TEST(DarkScrollBars, AModuleThatIsOtherwiseStaysAsItIs) {
  const struct {
    const char* what;
    std::function<void(Module&)> change;
  } cases[] = {
      {"not a module", [](Module& module) { module.At<WORD>(0) = 0; }},
      {"no headers", [](Module& module) { module.Headers().Signature = 0; }},
      {"headers before the module", [](Module& module) { module.At<IMAGE_DOS_HEADER>(0).e_lfanew = -1; }},
      {"another kind of headers", [](Module& module) { module.Headers().OptionalHeader.Magic = 0x20B; }},
      {"too few directories", [](Module& module) { module.Headers().OptionalHeader.NumberOfRvaAndSizes = 13; }},
      {"no delayed imports",
       [](Module& module) { module.Headers().OptionalHeader.DataDirectory[13].VirtualAddress = 0; }},
      {"imports outside",
       [](Module& module) { module.Headers().OptionalHeader.DataDirectory[13].VirtualAddress = kImageSize - 8; }},
      {"imports far outside",
       [](Module& module) { module.Headers().OptionalHeader.DataDirectory[13].VirtualAddress = 0xFFFFFFF0; }},
      {"another library", [](Module& module) { module.At<char>(kLibraryName) = 'v'; }},
      {"a longer name", [](Module& module) { memcpy(&module.At<char>(kLibraryName), "uxtheme.dll2", 13); }},
      {"the name outside", [](Module& module) { module.Library(1).DllNameRVA = kImageSize - 3; }},
      {"addresses that are not relative", [](Module& module) { module.Library(1).Attributes.AllAttributes = 0; }},
      {"other ordinals", [](Module& module) { module.Name(2) = IMAGE_ORDINAL_FLAG | 48; }},
      {"a name at 49", [](Module& module) { module.Name(2) = 49; }},
      {"no names", [](Module& module) { module.Library(1).ImportNameTableRVA = 0; }},
      {"names outside", [](Module& module) { module.Library(1).ImportNameTableRVA = kImageSize; }},
      {"slots outside", [](Module& module) { module.Library(1).ImportAddressTableRVA = kImageSize - 4; }},
      {"slots far outside", [](Module& module) { module.Library(1).ImportAddressTableRVA = 0xFFFFFFFC; }},
      {"no slots", [](Module& module) { module.Library(1).ImportAddressTableRVA = 0; }},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.what);
    Module module;
    test.change(module);
    const std::string before = module.Bytes();
    module.Protect();
    EXPECT_FALSE(DarkenScrollBars(module.Handle(), &RecordOpening));
    EXPECT_TRUE(module.Bytes() == before);
    EXPECT_EQ(module.SlotProtection(), static_cast<DWORD>(PAGE_READONLY));
  }
  EXPECT_FALSE(DarkenScrollBars(nullptr, &RecordOpening));
}

}  // namespace
