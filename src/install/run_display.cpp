#include "install/run_display.h"

#include "core/context.h"
#include "core/localization.h"
#include "net/error_text.h"
#include "ui/message_boxes.h"
#include "ui/mnemonics.h"
#include "ui/page_controls.h"
#include "ui/taskbar.h"

namespace {

void SetLabel(Label InstallPageControls::*label, const std::wstring& text) {
  if (InstallPageControls* const page = app.installPage) (page->*label).SetText(text);
}

void SetBar(ProgressBar InstallPageControls::*bar, uint64_t done, uint64_t total) {
  InstallPageControls* const page = app.installPage;
  const int position = ProgressPosition(done, total);
  if (page && (page->*bar).SetPosition(position)) TellTaskbarProgress(position);
}

}  // namespace

void ShowPackageText(const std::wstring& text) { SetLabel(&InstallPageControls::packageLabel, text); }
void ShowPackageDetail(const std::wstring& text) { SetLabel(&InstallPageControls::packageDetailLabel, text); }
void ShowTotalText(const std::wstring& text) { SetLabel(&InstallPageControls::totalLabel, text); }
void ShowTotalDetail(const std::wstring& text) { SetLabel(&InstallPageControls::totalDetailLabel, text); }

void ShowPackageProgress(uint64_t done, uint64_t total) { SetBar(&InstallPageControls::packageProgress, done, total); }
void ShowTotalProgress(uint64_t done, uint64_t total) { SetBar(&InstallPageControls::totalProgress, done, total); }

void OfferExit() {
  if (InstallPageControls* const page = app.installPage) page->cancelButton.SetText(LoadMarkedString(STR_EXIT));
}

std::wstring PackageHeadline(unsigned textId, const Package& package, size_t index, size_t count) {
  return LoadLocalizedString(textId) + L": " + package.title + L" (" + std::to_wstring(index + 1) + L" / " +
         std::to_wstring(count) + L")";
}

bool AskToTryAgain(unsigned headlineId, const Package& package, uint32_t error) {
  std::wstring text =
      LoadLocalizedString(headlineId) + L"\n\n" + LoadLocalizedString(STR_PACKAGE) + L": " + package.title;
  if (error != 0) {
    text += L"\n\n" + LoadLocalizedString(STR_ERROR_CODE) + L": " + std::to_wstring(error);
    if (const std::wstring description = GetErrorText(error); !description.empty()) text += L"\n" + description;
  }
  text += L"\n\n" + LoadLocalizedString(STR_TRY_AGAIN);
  return ShowBox(text, LoadLocalizedString(STR_ERROR), MB_YESNO | MB_ICONQUESTION) == IDYES;
}
