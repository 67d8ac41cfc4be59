// The pages of the main window. UI thread.
#pragma once

// Replaces whatever the window shows by the components page or the installation page.
void ShowComponentsPage();
void ShowInstallPage();

// Places the controls of the current page anew, after the scale of the window has changed.
void ArrangePage();

// Hides the controls of the current page, which a running worker still writes to, and says that the program is
// closing. Nothing when that is shown already.
void ShowClosingPage();
