// What the worker leaves for the window.
#include "ui/mailbox.h"

#include <future>

#include "support/test_window.h"

namespace {

// Whether a worker gets its work done while the UI thread does something else.
bool FinishesWhileTheWindowIsBusy(const TestWindow& window, const std::function<void()>& work) {
  std::future<void> worker;
  bool finished = false;
  window.Run([&] {
    worker = std::async(std::launch::async, work);
    finished = worker.wait_for(std::chrono::seconds(10)) == std::future_status::ready;
  });
  worker.get();
  return finished;
}

// How often something was inserted into the log.
int insertions = 0;
LRESULT CALLBACK CountInsertions(HWND log, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR) {
  if (message == EM_REPLACESEL) ++insertions;
  return DefSubclassProc(log, message, wParam, lParam);
}

LRESULT PositionOf(const ProgressBar& bar) { return SendMessageW(bar.Window(), PBM_GETPOS, 0, 0); }

TEST(Mailbox, ABusyWindowKeepsNobodyWaitingAndShowsItAllAtOnce) {
  const TestWindow window;
  InstallPageControls& page = window.Installation();
  window.Run([&] { SetWindowSubclass(page.logEdit.Window(), CountInsertions, 0, 0); });
  AppendLog(L"first");
  EXPECT_EQ(TextOf(page.logEdit), L"first\r\n");
  SendMessageW(page.logEdit.Window(), EM_SETSEL, 1, 3);
  std::wstring expected = L"first\r\n";
  EXPECT_TRUE(FinishesWhileTheWindowIsBusy(window, [&] {
    for (int i = 1; i <= 300; ++i) {
      page.packageLabel.SetText(std::to_wstring(i));
      page.totalProgress.SetPosition(i);
      AppendLog(std::to_wstring(i));
      expected += std::to_wstring(i) + L"\r\n";
    }
  }));
  EXPECT_EQ(TextOf(page.logEdit), expected);
  EXPECT_EQ(TextOf(page.packageLabel), L"300");
  EXPECT_EQ(PositionOf(page.totalProgress), 300);
  EXPECT_EQ(SendMessageW(page.logEdit.Window(), EM_GETSEL, 0, 0), MAKELRESULT(1, 3));
  EXPECT_EQ(insertions, 2);
}

TEST(Mailbox, TheWindowsOwnThreadOvertakesNothing) {
  const TestWindow window;
  InstallPageControls& page = window.Installation();
  window.Run([&] {
    std::thread([&] {
      page.cancelButton.SetText(L"worker");
      AppendLog(L"worker");
    }).join();
    page.cancelButton.SetText(L"window");
    AppendLog(L"window");
    EXPECT_EQ(TextOf(page.cancelButton.Window()), L"window");
    EXPECT_EQ(TextOf(page.logEdit.Window()), L"worker\r\nwindow\r\n");
  });
  EXPECT_EQ(TextOf(page.cancelButton), L"window");
}

}  // namespace
