// COM objects and texts that release themselves.
#pragma once

#include <objbase.h>
#include <windows.h>

// Initialises COM on the calling thread (single-threaded apartment), and ends that when it goes.
class ComSession {
 public:
  ComSession() : result_(CoInitialize(nullptr)) {}
  ~ComSession() {
    if (SUCCEEDED(result_)) CoUninitialize();
  }
  ComSession(const ComSession&) = delete;
  ComSession& operator=(const ComSession&) = delete;

  HRESULT Result() const { return result_; }

 private:
  HRESULT result_;
};

// Owns one reference to an object.
template <typename T>
class ComPointer {
 public:
  ComPointer() = default;
  ~ComPointer() {
    if (object_) object_->Release();
  }
  ComPointer(const ComPointer&) = delete;
  ComPointer& operator=(const ComPointer&) = delete;

  T* Get() const { return object_; }
  T* operator->() const { return object_; }
  // For a function that stores a reference through a pointer, once.
  T** Receive() { return &object_; }

 private:
  T* object_ = nullptr;
};

// Owns a text that COM allocated.
class ComText {
 public:
  ComText() = default;
  ~ComText() { CoTaskMemFree(text_); }
  ComText(const ComText&) = delete;
  ComText& operator=(const ComText&) = delete;

  const wchar_t* Get() const { return text_; }
  wchar_t** Receive() { return &text_; }

 private:
  wchar_t* text_ = nullptr;
};
