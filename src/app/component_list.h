// The rows of the components page: row i stands for entry i of the manifest's packageOrder. UI thread.
#pragma once

#include <string>
#include <vector>

// Fills the list, the menu of download sources and the total, and enables Install. Nothing unless the components page
// is shown.
void PopulateComponentList();

// Fits the column and the check boxes to the window's scale, which may have changed.
void FitComponentList();

// Rewrites the total size of the checked rows, in the UI language. Nothing while the list is being filled.
void UpdateTotalSize();

// Checks this row and no other; -1 unchecks all.
void CheckOnlyComponent(int row);

// Identifiers of the checked rows, in row order.
std::vector<std::string> CheckedComponents();

// The hover text of a row; empty when there is none.
std::wstring ComponentTooltip(int row);
