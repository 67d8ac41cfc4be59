// Handles that close themselves. The invalid value and the closer are part of each handle's type.
#pragma once

#include <windows.h>

#include <utility>

// Owns one handle; `Traits` names the type, its invalid value and how it is closed.
template <typename Traits>
class UniqueHandle {
 public:
  using Type = typename Traits::Type;

  UniqueHandle() = default;
  explicit UniqueHandle(Type handle) : handle_(handle) {}
  UniqueHandle(UniqueHandle&& other) noexcept : handle_(other.Release()) {}
  UniqueHandle& operator=(UniqueHandle&& other) noexcept {
    if (this != &other) Reset(other.Release());
    return *this;
  }
  ~UniqueHandle() { Reset(); }

  explicit operator bool() const { return handle_ != Traits::Invalid(); }
  Type Get() const { return handle_; }
  Type Release() { return std::exchange(handle_, Traits::Invalid()); }

  // Closes the handle that is held, if any; the thread's last error stays as it was.
  void Reset(Type handle = Traits::Invalid()) {
    const Type old = std::exchange(handle_, handle);
    if (old == Traits::Invalid()) return;
    const DWORD last_error = GetLastError();
    Traits::Close(old);
    SetLastError(last_error);
  }

  // For functions that store a new handle through a pointer; what was held is closed first.
  Type* Receive() {
    Reset();
    return &handle_;
  }

 private:
  Type handle_ = Traits::Invalid();
};

struct FileHandleTraits {
  using Type = HANDLE;
  static Type Invalid() { return INVALID_HANDLE_VALUE; }
  static void Close(Type handle) { CloseHandle(handle); }
};
using FileHandle = UniqueHandle<FileHandleTraits>;

// Processes, threads, mutexes, events.
struct KernelHandleTraits {
  using Type = HANDLE;
  static Type Invalid() { return nullptr; }
  static void Close(Type handle) { CloseHandle(handle); }
};
using KernelHandle = UniqueHandle<KernelHandleTraits>;

struct RegKeyTraits {
  using Type = HKEY;
  static Type Invalid() { return nullptr; }
  static void Close(Type handle) { RegCloseKey(handle); }
};
using RegKey = UniqueHandle<RegKeyTraits>;

struct ModuleTraits {
  using Type = HMODULE;
  static Type Invalid() { return nullptr; }
  static void Close(Type handle) { FreeLibrary(handle); }
};
using ModuleHandle = UniqueHandle<ModuleTraits>;

struct FontTraits {
  using Type = HFONT;
  static Type Invalid() { return nullptr; }
  static void Close(Type handle) { DeleteObject(handle); }
};
using FontHandle = UniqueHandle<FontTraits>;

struct BrushTraits {
  using Type = HBRUSH;
  static Type Invalid() { return nullptr; }
  static void Close(Type handle) { DeleteObject(handle); }
};
using BrushHandle = UniqueHandle<BrushTraits>;

struct IconTraits {
  using Type = HICON;
  static Type Invalid() { return nullptr; }
  static void Close(Type handle) { DestroyIcon(handle); }
};
using IconHandle = UniqueHandle<IconTraits>;

struct FindTraits {
  using Type = HANDLE;
  static Type Invalid() { return INVALID_HANDLE_VALUE; }
  static void Close(Type handle) { FindClose(handle); }
};
using FindHandle = UniqueHandle<FindTraits>;
