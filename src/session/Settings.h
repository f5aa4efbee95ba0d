// The settings file "qvPreScan.ini" (section "MainSec") in the user's
// application data folder.  Settings are read once when the session starts
// and written key by key at the moment they change; nothing is cached.
#pragma once

#include <cstddef>

extern const char kKeySavePSFDir[];
extern const char kKeyCaptureFileName[];
extern const char kKeyProductionLibFolder[];
extern const char kKeyWantIndexFile[];
extern const char kKeySaveToLibrary[];
extern const char kKeyScanMethodIndex[];
extern const char kKeyQuickScanSpeed[];

// Finds the settings file and reads the string settings into the session,
// writing back a default for every key that is missing or empty.
void LoadSettings();

// The user's documents folder + "\" + the module title, created when missing;
// the documents folder itself when that fails.  `out` holds 260 bytes.
void GetDefaultCaptureFolder(char* out);

int ReadSettingInt(const char* key, int nDefault);
void ReadSettingString(const char* key, char* out, size_t cb);
void WriteSettingString(const char* key, const char* value);
void WriteSettingInt(const char* key, int value);
