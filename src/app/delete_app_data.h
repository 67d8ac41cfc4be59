#pragma once

// Asks, and then removes the program's registry key and its folders. UI thread.
void DeleteAppData();
