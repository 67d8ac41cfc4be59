// Repairing the permissions of the application-data folders.
#pragma once

#include <string>

// Grants the user and the built-in Users group full control of the application-data folders, with an elevated icacls,
// and waits for its end. False only when it could not be started.
bool RepairPermissions();

// The command line that RepairPermissions gives to the command interpreter.
std::wstring BuildRepairParameters(const std::wstring& appDataPath, const std::wstring& userName);
