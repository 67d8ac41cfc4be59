#include "install/installation_run.h"

#include <algorithm>
#include <memory>

#include "core/context.h"
#include "core/localization.h"
#include "core/site.h"
#include "install/finishing_tasks.h"
#include "install/game_paths.h"
#include "install/manifest_paths.h"
#include "install/package_download.h"
#include "install/package_paths.h"
#include "install/package_placement.h"
#include "install/registry_items.h"
#include "install/run_display.h"
#include "install/run_state.h"
#include "install/transfer_status.h"
#include "manifest/manifest_store.h"
#include "system/files.h"
#include "system/path_names.h"
#include "system/text.h"
#include "system/wakefulness.h"
#include "ui/message_boxes.h"
#include "ui/page_controls.h"
#include "ui/taskbar.h"

// The story starts at the end of this file.

namespace {

constexpr wchar_t kNothing[] = L"-";

// The package as the manifest has it now; null when it isn't listed. It stays as it is when the manifest is replaced.
std::shared_ptr<const Package> FindPackage(const std::string& filename) {
  const auto manifest = CurrentManifest();
  const auto found = manifest->packages.find(filename);
  if (found == manifest->packages.end()) return nullptr;
  return {manifest, &found->second};
}

void AppendToList(std::string& list, const std::string& filename) {
  if (!list.empty()) list += ',';
  list += filename;
}

// --- Before the run

// The folder of the game that this package would install, if the game is there; else empty.
std::wstring ExistingGameFolder(const std::string& filename) {
  if (filename == kGtaPackage && FileExistsNonEmpty(gamePaths.gtaExePath)) return gamePaths.gtaFolder;
  if (filename == kMtaPackage && FileExistsNonEmpty(gamePaths.mtaExePath)) return gamePaths.mtaFolder;
  return {};
}

void AskReinstallIntoExistingFolders(RunState& run) {
  if (!DetectGameInstallations(false)) return;
  std::wstring list;
  for (const std::string& filename : run.installList) {
    const auto package = FindPackage(filename);
    const std::wstring folder = ExistingGameFolder(filename);
    if (!package || folder.empty()) continue;
    run.existingFolders[filename] = folder;
    list += package->title + L"\n> " + folder + L"\n\n";
  }
  if (list.empty()) return;
  const std::wstring text =
      LoadLocalizedString(STR_COMPONENTS_FOUND) + L":\n\n" + list + LoadLocalizedString(STR_REINSTALL_EXISTING);
  if (ShowBox(text, LoadLocalizedString(STR_COMPONENTS), MB_YESNO | MB_ICONQUESTION) != IDYES) {
    run.existingFolders.clear();
  }
}

void TakeOverOptions(RunState& run) {
  run.installPath = *app.installPath.Get();
  run.tmpPath = *app.tmpPath.Get();
  run.selectedSource = *app.selectedSource.Get();
  run.initialLimitKB = app.maxDownloadSpeedKB;
  run.startTick = GetTickCount64();
  run.reports.SetUrl(TelemetryAddress());
  run.downloads.SetSpeedLimit(app.speedLimitBytes);
  run.downloads.SetGzipEnabled(false);
}

void ShowRunStart(const RunState& run) {
  AppendLog(L"Installation directory: " + run.installPath);
  AppendLog(L"Temporary directory: " + run.tmpPath);
  if (run.initialLimitKB != 0) AppendLog(L"Speed limit: " + std::to_wstring(run.initialLimitKB) + L" KB/s");
  ShowTotalText(LoadLocalizedString(STR_WAITING_FOR_DOWNLOAD));
  ShowPackageDetail(kNothing);
  ShowTotalDetail(kNothing);
  ShowPackageProgress(0, 1);
  ShowTotalProgress(0, 1);
}

void ListPackages(RunState& run) {
  for (const std::string& filename : run.installList) {
    if (!FindPackage(filename)) continue;
    AppendToList(run.installedList, filename);
    run.packageStats[filename] = {};
  }
}

// What the bars are measured by. To be taken anew when the manifest may have changed.
void AddUpPackages(RunState& run) {
  uint64_t downloadTotal = 0, downloadedBefore = 0;
  run.upsizeTotal = 0;
  for (const std::string& filename : run.installList) {
    const auto package = FindPackage(filename);
    if (!package) continue;
    downloadTotal += static_cast<uint64_t>(package->size);
    if (IsProven(run, *package)) downloadedBefore += static_cast<uint64_t>(package->size);
    run.upsizeTotal += static_cast<uint64_t>(package->upsize);
  }
  transferStatus.downloadTotal = downloadTotal;
  transferStatus.downloadedBefore = downloadedBefore;
}

// --- Reports

void SendStartReport(RunState& run) {
  StartReport report;
  report.uuid = app.uuid;
  report.packages = run.installedList;
  report.downloadTotal = transferStatus.downloadTotal;
  report.installPath = run.installPath;
  report.selectedSource = run.selectedSource;
  report.limitKB = app.maxDownloadSpeedKB;
  report.reinstall = !run.existingFolders.empty();
  report.selectionFromUser = app.selectionFromUser;
  run.reports.PostForm(BuildStartReport(report));
}

PhaseEnd DescribePhaseEnd(const RunState& run, bool cancelled) {
  PhaseEnd end;
  end.uuid = app.uuid;
  end.cancelled = cancelled;
  end.closeReason = app.closeReason;
  end.elapsedMs = GetTickCount64() - run.startTick;
  const uint32_t limit = app.maxDownloadSpeedKB;
  if (limit != run.initialLimitKB) end.changedLimitKB = limit;
  end.deleteTmpFiles = app.deleteTmpFiles;
  end.statsField = BuildStatsField(run.packageStats);
  end.errorRecords = run.errorRecords;
  return end;
}

// A phase that went smoothly is not worth a report.
void SendDownloadReport(RunState& run, bool cancelled) {
  if (run.errorRecords.empty() && !cancelled) return;
  run.reports.PostForm(BuildDownloadReport(DescribePhaseEnd(run, cancelled)));
}

void SendInstallReport(RunState& run, bool cancelled) {
  run.reports.PostForm(BuildInstallReport(DescribePhaseEnd(run, cancelled), run.installedList));
}

// --- Downloading

bool IsUnproven(const RunState& run, const std::string& filename) {
  const auto package = FindPackage(filename);
  return package && !IsProven(run, *package);
}

// Downloads the package at this place of the list, as often as that takes. False when the phase is over: cancelled, or
// given up by the user.
bool DownloadAt(RunState& run, size_t index) {
  for (;;) {
    const auto package = FindPackage(run.installList[index]);
    if (!package) return true;
    switch (DownloadPackage(run, *package, index, run.installList.size())) {
      case DownloadOutcome::Done:
        return true;
      case DownloadOutcome::Redo:
      case DownloadOutcome::FailedRetry:
        AddUpPackages(run);
        break;
      case DownloadOutcome::FailedStop:
      case DownloadOutcome::Cancelled:
        return false;
    }
  }
}

bool DownloadUnproven(RunState& run) {
  for (size_t i = 0; i < run.installList.size(); ++i) {
    if (IsUnproven(run, run.installList[i]) && !DownloadAt(run, i)) return false;
  }
  return true;
}

void DownloadPackages(RunState& run) {
  for (size_t i = 0; i < run.installList.size(); ++i) {
    if (!DownloadAt(run, i)) return;
  }
  // When the manifest was fetched anew, packages that were proven before may have changed, and others have come in.
  while (std::any_of(run.installList.begin(), run.installList.end(),
                     [&run](const std::string& filename) { return IsUnproven(run, filename); })) {
    if (!DownloadUnproven(run)) return;
  }
}

// --- Installing

enum class PlacementStep { Handled, TryAgain, Cancelled };

void ApplyRegistryPhase(const Package& package, RegistryPhase phase, const std::string& target) {
  const RegistryCounts counts = ApplyRegistryItems(package, phase, target);
  if (counts.attempted == 0) return;
  AppendLog(std::wstring(L"Registry items processed (") + (phase == RegistryPhase::Pre ? L"pre" : L"post") + L"): " +
            std::to_wstring(counts.succeeded) + L" / " + std::to_wstring(counts.attempted));
}

void FinishPackage(RunState& run, const Package& package, const std::wstring& target) {
  AppendToList(run.installedList, package.filename);
  ShowTotalDetail(LoadLocalizedString(STR_FINISHING_PACKAGE));
  const std::string targetUtf8 = WideToUtf8(target);
  ApplyRegistryPhase(package, RegistryPhase::Post, targetUtf8);
  RunAddons(package, targetUtf8);
  if (!package.link.empty()) CreateDesktopLink(package, target);
  if (!package.execute.empty()) RunExecuteTask(package, target);
}

void CountAsHandled(RunState& run, const Package& package) {
  run.upsizeDone += static_cast<uint64_t>(package.upsize);
  ShowTotalProgress(run.upsizeDone, run.upsizeTotal);
}

PlacementStep AskAfterFailure(RunState& run, const Package& package, uint32_t error) {
  if (app.cancelRequested) return PlacementStep::Cancelled;
  ShowTotalDetail(LoadLocalizedString(STR_ERROR));
  if (AskToTryAgain(STR_INSTALLATION_ERROR, package, error)) return PlacementStep::TryAgain;
  CountAsHandled(run, package);
  return PlacementStep::Handled;
}

PlacementStep PlaceAndFinish(RunState& run, const Package& package, size_t index, size_t count) {
  ShowTotalText(PackageHeadline(STR_INSTALLING_PACKAGE, package, index, count));
  ShowTotalDetail(kNothing);
  const std::wstring target = ResolveTargetFolder(run, package);
  if (target.empty()) {
    run.errorRecords += TargetMissingRecord(package.filename);
    AppendLog(L"Extraction path not found (" + WidenBytes(package.filename) + L")");
    return PlacementStep::Handled;
  }
  if (app.cancelRequested) return PlacementStep::Cancelled;
  if (!IsProven(run, package)) return AskAfterFailure(run, package, ERROR_INVALID_DATA);

  AppendLog(L"Extracting package: " + package.title);
  AppendLog(L"Target location: " + target);
  if (const auto unsafe = FindUnsafePath(package)) {
    AppendLog(L"[ERROR] Unsafe path (" + *unsafe + L")");
    return AskAfterFailure(run, package, ERROR_INVALID_NAME);
  }
  ApplyRegistryPhase(package, RegistryPhase::Pre, WideToUtf8(target));
  if (app.cancelRequested) return PlacementStep::Cancelled;

  const PlacementResult placement = PlacePackage(run, package, target);
  if (!placement.ok) return AskAfterFailure(run, package, placement.error);
  FinishPackage(run, package, target);
  CountAsHandled(run, package);
  return PlacementStep::Handled;
}

void ShowInstallStart() {
  ShowPackageText(LoadLocalizedString(STR_DOWNLOAD_COMPLETED));
  ShowPackageDetail(kNothing);
  ShowPackageProgress(1, 1);
}

void ShowInstallEnd(bool cancelled) {
  ShowTotalText(LoadLocalizedString(cancelled ? STR_INSTALLATION_CANCELLED : STR_INSTALLATION_FINISHED));
  ShowTotalProgress(cancelled ? 0 : 1, 1);
  ShowTotalDetail(kNothing);
  AppendLog(cancelled ? L"Installation cancelled" : L"Installation finished");
}

void PlacePackages(RunState& run) {
  const size_t count = run.installList.size();
  for (size_t i = 0; i < count && !app.cancelRequested;) {
    const auto package = FindPackage(run.installList[i]);
    const PlacementStep outcome = package ? PlaceAndFinish(run, *package, i, count) : PlacementStep::Handled;
    if (outcome == PlacementStep::Cancelled) return;
    if (outcome == PlacementStep::Handled) ++i;
  }
}

// --- Leaving

void DeleteTemporaryFiles(RunState& run) {
  run.proven.clear();
  for (const std::string& filename : run.installList) {
    if (!FindPackage(filename) || !IsSafeFileName(WidenBytes(filename))) continue;
    const std::wstring file = PackageFilePath(run, filename);
    DeleteFileW(StatRecordPath(file).c_str());
    DeleteFileW(file.c_str());
  }
}

// Hands the window back. True when it waits for that in order to close: it is then asked once more.
bool LeaveRun() {
  if (!app.windowHold.Release()) return false;
  PostMessageW(app.mainWindow, WM_CLOSE, 0, 0);
  return true;
}

void LeaveCancelledDownloads() {
  if (LeaveRun()) return;
  ShowPackageText(LoadLocalizedString(STR_INSTALLATION_CANCELLED));
  ShowPackageDetail(kNothing);
  ShowPackageProgress(0, 1);
}

void LeaveInstallPhase(RunState& run) {
  if (LeaveRun()) return;
  if (app.deleteTmpFiles) DeleteTemporaryFiles(run);
  app.cancelRequested.Utter();
  OfferExit();
}

// --- The phases

void BeginRun(RunState& run) {
  TakeOverOptions(run);
  CreateDirectories(run.tmpPath);  // the user may have deleted it since start-up
  ShowRunStart(run);
  ListPackages(run);
  AddUpPackages(run);
  SendStartReport(run);
}

// False when the phase was cancelled. What it reports and what follows must agree, also when the user cancels
// meanwhile.
bool RunDownloadPhase(RunState& run) {
  ArmSpeedTimer();
  DownloadPackages(run);
  StopSpeedTimer();
  const bool cancelled = app.cancelRequested;
  SendDownloadReport(run, cancelled);
  return !cancelled;
}

void RunInstallPhase(RunState& run) {
  run.errorRecords.clear();
  run.installedList.clear();
  AddUpPackages(run);
  ShowInstallStart();
  TellTaskbarProgress(0);
  PlacePackages(run);
  const bool cancelled = app.cancelRequested;
  ShowInstallEnd(cancelled);
  SendInstallReport(run, cancelled);
}

}  // namespace

void RunInstallation() {
  RunState run;
  run.installList = *app.installList.Get();
  AskReinstallIntoExistingFolders(run);
  if (!app.windowHold.Acquire()) return;  // closed while the question was open
  const Wakefulness awake;
  const TaskbarRun taskbar;
  BeginRun(run);
  if (!RunDownloadPhase(run)) return LeaveCancelledDownloads();
  RunInstallPhase(run);
  LeaveInstallPhase(run);
}

DWORD WINAPI InstallThreadProc(void*) {
  SetThreadLanguage(app.uiLanguage);
  RunInstallation();
  return 0;
}
