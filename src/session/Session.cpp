#include "session/Session.h"

#include "platform/BoundedCopy.h"
#include "platform/ResourceLib.h"
#include "session/Settings.h"

#include <cstring>

PreScanSession g_session;

HINSTANCE g_hModule;
HINSTANCE g_hResInst;
HWND g_hPreScanWnd;
char g_szHelpFile[QV_MAX_PATH];
char g_szAppDataFolder[QV_MAX_PATH];
char g_szIniPath[QV_MAX_PATH];
char g_szMsgTitle[50];
int32_t g_bStopScan;
int32_t g_bForcedStop;

namespace {

int32_t ReduceTvStandard(int32_t n)
{
    return (n == 0 || n == 1) ? n : 2;
}

} // namespace

void StartSession(const PreScanInitInfo& info)
{
    g_hResInst = qv::GetHostResourceInstance();

    std::memset(&g_session, 0, sizeof g_session);
    std::memset(g_szHelpFile, 0, sizeof g_szHelpFile);
    // The help path is the host's string; it is read up to its NUL but never
    // more than the field holds (a longer path is cut, never overruns).
    qv::CopyBounded(g_szHelpFile, info.pszHelpFile);

    g_session.hHost = info.hHost;
    g_session.pfnHostRequest = info.pfnHostRequest;
    // The extension field is fixed-size in the host's record and may lack its NUL.
    qv::CopyField(g_session.szCaptureExt, info.szCaptureExt);
    g_session.nTvStandard = ReduceTvStandard(info.nTvStandard);
    g_session.bInitialized = 1;
    g_session.pDialog = nullptr;

    LoadSettings();
    g_session.nWantIndexFile = ReadSettingInt(kKeyWantIndexFile, 0);
    g_session.nSaveToLibrary = ReadSettingInt(kKeySaveToLibrary, 0);
    g_session.nScanMethodIndex = ReadSettingInt(kKeyScanMethodIndex, 2);
    g_session.nQuickScanSpeed = ReadSettingInt(kKeyQuickScanSpeed, 0);
    if (g_session.nScanMethodIndex < 1) {
        g_session.nScanMethodIndex = 2;
        WriteSettingInt(kKeyScanMethodIndex, 2);
    }
}

void EndSession()
{
    std::memset(&g_session, 0, sizeof g_session);
}
