#include "support/TestEnvironment.h"

#include <windows.h>

namespace qvtest {

const char kIniMissing[] = "<missing>";

std::string MakeTempDir(const char* name)
{
    static int counter = 0;
    static const std::string run = [] {  // this run's own folder under the temp folder
        char temp[MAX_PATH] = "";
        GetTempPathA(sizeof temp, temp);
        std::string path = temp + ("qvtest-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(GetTickCount()));
        CreateDirectoryA(path.c_str(), nullptr);
        return path;
    }();
    std::string path = run + "\\" + name + "-" + std::to_string(++counter);
    CreateDirectoryA(path.c_str(), nullptr);
    return path;
}

const std::string& AppDataDir()
{
    static const std::string dir = [] {
        std::string d = MakeTempDir("appdata");
        SetEnvironmentVariableA("QVPRESCAN_APPDATA", d.c_str());
        return d + "\\";
    }();
    return dir;
}

void DeleteIni() { DeleteFileA((AppDataDir() + "qvPreScan.ini").c_str()); }

std::string ReadIni(const char* key)
{
    char value[1024] = "";
    GetPrivateProfileStringA("MainSec", key, kIniMissing, value, sizeof value, (AppDataDir() + "qvPreScan.ini").c_str());
    return value;
}

void WriteIni(const char* key, const char* value)
{
    WritePrivateProfileStringA("MainSec", key, value, (AppDataDir() + "qvPreScan.ini").c_str());
}

} // namespace qvtest
