#include "manifest/component_list.h"

#include <windows.h>
// commctrl.h needs windows.h before it.
#include <commctrl.h>
#include <gtest/gtest.h>

#include "support/test_manifest.h"
#include "support/test_window.h"
#include "system/files.h"

namespace {

using Inserted = std::vector<std::pair<int, std::wstring>>;
using Images = std::vector<UINT>;

constexpr char kFourPackages[] = R"(<downloader><packages>
  <package><filename value="z"/><title>Zeta</title><group>Tools</group><default value="true"/>
    <size value="3000"/><upsize value="7000"/></package>
  <package><filename value="b"/><title>Beta</title><group>Games</group><tooltip>About beta</tooltip>
    <size value="5000000000"/><upsize value="9000000000"/></package>
  <package><filename value="n"/><upsize value="77"/></package>
  <package><filename value="t"/><title>Theta</title><group>Tools</group><default value="true"/>
    <size value="500"/><upsize value="1000"/></package>
</packages></downloader>)";

std::wstring TotalText(int64_t download, int64_t installed) {
  return L"Total size: " + FormatByteSize(download) + L" [after installation: " + FormatByteSize(installed) + L"]";
}

class ComponentList : public testing::Test {
 protected:
  ComponentList() {
    app.upward.buildMainMenu = [] {};
    LoadTestManifest(kFourPackages);
    window_.Run([this] { SetWindowSubclass(List(), Watch, 1, reinterpret_cast<DWORD_PTR>(&inserted_)); });
    PopulateComponentList();
  }
  ~ComponentList() override {
    app.upward.buildMainMenu = nullptr;
    app.installList.Set({});
  }

  static LRESULT CALLBACK Watch(HWND list, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR data) {
    auto& inserted = *reinterpret_cast<Inserted*>(data);
    const auto& group = *reinterpret_cast<const LVGROUP*>(lParam);
    const auto& row = *reinterpret_cast<const LVITEMW*>(lParam);
    if (message == LVM_INSERTGROUP) inserted.emplace_back(group.iGroupId, group.pszHeader);
    if (message == LVM_INSERTITEMW) inserted.emplace_back(row.iGroupId, row.pszText);
    return DefSubclassProc(list, message, wParam, lParam);
  }

  HWND List() const { return window_.Components().itemsView; }
  std::wstring Total() const { return TextOf(window_.Components().totalSizeLabel); }
  // 1 for an empty check box, 2 for a checked one.
  Images StateImages() const {
    Images images;
    for (int row = 0; row < 4; ++row) images.push_back(ListView_GetItemState(List(), row, LVIS_STATEIMAGEMASK) >> 12);
    return images;
  }

  TestWindow window_{ComponentsPage};
  Inserted inserted_;  // the groups and rows of the list, with the group's number
};

TEST_F(ComponentList, RowsFollowTheManifestAndGroupsTheirFirstMention) {
  const Inserted expected = {{1, L"Tools"}, {1, L"Zeta"}, {2, L"Games"}, {2, L"Beta"}, {0, L""}, {1, L"Theta"}};
  EXPECT_EQ(inserted_, expected);
  EXPECT_EQ(StateImages(), (Images{2, 1, 1, 2}));
  EXPECT_EQ(Total(), TotalText(3500, 8000));
  EXPECT_TRUE(IsWindowEnabled(window_.Components().installButton.Window()));
  EXPECT_EQ(ComponentTooltip(1), L"About beta");
  for (const int row : {0, 4, -1}) EXPECT_EQ(ComponentTooltip(row), L"") << row;
  app.installList.Set({"b", "unknown", "n"});
  PopulateComponentList();
  EXPECT_EQ(StateImages(), (Images{1, 2, 2, 1})) << "the command line overrides the defaults";
  app.currentPage = ClosingPage;
  PopulateComponentList();
  EXPECT_EQ(inserted_.size(), 2 * expected.size()) << "another page is shown";
}

TEST_F(ComponentList, TotalFollowsTheCheckBoxes) {
  ListView_SetCheckState(List(), 1, TRUE);
  UpdateTotalSize();
  EXPECT_EQ(Total(), TotalText(5000003500, 9000008000));
  EXPECT_EQ(CheckedComponents(), (std::vector<std::string>{"z", "b", "t"}));
  window_.Run([] { CheckOnlyComponent(3); });
  EXPECT_EQ(StateImages(), (Images{1, 1, 1, 2}));
  EXPECT_EQ(Total(), TotalText(500, 1000));
  window_.Run([] { CheckOnlyComponent(2); });
  EXPECT_EQ(Total(), L"") << "nothing to download, though something to install";
}

}  // namespace
