#include "ui/scale.h"

#include "system/modules.h"
#include "system/shared_state.h"

namespace {

constexpr int kUnscaledDpi = 96;

// The worker measures nothing, but the first page of a test may be made on another thread than its window's.
SharedWord<int> scaleDpi{kUnscaledDpi};

// Windows 10 brought these with version 1607. Before it a program knows one scale only, that of the primary screen,
// and the system stretches its windows on others.
struct ScaleApi {
  UINT(WINAPI* GetDpiForWindow)(HWND window);
  int(WINAPI* GetSystemMetricsForDpi)(int metric, UINT dpi);
  BOOL(WINAPI* AdjustWindowRectExForDpi)(RECT* rect, DWORD style, BOOL menu, DWORD extendedStyle, UINT dpi);
};

const ScaleApi& Api() {
  static const ScaleApi api = [] {
    const HMODULE user32 = GetModuleHandleW(L"user32.dll");
    return ScaleApi{FindFunction<decltype(ScaleApi::GetDpiForWindow)>(user32, "GetDpiForWindow"),
                    FindFunction<decltype(ScaleApi::GetSystemMetricsForDpi)>(user32, "GetSystemMetricsForDpi"),
                    FindFunction<decltype(ScaleApi::AdjustWindowRectExForDpi)>(user32, "AdjustWindowRectExForDpi")};
  }();
  return api;
}

int DpiOfPrimaryScreen() {
  const HDC screen = GetDC(nullptr);
  const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
  ReleaseDC(nullptr, screen);
  return dpi;
}

// What the frame and the menu bar add to the client area.
SIZE FrameSize(DWORD style, int dpi) {
  RECT frame = {};
  if (Api().AdjustWindowRectExForDpi) {
    Api().AdjustWindowRectExForDpi(&frame, style, TRUE, 0, static_cast<UINT>(dpi));
  } else {
    AdjustWindowRectEx(&frame, style, TRUE, 0);
  }
  return {frame.right - frame.left, frame.bottom - frame.top};
}

int ScaledTo(int length, int dpi) { return MulDiv(length, dpi, kUnscaledDpi); }

}  // namespace

int DpiOf(HWND window) {
  const int dpi = Api().GetDpiForWindow ? static_cast<int>(Api().GetDpiForWindow(window)) : DpiOfPrimaryScreen();
  return dpi != 0 ? dpi : kUnscaledDpi;
}

void SetScale(int dpi) { scaleDpi = dpi; }

int Scaled(int length) { return ScaledTo(length, scaleDpi); }

SIZE ScaledWindowSize(SIZE size, DWORD style, int dpi) {
  if (dpi == kUnscaledDpi) return size;
  const SIZE unscaled = FrameSize(style, kUnscaledDpi), scaled = FrameSize(style, dpi);
  return {ScaledTo(size.cx - unscaled.cx, dpi) + scaled.cx, ScaledTo(size.cy - unscaled.cy, dpi) + scaled.cy};
}

int MetricAt(int metric, int dpi) {
  return Api().GetSystemMetricsForDpi ? Api().GetSystemMetricsForDpi(metric, static_cast<UINT>(dpi))
                                      : GetSystemMetrics(metric);
}
