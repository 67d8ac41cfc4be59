#include "support/text_recorder.h"

#include <commctrl.h>

TextRecorder::TextRecorder(const TestWindow& window, const Control& control,
                           std::function<void(const std::wstring&)> onText)
    : window_(window), control_(control.Window()), onText_(std::move(onText)) {
  window_.Run([this] { SetWindowSubclass(control_, Procedure, 1, reinterpret_cast<DWORD_PTR>(this)); });
}

TextRecorder::~TextRecorder() {
  window_.Run([this] { RemoveWindowSubclass(control_, Procedure, 1); });
}

LRESULT CALLBACK TextRecorder::Procedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                         DWORD_PTR self) {
  if (message == WM_SETTEXT) {
    TextRecorder& recorder = *reinterpret_cast<TextRecorder*>(self);
    recorder.texts_.emplace_back(reinterpret_cast<const wchar_t*>(lParam));
    if (recorder.onText_) recorder.onText_(recorder.texts_.back());
  }
  return DefSubclassProc(control, message, wParam, lParam);
}
