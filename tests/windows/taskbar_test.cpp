// The taskbar button, which tells how far a run is.
#include "ui/taskbar.h"

#include <shobjidl.h>

#include <mutex>

#include "support/replaced_import.h"
#include "support/test_window.h"

extern "C" decltype(&CoCreateInstance) importedCoCreateInstance __asm__("__imp__CoCreateInstance@20");
extern "C" decltype(&FlashWindowEx) importedFlashWindow __asm__("__imp__FlashWindowEx@4");
extern "C" decltype(&GetForegroundWindow) importedForegroundWindow __asm__("__imp__GetForegroundWindow@0");

namespace {

using Shown = std::pair<TBPFLAG, ULONGLONG>;  // state and position
std::mutex shownLock;
std::vector<Shown> shown;
SharedWord<int> flashes;
HWND foreground = nullptr;

// The shell of a Windows that has all of it. A state without a position is none.
class FakeTaskbar : public ITaskbarList3 {
 public:
  HRESULT WINAPI QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
  ULONG WINAPI AddRef() override { return 2; }
  ULONG WINAPI Release() override { return 1; }
  HRESULT WINAPI HrInit() override { return S_OK; }
  HRESULT WINAPI AddTab(HWND) override { return E_NOTIMPL; }
  HRESULT WINAPI DeleteTab(HWND) override { return E_NOTIMPL; }
  HRESULT WINAPI ActivateTab(HWND) override { return E_NOTIMPL; }
  HRESULT WINAPI SetActiveAlt(HWND) override { return E_NOTIMPL; }
  HRESULT WINAPI MarkFullscreenWindow(HWND, BOOL) override { return E_NOTIMPL; }
  HRESULT WINAPI SetProgressValue(HWND, ULONGLONG done, ULONGLONG total) override {
    EXPECT_EQ(total, 1000u);
    Record(done);
    return S_OK;
  }
  HRESULT WINAPI SetProgressState(HWND, TBPFLAG flag) override {
    state_ = flag;
    if (flag == TBPF_NOPROGRESS) Record(0);
    return S_OK;
  }
  HRESULT WINAPI RegisterTab(HWND, HWND) override { return E_NOTIMPL; }
  HRESULT WINAPI UnregisterTab(HWND) override { return E_NOTIMPL; }
  HRESULT WINAPI SetTabOrder(HWND, HWND) override { return E_NOTIMPL; }
  HRESULT WINAPI SetTabActive(HWND, HWND, DWORD) override { return E_NOTIMPL; }
  HRESULT WINAPI ThumbBarAddButtons(HWND, UINT, LPTHUMBBUTTON) override { return E_NOTIMPL; }
  HRESULT WINAPI ThumbBarUpdateButtons(HWND, UINT, LPTHUMBBUTTON) override { return E_NOTIMPL; }
  HRESULT WINAPI ThumbBarSetImageList(HWND, HIMAGELIST) override { return E_NOTIMPL; }
  HRESULT WINAPI SetOverlayIcon(HWND, HICON, LPCWSTR) override { return E_NOTIMPL; }
  HRESULT WINAPI SetThumbnailTooltip(HWND, LPCWSTR) override { return E_NOTIMPL; }
  HRESULT WINAPI SetThumbnailClip(HWND, RECT*) override { return E_NOTIMPL; }

 private:
  void Record(ULONGLONG position) const {
    const std::lock_guard guard(shownLock);
    shown.emplace_back(state_, position);
  }
  TBPFLAG state_ = TBPF_NOPROGRESS;
};

HRESULT WINAPI GiveFakeTaskbar(REFCLSID, IUnknown*, DWORD, REFIID, void** object) {
  static FakeTaskbar taskbar;
  *object = &taskbar;
  return S_OK;
}
BOOL WINAPI CountFlash(FLASHWINFO* flash) {
  EXPECT_EQ(flash->dwFlags, DWORD{FLASHW_TRAY | FLASHW_TIMERNOFG});
  flashes.Add(1);
  return TRUE;
}
HWND WINAPI GiveForeground() { return foreground; }

TEST(TaskbarButton, TellsOfARunAndCallsTheUserWhoIsElsewhere) {
  const TestWindow window(CreateProgramWindow);
  const ReplacedImport create(importedCoCreateInstance, GiveFakeTaskbar);
  const ReplacedImport flash(importedFlashWindow, CountFlash);
  const ReplacedImport front(importedForegroundWindow, GiveForeground);
  const auto expect = [](const std::vector<Shown>& expected) {
    const auto seen = [] {
      const std::lock_guard guard(shownLock);
      return shown;
    };
    WaitUntil([&] { return seen().size() >= expected.size(); });
    EXPECT_EQ(seen(), expected);
    const std::lock_guard guard(shownLock);
    shown.clear();
  };
  for (const bool elsewhere : {true, false}) {
    foreground = elsewhere ? nullptr : window.Window();
    flashes = 0;
    {
      const TaskbarRun run;
      TellTaskbarProgress(400);
      TellTaskbarRetrying(true);
      expect({{TBPF_NORMAL, 0}, {TBPF_NORMAL, 400}, {TBPF_PAUSED, 400}});
      {
        const TaskbarCall call;
        expect({{TBPF_ERROR, 400}});
        EXPECT_EQ(flashes, elsewhere ? 1 : 0);
      }
      TellTaskbarRetrying(false);
      expect({{TBPF_PAUSED, 400}, {TBPF_NORMAL, 400}});
    }
    expect({{TBPF_NOPROGRESS, 0}});
    EXPECT_TRUE(WaitUntil([elsewhere] { return flashes == (elsewhere ? 2 : 0); }));
  }
}

}  // namespace
