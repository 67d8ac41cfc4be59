#include "install/transfer_status.h"

#include "core/context.h"
#include "core/localization.h"
#include "core/window_messages.h"
#include "install/run_display.h"
#include "system/files.h"
#include "ui/taskbar.h"

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

// A file that got shorter was begun anew: all of it has come since the last tick.
void TakeSpeedSample(uint64_t before, uint64_t now) {
  const uint64_t slot = transferStatus.sampleIndex;
  transferStatus.speedSamples[slot] = now >= before ? now - before : now;
  transferStatus.sampleIndex = (slot + 1) % ARRAYSIZE(transferStatus.speedSamples);
  uint64_t sum = 0;
  for (const uint64_t sample : transferStatus.speedSamples) sum += sample;
  transferStatus.currentSpeed = sum / ARRAYSIZE(transferStatus.speedSamples);
}

void ShowSpeed(uint64_t fileBytes) {
  const uint64_t speed = transferStatus.currentSpeed;
  const uint32_t retries = transferStatus.retryCount;
  if (speed == 0 && retries != 0) {
    ShowPackageDetail(LoadLocalizedString(STR_BAD_CONNECTION) + L" (" + std::to_wstring(retries) + L")");
  } else if (!transferStatus.hashing) {
    transferStatus.retryCount = 0;
    ShowPackageDetail(LoadLocalizedString(STR_SPEED) + L": " + FormatByteSize(speed) + L"/s (" +
                      FormatByteSize(transferStatus.downloadedBefore + fileBytes) + L" / " +
                      FormatByteSize(transferStatus.downloadTotal) + L")");
  }
}

}  // namespace

void OnSpeedTimerRequest(bool arm) {
  if (!arm) {
    if (KillTimer(app.mainWindow, kSpeedTimer)) transferStatus.timerArmed = false;
  } else if (!transferStatus.timerArmed) {
    transferStatus.timerArmed = SetTimer(app.mainWindow, kSpeedTimer, kSpeedTimerPeriodMs, OnSpeedTimer) != 0;
  }
}

void ArmSpeedTimer() { SendMessageW(app.mainWindow, kSpeedTimerMessage, TRUE, 0); }
void StopSpeedTimer() {
  SendMessageW(app.mainWindow, kSpeedTimerMessage, FALSE, 0);
  TellTaskbarRetrying(false);
}

void CALLBACK OnSpeedTimer(HWND, UINT, UINT_PTR, DWORD) {
  const uint64_t before = transferStatus.lastTickBytes;
  const uint64_t now = transferStatus.currentFileBytes;
  if (before != 0) {
    TakeSpeedSample(before, now);
    ShowSpeed(now);
  }
  // Also while not a single byte has come, of which the label tells nothing.
  TellTaskbarRetrying(transferStatus.currentSpeed == 0 && transferStatus.retryCount != 0);
  transferStatus.lastTickBytes = now;
}
