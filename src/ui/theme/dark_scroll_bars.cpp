// A list view draws its scroll bars itself. It opens their style as "ScrollBar" below the list's own style,
// "ItemsView", which has no dark scroll bars, so they would stay light. A style that has them, such as
// "DarkMode_Explorer", would change the rows and the titles of groups too, and a style can't be set for single parts.
// So the one call with which the common controls open that style is led through a function of ours. It is their delayed
// import of ordinal 49 of uxtheme.dll: one pointer, and nothing but that call reads it.
#include "ui/theme/dark_scroll_bars.h"

#include <cstring>
#include <cwchar>

namespace {

constexpr WORD kOpenNcThemeDataOrdinal = 49;

decltype(ThemeApi::OpenNcThemeData) systemOpenNcThemeData;

HTHEME WINAPI OpenNcThemeDataDark(HWND window, const wchar_t* classList) {
  // Without a window the style follows the application's mode, not that of one window.
  if (classList && wcscmp(classList, L"ScrollBar") == 0) {
    return systemOpenNcThemeData(nullptr, L"Explorer::ScrollBar");
  }
  return systemOpenNcThemeData(window, classList);
}

// A module as the loader has mapped it. What lies outside reads as missing.
class MappedModule {
 public:
  explicit MappedModule(HMODULE module) : base_(reinterpret_cast<char*>(module)) {
    const auto dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base_);
    if (dos->e_magic != IMAGE_DOS_SIGNATURE || dos->e_lfanew < 0) return;
    const auto headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base_ + dos->e_lfanew);
    if (headers->Signature != IMAGE_NT_SIGNATURE || headers->OptionalHeader.Magic != IMAGE_NT_OPTIONAL_HDR_MAGIC)
      return;
    optional_ = &headers->OptionalHeader;
  }

  // The object at an address relative to the module, or null.
  template <typename T>
  T* At(DWORD address) const {
    const bool inside = optional_ && address != 0 && optional_->SizeOfImage >= sizeof(T) &&
                        address <= optional_->SizeOfImage - sizeof(T);
    return inside ? reinterpret_cast<T*>(base_ + address) : nullptr;
  }

  bool TextIs(DWORD address, const char* text) const {
    const size_t size = strlen(text) + 1;
    for (size_t i = 0; i < size; ++i) {
      const auto character = At<const char>(address + static_cast<DWORD>(i));
      if (!character || LowerCase(*character) != text[i]) return false;
    }
    return true;
  }

  DWORD DirectoryAddress(DWORD index) const {
    return optional_ && index < optional_->NumberOfRvaAndSizes ? optional_->DataDirectory[index].VirtualAddress : 0;
  }

 private:
  static char LowerCase(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
  }

  char* base_;
  const IMAGE_OPTIONAL_HEADER* optional_ = nullptr;
};

const IMAGE_DELAYLOAD_DESCRIPTOR* FindDelayedLibrary(const MappedModule& module, const char* library) {
  DWORD address = module.DirectoryAddress(IMAGE_DIRECTORY_ENTRY_DELAY_IMPORT);
  for (;; address += sizeof(IMAGE_DELAYLOAD_DESCRIPTOR)) {
    const auto descriptor = module.At<const IMAGE_DELAYLOAD_DESCRIPTOR>(address);
    if (!descriptor || descriptor->DllNameRVA == 0) return nullptr;
    if (descriptor->Attributes.RvaBased && module.TextIs(descriptor->DllNameRVA, library)) return descriptor;
  }
}

// The slot that holds the address of a function imported by ordinal. Names and slots stand in two tables side by side.
DWORD_PTR* FindSlot(const MappedModule& module, const IMAGE_DELAYLOAD_DESCRIPTOR& library, WORD ordinal) {
  for (DWORD offset = 0;; offset += sizeof(IMAGE_THUNK_DATA)) {
    const auto name = module.At<const IMAGE_THUNK_DATA>(library.ImportNameTableRVA + offset);
    if (!name || name->u1.AddressOfData == 0) return nullptr;
    if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal) && IMAGE_ORDINAL(name->u1.Ordinal) == ordinal) {
      return library.ImportAddressTableRVA ? module.At<DWORD_PTR>(library.ImportAddressTableRVA + offset) : nullptr;
    }
  }
}

bool WriteProtected(DWORD_PTR& slot, DWORD_PTR value) {
  DWORD protection = 0;
  if (!VirtualProtect(&slot, sizeof(slot), PAGE_READWRITE, &protection)) return false;
  slot = value;
  VirtualProtect(&slot, sizeof(slot), protection, &protection);
  return true;
}

}  // namespace

bool DarkenScrollBars(HMODULE commonControls, decltype(ThemeApi::OpenNcThemeData) openNcThemeData) {
  if (!commonControls) return false;
  const MappedModule module(commonControls);
  const auto library = FindDelayedLibrary(module, "uxtheme.dll");
  if (!library) return false;
  const auto slot = FindSlot(module, *library, kOpenNcThemeDataOrdinal);
  if (!slot) return false;
  systemOpenNcThemeData = openNcThemeData;
  return WriteProtected(*slot, reinterpret_cast<DWORD_PTR>(&OpenNcThemeDataDark));
}
