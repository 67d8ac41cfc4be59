#pragma once

// What the program is, and where its makers are. Modal; UI thread.
void AboutDialog();
