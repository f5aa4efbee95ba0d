#include "support/TestEnvironment.h"

#include <windows.h>

namespace qvtest {

const char kIniMissing[] = "<missing>";

// A fresh folder `name` under this run's own temp folder (no trailing "\").
static std::string NewFolder(const std::string& name)
{
    static const std::string run = [] {
        char temp[MAX_PATH] = "";
        GetTempPathA(sizeof temp, temp);
        std::string path = temp + ("qvtest-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(GetTickCount()));
        CreateDirectoryA(path.c_str(), nullptr);
        return path;
    }();
    std::string path = run + "\\" + name;
    CreateDirectoryA(path.c_str(), nullptr);
    return path;
}

const std::string& AppDataDir()
{
    static const std::string dir = [] {
        std::string d = NewFolder("appdata");
        SetEnvironmentVariableA("QVPRESCAN_APPDATA", d.c_str());
        return d + "\\";
    }();
    return dir;
}

std::string IniPath() { return AppDataDir() + "qvPreScan.ini"; }
void DeleteIni() { DeleteFileA(IniPath().c_str()); }

std::string ReadIni(const char* key)
{
    char value[1024] = "";
    GetPrivateProfileStringA("MainSec", key, kIniMissing, value, sizeof value, IniPath().c_str());
    return value;
}

void WriteIni(const char* key, const char* value) { WritePrivateProfileStringA("MainSec", key, value, IniPath().c_str()); }

std::string MakeTempDir(const char* name)
{
    static int counter = 0;
    return NewFolder(name + ("-" + std::to_string(++counter)));
}

} // namespace qvtest
