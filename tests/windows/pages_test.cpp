#include "app/pages.h"

#include <gtest/gtest.h>

#include "app/context.h"
#include "support/test_window.h"

namespace {

TEST(Controls, ProgressIsTruncatedToThousandths) {
  const struct {
    uint64_t done, total;
    int position;
  } cases[] = {{5, 0, 0}, {2, 3, 666}, {4, 3, 1000}, {UINT64_MAX / 2, UINT64_MAX, 499}, {UINT64_MAX, UINT64_MAX, 1000}};
  for (const auto& test : cases) {
    EXPECT_EQ(ProgressPosition(test.done, test.total), test.position) << test.done << " of " << test.total;
  }
}

TEST(Pages, APageThatIsLeftIsReleasedUnlessAThreadStillFillsIt) {
  for (const bool filling : {false, true}) {
    TestWindow window(ComponentsPage);
    ComponentsPageControls* const page = &window.Components();
    const HWND label = page->totalSizeLabel.Window();
    const auto font = reinterpret_cast<HFONT>(SendMessageW(label, WM_GETFONT, 0, 0));
    if (filling) app.manifestThread = ActiveThread();
    window.Run(ShowInstallPage);
    EXPECT_EQ(app.componentsPage, nullptr);
    EXPECT_FALSE(IsWindow(label));
    EXPECT_EQ(GetObjectType(font), filling ? DWORD{OBJ_FONT} : 0u);
    if (filling) {
      page->totalSizeLabel.SetText(L"too late");
      delete page;
    }
  }
}

TEST(Pages, LogStaysAsItWasUntilTheEnd) {
  AppendLog(L"before there is a page");
  TestWindow window(InstallPage);
  const HWND log = window.Installation().logEdit.Window();
  AppendLog(L"first");
  SendMessageW(log, WM_CHAR, L'x', 0);
  SendMessageW(log, EM_SETSEL, 1, 3);
  AppendLog(L"Gr\u00FC\u00DFe \u0438 \u043F\u0440\u0438\u0432\u0435\u0442");
  DWORD start = 0, end = 0;
  SendMessageW(log, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
  EXPECT_TRUE(start == 1 && end == 3) << "the selection is the user's";

  window.Run(ShowClosingPage);
  EXPECT_FALSE(IsWindowVisible(log));
  AppendLog(L"the worker goes on");
  EXPECT_EQ(window.LogLines(),
            (std::vector<std::wstring>{L"first", L"Gr\u00FC\u00DFe \u0438 \u043F\u0440\u0438\u0432\u0435\u0442",
                                       L"the worker goes on"}));
}

}  // namespace
