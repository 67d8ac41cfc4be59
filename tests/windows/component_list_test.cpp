#include "manifest/component_list.h"

#include <windows.h>
// commctrl.h needs windows.h before it.
#include <commctrl.h>
#include <gtest/gtest.h>

#include "app/localization.h"
#include "support/test_manifest.h"
#include "support/test_window.h"
#include "system/files.h"

namespace {

// What the list was sent since it was watched. Written by the UI thread while the test's thread waits for it.
struct SeenMessages {
  std::vector<std::pair<int, std::wstring>> groups;  // number and header
  std::vector<std::pair<std::wstring, int>> rows;    // title and group number
  bool groupView = false;
  int total = 0, stateQueries = 0;
};

LRESULT CALLBACK WatchList(HWND list, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR data) {
  auto& seen = *reinterpret_cast<SeenMessages*>(data);
  if (message >= LVM_FIRST && message < LVM_FIRST + 0x100) ++seen.total;
  if (message == LVM_ENABLEGROUPVIEW) seen.groupView = wParam;
  if (message == LVM_GETITEMSTATE) ++seen.stateQueries;
  if (message == LVM_INSERTGROUP) {
    const auto& group = *reinterpret_cast<const LVGROUP*>(lParam);
    EXPECT_EQ(static_cast<int>(wParam), -1);
    EXPECT_EQ(group.uAlign, static_cast<UINT>(LVGA_HEADER_LEFT));
    seen.groups.emplace_back(group.iGroupId, group.pszHeader);
  }
  if (message == LVM_INSERTITEMW) {
    const auto& item = *reinterpret_cast<const LVITEMW*>(lParam);
    EXPECT_TRUE(item.mask & LVIF_GROUPID);
    EXPECT_EQ(item.iItem, static_cast<int>(seen.rows.size()));
    seen.rows.emplace_back(item.pszText, item.iGroupId);
  }
  return DefSubclassProc(list, message, wParam, lParam);
}

std::string PackageXml(const std::string& filename, const std::string& children) {
  return "<package><filename value=\"" + filename + "\"/>" + children + "</package>";
}

const std::string kFivePackages =
    PackageXml(
        "z",
        R"(<title>Zeta</title><group>Tools</group><default value="true"/><size value="3000"/><upsize value="7000"/>)") +
    PackageXml(
        "b",
        R"(<title>Beta</title><group>Games</group><tooltip>About beta</tooltip><size value="5000000000"/><upsize value="9000000000"/>)") +
    PackageXml("n", R"(<size value="10"/>)") +
    PackageXml(
        "t",
        R"(<title>Theta</title><group>Tools</group><default value="true"/><size value="500"/><upsize value="1000"/>)") +
    PackageXml("g", R"(<title>Gamma</title><group>games</group><upsize value="77"/>)");

class ComponentList : public testing::Test {
 protected:
  void SetUp() override {
    app.upward.buildMainMenu = [] { ++menusBuilt; };
    app.installList.Set({});
    menusBuilt = 0;
    window_.Run([this] { SetWindowSubclass(List(), WatchList, 1, reinterpret_cast<DWORD_PTR>(&seen_)); });
  }
  void TearDown() override {
    app.upward.buildMainMenu = nullptr;
    app.installList.Set({});
  }

  void Fill(const std::string& packages) {
    LoadTestManifest("<downloader><packages>" + packages + "</packages></downloader>");
    PopulateComponentList();
  }

  HWND List() const { return window_.Components().itemsView; }
  std::wstring Total() const { return TextOf(window_.Components().totalSizeLabel); }
  bool InstallEnabled() const { return IsWindowEnabled(window_.Components().installButton.Window()); }

  void SetStateImage(int row, UINT image) const {
    LVITEMW item = {};
    item.stateMask = LVIS_STATEIMAGEMASK;
    item.state = INDEXTOSTATEIMAGEMASK(image);
    SendMessageW(List(), LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
  }

  std::vector<UINT> StateImages() const {
    std::vector<UINT> images;
    const auto rows = static_cast<WPARAM>(SendMessageW(List(), LVM_GETITEMCOUNT, 0, 0));
    for (WPARAM row = 0; row < rows; ++row) {
      const LRESULT state = SendMessageW(List(), LVM_GETITEMSTATE, row, LVIS_STATEIMAGEMASK);
      images.push_back(static_cast<UINT>(state) >> 12);
    }
    return images;
  }

  static std::wstring TotalText(int64_t download, int64_t installed) {
    return L"Total size: " + FormatByteSize(download) + L" [after installation: " + FormatByteSize(installed) + L"]";
  }

  SeenMessages seen_;
  // Counts changed check boxes as the program's window procedure does.
  TestWindow window_{
      ComponentsPage, [this](UINT message, WPARAM, LPARAM lParam) -> std::optional<LRESULT> {
        const auto change = reinterpret_cast<const NMLISTVIEW*>(lParam);
        if (message == WM_NOTIFY && change->hdr.code == LVN_ITEMCHANGED && change->uNewState & LVIS_STATEIMAGEMASK) {
          UpdateTotalSize();
        }
        return std::nullopt;
      }};
  static inline int menusBuilt;
};

using Images = std::vector<UINT>;
using Names = std::vector<std::string>;

}  // namespace

TEST_F(ComponentList, RowsFollowTheManifestAndGroupsTheirFirstMention) {
  ASSERT_FALSE(InstallEnabled());
  Fill(kFivePackages);
  EXPECT_EQ(menusBuilt, 1);
  EXPECT_TRUE(seen_.groupView);
  const std::vector<std::pair<int, std::wstring>> groups = {{1, L"Tools"}, {2, L"Games"}, {3, L"games"}};
  EXPECT_EQ(seen_.groups, groups);
  const std::vector<std::pair<std::wstring, int>> rows = {
      {L"Zeta", 1}, {L"Beta", 2}, {L"", 0}, {L"Theta", 1}, {L"Gamma", 3}};
  EXPECT_EQ(seen_.rows, rows);
  EXPECT_EQ(StateImages(), (Images{2, 1, 1, 2, 1}));
  EXPECT_EQ(SendMessageW(List(), LVM_GETCOLUMNWIDTH, 0, 0), 550);
  EXPECT_EQ(Total(), TotalText(3500, 8000));
  EXPECT_TRUE(InstallEnabled());
  window_.Run([] { EXPECT_EQ(CheckedComponents(), (Names{"z", "t"})); });
}

TEST_F(ComponentList, CommandLineOverridesTheDefaults) {
  app.installList.Set({"b", "unknown", "n"});
  Fill(kFivePackages);
  EXPECT_EQ(StateImages(), (Images{1, 2, 2, 1, 1}));
  seen_ = {};
  app.installList.Set({"unknown"});
  Fill(kFivePackages);
  EXPECT_EQ(StateImages(), (Images{1, 1, 1, 1, 1}));
  EXPECT_EQ(Total(), L"");
}

TEST_F(ComponentList, TotalFollowsTheCheckBoxes) {
  Fill(kFivePackages);
  struct Step {
    int row;
    UINT image;
    std::wstring total;
  };
  const Step steps[] = {
      {1, 2, TotalText(5000003500, 9000008000)},
      {0, 1, TotalText(5000000500, 9000001000)},
      {2, 2, TotalText(5000000510, 9000001000)},
      {1, 1, TotalText(510, 1000)},
      {2, 1, TotalText(500, 1000)},
      {3, 1, L""},
      {4, 2, L""},  // nothing to download, though something to install
      {3, 3, TotalText(500, 1077)},
  };
  for (const Step& step : steps) {
    SetStateImage(step.row, step.image);
    EXPECT_EQ(Total(), step.total) << "row " << step.row;
  }
  window_.Run([] {
    EXPECT_EQ(CheckedComponents(), (Names{"t", "g"}));
    SetThreadLanguage(LANG_GERMAN);
    UpdateTotalSize();
  });
  const std::wstring german = Total();
  EXPECT_NE(german, TotalText(500, 1077));
  EXPECT_NE(german.find(FormatByteSize(1077)), std::wstring::npos);
}

TEST_F(ComponentList, DoubleClickLeavesOneRowOrNone) {
  Fill(kFivePackages);
  window_.Run([] { CheckOnlyComponent(1); });
  EXPECT_EQ(StateImages(), (Images{1, 2, 1, 1, 1}));
  EXPECT_EQ(Total(), TotalText(5000000000, 9000000000));
  window_.Run([] { CheckOnlyComponent(1); });
  EXPECT_EQ(StateImages(), (Images{1, 2, 1, 1, 1}));
  window_.Run([] { CheckOnlyComponent(-1); });
  EXPECT_EQ(StateImages(), (Images{1, 1, 1, 1, 1}));
  EXPECT_EQ(Total(), L"");
  // The check boxes count again afterwards.
  SetStateImage(3, 2);
  EXPECT_EQ(Total(), TotalText(500, 1000));
}

TEST_F(ComponentList, Tooltips) {
  Fill(kFivePackages);
  window_.Run([] {
    EXPECT_EQ(ComponentTooltip(1), L"About beta");
    for (const int row : {0, 4, 5, -1, 1000}) EXPECT_EQ(ComponentTooltip(row), L"") << row;
  });
}

TEST_F(ComponentList, SecondPackageOfTheSameNameHasItsOwnRow) {
  Fill(PackageXml("a", R"(<title>First</title><size value="1"/>)") +
       PackageXml("a", R"(<title>Second</title><size value="20"/>)"));
  EXPECT_EQ(StateImages().size(), 2u);
  SetStateImage(0, 2);
  SetStateImage(1, 2);
  EXPECT_EQ(Total(), TotalText(40, 0));
  window_.Run([] { EXPECT_EQ(CheckedComponents(), (Names{"a", "a"})); });
}

TEST_F(ComponentList, IsFilledInTheLanguageChosenMeanwhile) {
  app.uiLanguage = LANG_RUSSIAN;
  Fill(kFivePackages);
  app.uiLanguage = LANG_ENGLISH;
  SetThreadLanguage(LANG_ENGLISH);
  EXPECT_NE(Total(), L"");
  EXPECT_NE(Total(), TotalText(3500, 8000));
}

TEST_F(ComponentList, NothingIsFilledWhileAnotherPageIsShown) {
  app.currentPage = ClosingPage;
  Fill(kFivePackages);
  EXPECT_EQ(menusBuilt, 0);
  EXPECT_EQ(seen_.total, 0);
  EXPECT_FALSE(InstallEnabled());
  window_.Run([] { CheckOnlyComponent(0); });
  EXPECT_EQ(seen_.total, 0);
}

// Each message is a round trip to the UI thread, so their number must grow with the rows and no faster.
TEST_F(ComponentList, LongListsNeedFewMessages) {
  constexpr int kRows = 1000;
  std::string packages;
  for (int i = 0; i < kRows; ++i) {
    packages +=
        PackageXml(std::to_string(i), "<group>g" + std::to_string(i % 10) +
                                          R"(</group><default value="true"/><size value="1"/><upsize value="2"/>)");
  }
  Fill(packages);
  EXPECT_EQ(seen_.groups.size(), 10u);
  EXPECT_EQ(seen_.stateQueries, kRows);
  EXPECT_LT(seen_.total, 3 * kRows + 50);
  EXPECT_EQ(Total(), TotalText(kRows, 2 * kRows));
  seen_ = {};
  window_.Run([] { CheckOnlyComponent(kRows - 1); });
  EXPECT_EQ(seen_.stateQueries, kRows);
  EXPECT_LT(seen_.total, 2 * kRows + 50);
  EXPECT_EQ(Total(), TotalText(1, 2));
}
