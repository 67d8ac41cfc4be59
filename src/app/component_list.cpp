#include "app/component_list.h"

#include <windows.h>
// commctrl.h needs windows.h before it.
#include <commctrl.h>

#include <map>
#include <set>
#include <string_view>

#include "app/main_menu.h"
#include "core/context.h"
#include "core/localization.h"
#include "manifest/manifest_store.h"
#include "system/files.h"
#include "ui/page_controls.h"
#include "ui/scale.h"

namespace {

constexpr UINT kUnchecked = 1, kChecked = 2;  // state images of the check boxes
constexpr int kColumnWidth = 550;

// True while the rows are complete: only then do changes of their check boxes count.
bool listReady = false;

// The components page while it is the one shown, else null.
const ComponentsPageControls* ShownPage() {
  return app.currentPage == ComponentsPage ? static_cast<ComponentsPageControls*>(app.componentsPage) : nullptr;
}

// `row` -1 stands for all rows.
void SetChecked(HWND list, int row, bool checked) {
  LVITEMW item = {};
  item.stateMask = LVIS_STATEIMAGEMASK;
  item.state = INDEXTOSTATEIMAGEMASK(checked ? kChecked : kUnchecked);
  SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

bool IsChecked(HWND list, size_t row) {
  const LRESULT state = SendMessageW(list, LVM_GETITEMSTATE, row, LVIS_STATEIMAGEMASK);
  return static_cast<UINT>(state) != INDEXTOSTATEIMAGEMASK(kUnchecked);
}

std::vector<bool> CheckStates(HWND list) {
  std::vector<bool> checked(static_cast<size_t>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0)));
  for (size_t row = 0; row < checked.size(); ++row) checked[row] = IsChecked(list, row);
  return checked;
}

// The groups of the list, numbered from 1 in the order in which packages mention them.
class Groups {
 public:
  explicit Groups(HWND list) : list_(list) {}

  // The group's number, after inserting it where it is new. Packages without a group have number 0; the list shows no
  // row that is in no group, so these get one without a title.
  int NumberOf(const std::wstring& header) {
    const auto [entry, isNew] = numbers_.try_emplace(header, header.empty() ? 0 : next_);
    if (isNew && !header.empty()) ++next_;
    if (isNew) Insert(entry->second, header);
    return entry->second;
  }
  // All that were wanted are there; rows of others would not be shown.
  bool AreComplete() const { return complete_; }

 private:
  void Insert(int number, std::wstring header) {
    LVGROUP group = {};
    group.cbSize = sizeof group;
    group.mask = LVGF_HEADER | LVGF_GROUPID | LVGF_ALIGN;
    group.pszHeader = header.data();
    group.iGroupId = number;
    group.uAlign = LVGA_HEADER_LEFT;
    constexpr WPARAM kAtTheEnd = static_cast<WPARAM>(-1);
    if (SendMessageW(list_, LVM_INSERTGROUP, kAtTheEnd, reinterpret_cast<LPARAM>(&group)) < 0) complete_ = false;
  }

  HWND list_;
  int next_ = 1;
  bool complete_ = true;
  std::map<std::wstring, int> numbers_;
};

void InsertRow(HWND list, int row, std::wstring title, int group) {
  LVITEMW item = {};
  item.mask = LVIF_TEXT | LVIF_GROUPID;
  item.iItem = row;
  item.pszText = title.data();
  item.iGroupId = group;
  SendMessageW(list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
}

void InsertRows(HWND list, const Manifest& manifest) {
  const auto requested = app.installList.Get();
  const std::set<std::string_view> requestedNames(requested->begin(), requested->end());
  Groups groups(list);
  int row = 0;
  for (const std::string& filename : manifest.packageOrder) {
    const Package& package = manifest.packages.at(filename);
    InsertRow(list, row, package.title, groups.NumberOf(package.group));
    // The list gives new rows an empty check box.
    if (requested->empty() ? package.isDefault : requestedNames.contains(filename)) SetChecked(list, row, true);
    ++row;
  }
  if (!groups.AreComplete()) SendMessageW(list, LVM_ENABLEGROUPVIEW, FALSE, 0);
}

void FillList(HWND list, const Manifest& manifest) {
  SendMessageW(list, WM_SETREDRAW, FALSE, 0);
  SendMessageW(list, LVM_DELETEALLITEMS, 0, 0);
  SendMessageW(list, LVM_ENABLEGROUPVIEW, TRUE, 0);
  listReady = false;
  SendMessageW(list, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES, LVS_EX_CHECKBOXES);
  SendMessageW(list, LVM_SETCOLUMNWIDTH, 0, Scaled(kColumnWidth));
  SendMessageW(list, LVM_SETITEMCOUNT, manifest.packageOrder.size(), 0);
  InsertRows(list, manifest);
  SendMessageW(list, WM_SETREDRAW, TRUE, 0);
  InvalidateRect(list, nullptr, TRUE);
}

}  // namespace

void PopulateComponentList() {
  const ComponentsPageControls* page = ShownPage();
  if (!page) return;
  BuildMainMenu();
  FillList(page->itemsView, *CurrentManifest());
  listReady = true;
  UpdateTotalSize();
  EnableWindow(page->installButton.Window(), TRUE);
}

void FitComponentList() {
  const ComponentsPageControls* page = ShownPage();
  if (!page) return;
  const HWND list = page->itemsView;
  SendMessageW(list, LVM_SETCOLUMNWIDTH, 0, Scaled(kColumnWidth));
  if (!listReady) return;
  const std::vector<bool> checked = CheckStates(list);
  listReady = false;
  // The list draws its check boxes once, when it gets them, and with them the rows become unchecked.
  SendMessageW(list, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES, 0);
  SendMessageW(list, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES, LVS_EX_CHECKBOXES);
  for (size_t row = 0; row < checked.size(); ++row) SetChecked(list, static_cast<int>(row), checked[row]);
  listReady = true;
}

void UpdateTotalSize() {
  const ComponentsPageControls* page = ShownPage();
  if (!page || !listReady) return;
  const auto manifest = CurrentManifest();
  // Unsigned, because sizes that a manifest makes up must not overflow.
  uint64_t download = 0, installed = 0;
  for (size_t row = 0; row < manifest->packageOrder.size(); ++row) {
    if (!IsChecked(page->itemsView, row)) continue;
    const Package& package = manifest->packages.at(manifest->packageOrder[row]);
    download += static_cast<uint64_t>(package.size);
    installed += static_cast<uint64_t>(package.upsize);
  }
  std::wstring text;
  if (download != 0) {
    text = LoadLocalizedString(STR_TOTAL_SIZE) + L": " + FormatByteSize(download) + L" [" +
           LoadLocalizedString(STR_AFTER_INSTALLATION) + L": " + FormatByteSize(installed) + L"]";
  }
  page->totalSizeLabel.SetText(text);
}

void CheckOnlyComponent(int row) {
  const ComponentsPageControls* page = ShownPage();
  if (!page || !listReady) return;
  listReady = false;
  constexpr int kAllRows = -1;
  SetChecked(page->itemsView, kAllRows, false);
  if (row >= 0) SetChecked(page->itemsView, row, true);
  listReady = true;
  UpdateTotalSize();
}

std::vector<std::string> CheckedComponents() {
  const ComponentsPageControls* page = ShownPage();
  if (!page) return {};
  const auto manifest = CurrentManifest();
  std::vector<std::string> checked;
  size_t row = 0;
  for (const std::string& filename : manifest->packageOrder) {
    if (IsChecked(page->itemsView, row++)) checked.push_back(filename);
  }
  return checked;
}

std::wstring ComponentTooltip(int row) {
  const auto manifest = CurrentManifest();
  if (row < 0 || static_cast<size_t>(row) >= manifest->packageOrder.size()) return {};
  return manifest->packages.at(manifest->packageOrder[static_cast<size_t>(row)]).tooltip;
}
