// How far the downloads of a run are, and the display of it.
#pragma once

#include <windows.h>

#include <cstdint>

#include "net/file_hash.h"
#include "net/http_client.h"
#include "system/shared_state.h"

// Written by the worker and its callbacks; read by the speed timer on the UI thread. Sizes in bytes.
struct TransferStatus {
  SharedWord<uint64_t> downloadTotal;     // of all packages of the run
  SharedWord<uint64_t> downloadedBefore;  // of the packages that are complete
  SharedWord<uint64_t> currentFileBytes;  // of the current package file, resume offset included
  SharedWord<uint64_t> lastTickBytes;     // currentFileBytes at the previous tick; 0: no sample yet
  SharedWord<uint64_t> speedSamples[3];   // per second; UI thread
  SharedWord<uint64_t> sampleIndex;       // next of them; UI thread
  SharedWord<uint64_t> currentSpeed;      // bytes per second
  SharedWord<uint32_t> retryCount;        // since data last flowed; the timer clears it
  SharedWord<bool> hashing;
  SharedWord<uint64_t> lastHashPercent;
  SharedWord<bool> timerArmed;
};
extern TransferStatus& transferStatus;

// Callbacks of a package's transfer and of its hashing. Worker.
void OnDownloadProgress(DownloadProgress* progress);
void OnHashProgress(HashProgress* progress);

// The one-second timer of the main window. The worker has it armed and stopped by the window's thread, to which it
// belongs, and goes on when that has been done. OnSpeedTimer, its procedure, refreshes the speed line on that thread.
void ArmSpeedTimer();
void StopSpeedTimer();
void OnSpeedTimerRequest(bool arm);  // kSpeedTimerMessage
void CALLBACK OnSpeedTimer(HWND window, UINT message, UINT_PTR id, DWORD time);
