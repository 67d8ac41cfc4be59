// How far the downloads of a run are, and the display of it.
#pragma once

#include <windows.h>

#include <cstdint>

#include "net/file_hash.h"
#include "net/http_client.h"
#include "system/shared_state.h"

// Sizes in bytes. Written by the worker and its callbacks and read by the speed timer on the UI thread, unless a field
// says otherwise.
struct TransferStatus {
  SharedWord<uint64_t> downloadTotal;     // of all packages of the run
  SharedWord<uint64_t> downloadedBefore;  // of the packages that are complete
  SharedWord<uint64_t> currentFileBytes;  // of the current package file, resume offset included
  SharedWord<uint64_t>
      lastTickBytes;  // currentFileBytes at the previous tick; UI thread. The worker sets 0: no sample yet
  SharedWord<uint64_t> speedSamples[3];  // per second; UI thread
  SharedWord<uint64_t> sampleIndex;      // next of them; UI thread
  SharedWord<uint64_t> currentSpeed;  // bytes per second; UI thread. Read, and at each source set to 0, by the worker
  SharedWord<uint32_t> retryCount;    // since data last flowed; counted by the worker, cleared by both
  SharedWord<bool> hashing;
  SharedWord<uint64_t> lastHashPercent;  // worker
  SharedWord<bool> timerArmed;           // UI thread
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
