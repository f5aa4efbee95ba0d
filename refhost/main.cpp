// qvrefhost: the reference capture host.  It loads the pre-scan module and
// its resource library as a real host does and drives them.
//
//   qvrefhost --headless [--out FOLDER]   initialise, report, shut down
#include "qvPreScan.h"

#include <windows.h>

#include <cstdio>
#include <cstring>
#include <string>

namespace {

int32_t HostRequest(int32_t nRequest, intptr_t lParam)
{
    std::printf("host request %d (argument %p)\n", nRequest, reinterpret_cast<void*>(lParam));
    return 0;
}

// Where the module keeps its settings: %QVPRESCAN_APPDATA% when set, else
// %APPDATA%\qvPreScan.
std::string SettingsFile()
{
    char folder[MAX_PATH] = "";
    if (!GetEnvironmentVariableA("QVPRESCAN_APPDATA", folder, sizeof folder)) {
        GetEnvironmentVariableA("APPDATA", folder, sizeof folder);
        std::strncat(folder, "\\qvPreScan", sizeof folder - std::strlen(folder) - 1);
    }
    std::string path = folder;
    if (!path.empty() && path.back() != '\\') path += '\\';
    return path + "qvPreScan.ini";
}

void PrintSettings(const std::string& ini)
{
    std::printf("settings file: %s\n", ini.c_str());
    char keys[4096] = "";
    GetPrivateProfileStringA("MainSec", nullptr, "", keys, sizeof keys, ini.c_str());
    for (const char* key = keys; *key; key += std::strlen(key) + 1) {
        char value[1024] = "";
        GetPrivateProfileStringA("MainSec", key, "", value, sizeof value, ini.c_str());
        std::printf("  %s=%s\n", key, value);
    }
}

int RunHeadless()
{
    PreScanInitInfo info;
    std::memset(&info, 0, sizeof info);
    info.hHost = GetModuleHandleA(nullptr);
    info.pfnHostRequest = &HostRequest;
    std::strcpy(info.szCaptureExt, ".avi");
    info.nTvStandard = 2;  // 25 frames per second
    info.pszHelpFile = "qvrefhost.hlp";
    if (!qvPreScanInit(&info)) {
        std::fprintf(stderr, "the module refused to initialise\n");
        return 1;
    }
    std::printf("module initialised (capture extension .avi, 25 frames per second)\n");
    PrintSettings(SettingsFile());
    char index[QV_MAX_PATH] = "";
    qvGetPreScanIndexFileName(index);
    std::printf("index file: %s\n", index);
    qvPreScanUnInit();
    std::printf("module shut down\n");
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    bool headless = false;
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], "--headless") == 0) headless = true;
    if (headless) return RunHeadless();
    std::fprintf(stderr, "usage: qvrefhost --headless\n");
    return 2;
}
