// What start-up finds out about this process and this system, into `app`.
#pragma once

// app.isAdmin: HKEY_LOCAL_MACHINE\SOFTWARE can be opened for writing.
void ProbeAdministrator();

// app.exePath, backupPath, registryKeyPath, appDataPath, dataDir, manifestPath, isWow64, the system's version and
// app.userAgent. Application data whose folder names would not fit a path count as missing.
void ProbeEnvironment();

// The system's version alone, unless it is known already: app.osMajor, osMinor and osBuild.
void ProbeSystemVersion();
