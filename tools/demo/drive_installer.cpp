// Watches and operates a running installer for the scripts that show it, one step a call:
//   drive_installer wait components|install           until the page is there and filled
//   drive_installer show TEXT                         until a label contains the text
//   drive_installer yes TEXT                          until a message box asks that; answers it
//   drive_installer finish                            until the installation has ended
//   drive_installer log | boxes                       prints the log, or the message boxes that wait for an answer
//   drive_installer choose NUMBER                     chooses a menu command
//   drive_installer dialog | dismiss                  until a dialog or message box is open; closes it
//   drive_installer question                          until a message box asks something
//   drive_installer close                             closes the window, and waits until it is gone
//   drive_installer leave                             asks it to close, and waits until it shows that it will
// The status is 0 when what was waited for happened. A message box that nobody will answer ends every wait.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "support/installer_window.h"
#include "system/text.h"

namespace {

constexpr std::chrono::minutes kLimit{5};

void Print(const std::wstring& line) { std::printf("%s\n", WideToUtf8(line).c_str()); }

DWORD ProcessOf(HWND window) {
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  return process;
}

// Waits while nothing asks for a person; true when the condition came to hold.
bool Await(const std::function<bool(HWND window)>& condition) {
  bool met = false;
  const bool ended = WaitUntil(
      [&] {
        const HWND window = FindInstallerWindow();
        met = window && condition(window);
        return met || (window && FindBox(ProcessOf(window)).window);
      },
      kLimit);
  if (!met) std::fprintf(stderr, ended ? "a message box waits for an answer\n" : "it takes too long\n");
  return met;
}

bool AwaitPage(Page page) {
  return Await([page](HWND window) {
    return PageOf(window) == page && (page != ComponentsPage || IsWindowEnabled(BottomButton(window)));
  });
}

bool AwaitText(std::wstring_view text) {
  return Await([text](HWND window) { return LabelsShow(window, text); });
}

bool AnswerYes(std::wstring_view question) {
  InstallerBox box;
  const auto asked = [&box] {
    box = FindBox(ProcessOf(FindInstallerWindow()));
    return box.window != nullptr;
  };
  if (!WaitUntil(asked, kLimit) || box.text.find(question) == std::wstring::npos) return false;
  AnswerBox(box, IDYES);
  return WaitUntil([&box] { return !IsWindow(box.window); }, kLimit);
}

bool AwaitEnd() {
  // The last thing that an installation does is to rename its button.
  return Await([](HWND window) {
    return (LogHas(window, L"Installation finished") || LogHas(window, L"Installation cancelled")) &&
           ShownText(BottomButton(window)) == L"Exit";
  });
}

bool PrintLog() {
  const HWND window = FindInstallerWindow();
  for (const std::wstring& line : LogLines(window)) Print(line);
  return window != nullptr;
}

bool PrintBoxes() {
  const InstallerBox box = FindBox(ProcessOf(FindInstallerWindow()));
  if (box.window) Print(L"[" + box.caption + L"] " + box.text);
  return true;
}

HWND OpenBox() { return FindBox(ProcessOf(FindInstallerWindow())).window; }

bool AwaitDialog() {
  return WaitUntil([] { return OpenBox() != nullptr; }, kLimit);
}

bool AwaitQuestion() {
  return WaitUntil([] { return GetDlgItem(OpenBox(), IDNO) != nullptr; }, kLimit);
}

bool Dismiss() {
  const HWND box = OpenBox();
  // A question has no Cancel, and is answered with No.
  PostMessageW(box, WM_COMMAND, GetDlgItem(box, IDNO) ? IDNO : IDCANCEL, 0);
  return WaitUntil([box] { return !IsWindow(box); }, kLimit);
}

bool Choose(std::string_view command) {
  ChooseCommand(FindInstallerWindow(), std::atoi(std::string(command).c_str()));
  return true;
}

bool Close() {
  PostMessageW(FindInstallerWindow(), WM_CLOSE, 0, 0);
  return WaitUntil([] { return !FindInstallerWindow(); }, kLimit);
}

bool Leave() { return PostMessageW(FindInstallerWindow(), WM_CLOSE, 0, 0) && AwaitPage(ClosingPage); }

bool Run(std::string_view step, std::string_view argument) {
  if (step == "wait" && argument == "components") return AwaitPage(ComponentsPage);
  if (step == "wait" && argument == "install") return AwaitPage(InstallPage);
  if (step == "show") return AwaitText(Utf8ToWide(argument));
  if (step == "yes") return AnswerYes(Utf8ToWide(argument));
  if (step == "finish") return AwaitEnd();
  if (step == "log") return PrintLog();
  if (step == "boxes") return PrintBoxes();
  if (step == "choose") return Choose(argument);
  if (step == "dialog") return AwaitDialog();
  if (step == "question") return AwaitQuestion();
  if (step == "dismiss") return Dismiss();
  if (step == "close") return Close();
  if (step == "leave") return Leave();
  std::fprintf(stderr, "unknown step\n");
  return false;
}

}  // namespace

int main(int argc, char** argv) { return Run(argc > 1 ? argv[1] : "", argc > 2 ? argv[2] : "") ? 0 : 1; }
