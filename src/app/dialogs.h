// What the menu opens. Each is modal and returns when it is closed. UI thread.
#pragma once

// What the program is, and where its makers are.
void AboutDialog();

// Lets the user limit the download speed.
void SpeedLimitDialog();

// Asks, and then removes the program's registry key and its folders.
void DeleteAppData();
