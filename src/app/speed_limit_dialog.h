#pragma once

// Lets the user limit the download speed. Modal; UI thread.
void SpeedLimitDialog();
