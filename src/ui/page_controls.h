// The controls of the two pages that other threads write to, and the log.
#pragma once

#include <windows.h>

#include <string>

#include "ui/controls.h"

struct ComponentsPageControls {
  explicit ComponentsPageControls(HWND parent);
  // Places everything for the window's scale, which may have changed.
  void Arrange();

  Label installPathLabel;
  TextEdit installPathEdit;
  PushButton selectFolderButton;
  Label componentsLabel;
  HWND itemsView;  // list view; its rows belong to app/component_list.h
  FontHandle itemsViewFont;
  Label totalSizeLabel;
  PushButton installButton;
};

struct InstallPageControls {
  explicit InstallPageControls(HWND parent);
  // Places everything for the window's scale, which may have changed.
  void Arrange();

  Label packageLabel;
  ProgressBar packageProgress;
  Label packageDetailLabel;
  Label totalLabel;
  ProgressBar totalProgress;
  Label totalDetailLabel;
  Label logName;  // has no size: screen readers take the label before a control for its name
  TextEdit logEdit;
  CheckBox deleteTmpCheckbox;
  PushButton cancelButton;
};

// Appends one line, whatever control characters a name in it has, to the log of the installation page; nothing while
// there is no such page. The user's selection in the log stays, and so does what he has scrolled to. Called by the
// worker, which doesn't wait (ui/mailbox.h).
void AppendLog(const std::wstring& text);
