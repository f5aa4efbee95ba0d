// The process-wide setting of a test executable: common controls, the
// module's instance, and a private settings folder that no other test run
// shares (QVPRESCAN_APPDATA).
#pragma once

#include <string>

namespace qvtest {

// The folder the module keeps its settings file in for this run, ending "\".
const std::string& AppDataDir();
// Deletes the settings file, so the next initialisation starts from defaults.
void DeleteIni();
// Reads or writes one key of section "MainSec" of the settings file; a key
// that is not there reads as kIniMissing.
extern const char kIniMissing[];
std::string ReadIni(const char* key);
void WriteIni(const char* key, const char* value);
// A fresh, empty folder under the run's temp folder (no trailing "\").
std::string MakeTempDir(const char* name);

} // namespace qvtest
