#include "install/transfer_status.h"

#include "app/context.h"
#include "app/localization.h"
#include "install/run_display.h"
#include "system/files.h"

TransferStatus& transferStatus = *new TransferStatus;

void OnDownloadProgress(DownloadProgress* progress) {
  if (app.cancelRequested) {
    progress->cancel = true;
    return;
  }
  progress->speedLimit = app.speedLimitBytes;
  if (progress->downloaded == 0) return;
  transferStatus.currentFileBytes = progress->downloaded;
  ShowPackageProgress(transferStatus.downloadedBefore + progress->downloaded, transferStatus.downloadTotal);
}

void OnHashProgress(HashProgress* progress) {
  if (app.cancelRequested) {
    progress->cancel = true;
    return;
  }
  if (progress->percent == transferStatus.lastHashPercent) return;
  transferStatus.lastHashPercent = progress->percent;
  ShowPackageDetail(LoadLocalizedString(STR_CHECKING_FILE) + L" (" + std::to_wstring(progress->percent) + L"%)");
}

namespace {

constexpr UINT_PTR kSpeedTimer = 2022;
constexpr UINT kSpeedTimerPeriodMs = 1000;

bool IsCallFromWorker(int code, LPARAM lParam) {
  const auto& message = *reinterpret_cast<const CWPSTRUCT*>(lParam);
  return code == HC_ACTION && message.message == WM_NULL && message.hwnd == app.mainWindow;
}

LRESULT CALLBACK ArmOnWindowThread(int code, WPARAM wParam, LPARAM lParam) {
  if (IsCallFromWorker(code, lParam)) {
    transferStatus.timerArmed = SetTimer(app.mainWindow, kSpeedTimer, kSpeedTimerPeriodMs, OnSpeedTimer) != 0;
  }
  return CallNextHookEx(nullptr, code, wParam, lParam);
}

LRESULT CALLBACK StopOnWindowThread(int code, WPARAM wParam, LPARAM lParam) {
  if (IsCallFromWorker(code, lParam) && KillTimer(app.mainWindow, kSpeedTimer)) transferStatus.timerArmed = false;
  return CallNextHookEx(nullptr, code, wParam, lParam);
}

// A timer of a window belongs to the thread that owns the window. A hook on that thread takes the call there: it runs
// when the thread receives WM_NULL, which means nothing to the window itself.
void CallOnWindowThread(HOOKPROC procedure) {
  const HWND window = app.mainWindow;
  const DWORD thread = GetWindowThreadProcessId(window, nullptr);
  if (thread == 0) return;  // the window is gone
  const HHOOK hook = SetWindowsHookExW(WH_CALLWNDPROC, procedure, nullptr, thread);
  if (!hook) return;
  SendMessageW(window, WM_NULL, 0, 0);
  UnhookWindowsHookEx(hook);
}

// A file that got shorter was begun anew: all of it has come since the last tick.
void TakeSpeedSample(uint64_t before, uint64_t now) {
  const uint64_t slot = transferStatus.sampleIndex;
  transferStatus.speedSamples[slot] = now >= before ? now - before : now;
  transferStatus.sampleIndex = (slot + 1) % ARRAYSIZE(transferStatus.speedSamples);
  uint64_t sum = 0;
  for (const uint64_t sample : transferStatus.speedSamples) sum += sample;
  transferStatus.currentSpeed = sum / ARRAYSIZE(transferStatus.speedSamples);
}

std::wstring SizeText(uint64_t bytes) { return FormatByteSize(static_cast<int64_t>(bytes)); }

void ShowSpeed(uint64_t fileBytes) {
  const uint64_t speed = transferStatus.currentSpeed;
  const uint32_t retries = transferStatus.retryCount;
  if (speed == 0 && retries != 0) {
    ShowPackageDetail(LoadLocalizedString(STR_BAD_CONNECTION) + L" (" + std::to_wstring(retries) + L")");
  } else if (!transferStatus.hashing) {
    transferStatus.retryCount = 0;
    ShowPackageDetail(LoadLocalizedString(STR_SPEED) + L": " + SizeText(speed) + L"/s (" +
                      SizeText(transferStatus.downloadedBefore + fileBytes) + L" / " +
                      SizeText(transferStatus.downloadTotal) + L")");
  }
}

}  // namespace

void ArmSpeedTimer() {
  if (!transferStatus.timerArmed) CallOnWindowThread(ArmOnWindowThread);
}

void StopSpeedTimer() { CallOnWindowThread(StopOnWindowThread); }

void CALLBACK OnSpeedTimer(HWND, UINT, UINT_PTR, DWORD) {
  const uint64_t before = transferStatus.lastTickBytes;
  const uint64_t now = transferStatus.currentFileBytes;
  if (before != 0) {
    TakeSpeedSample(before, now);
    ShowSpeed(now);
  }
  transferStatus.lastTickBytes = now;
}
