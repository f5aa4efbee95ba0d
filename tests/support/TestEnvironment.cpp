#include "support/TestEnvironment.h"

#include <windows.h>

#include <cstdio>

namespace qvtest {

const char kIniMissing[] = "<missing>";
namespace {

std::string RunFolder()
{
    static std::string folder = [] {
        char temp[MAX_PATH] = "";
        GetTempPathA(sizeof temp, temp);
        char path[MAX_PATH];
        std::snprintf(path, sizeof path, "%sqvtest-%lu-%lu", temp, GetCurrentProcessId(), GetTickCount());
        CreateDirectoryA(path, nullptr);
        return std::string(path);
    }();
    return folder;
}

} // namespace

const std::string& AppDataDir()
{
    static std::string dir = [] {
        std::string d = RunFolder() + "\\appdata";
        CreateDirectoryA(d.c_str(), nullptr);
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
    char path[MAX_PATH];
    std::snprintf(path, sizeof path, "%s\\%s-%d", RunFolder().c_str(), name, ++counter);
    CreateDirectoryA(path, nullptr);
    return path;
}

} // namespace qvtest
