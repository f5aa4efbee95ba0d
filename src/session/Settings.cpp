#include "session/Settings.h"

#include "ResourceIds.h"
#include "platform/BoundedCopy.h"
#include "platform/ResourceLib.h"
#include "platform/SupportLib.h"
#include "session/FolderRules.h"
#include "session/NameRules.h"
#include "session/Session.h"

#include <cstring>

const char kKeySavePSFDir[] = "SavePSFDir";
const char kKeyCaptureFileName[] = "PSCaptureFileName";
const char kKeyProductionLibFolder[] = "ProductionLibFolder";
const char kKeyWantIndexFile[] = "WantIndexFile";
const char kKeySaveToLibrary[] = "SaveToLibrary";
const char kKeyScanMethodIndex[] = "ScanMethodIndex";
const char kKeyQuickScanSpeed[] = "QuickScanSpeed";

namespace {

const char kSection[] = "MainSec";
const char kIniFileName[] = "qvPreScan.ini";
const char kShellFoldersKey[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
const char kFallbackDocuments[] = "C:\\My Documents";

// Reads the capture file setting into the name and folder of the session.
void LoadCaptureFileName()
{
    ReadSettingString(kKeyCaptureFileName, g_session.szCaptureFileName, sizeof g_session.szCaptureFileName);
    if (g_session.szCaptureFileName[0]) {
        qfdSplitPathnameA(g_session.szCaptureFileName, g_session.szCaptureName, sizeof g_session.szCaptureName,
                          g_session.szCaptureFolder, sizeof g_session.szCaptureFolder);
        // D:\Video\ becomes D:\Video; a drive root such as D:\ keeps its backslash.
        char* folder = g_session.szCaptureFolder;
        size_t len = std::strlen(folder);
        if (len >= 2 && qv::EndsWithBackslash(folder, IsLeadByte) && folder[len - 2] != ':')
            folder[len - 1] = 0;
        ApplyCaptureExtension();
        return;  // the key keeps what the user wrote, even when the extension changed
    }
    GetDefaultCaptureFolder(g_session.szCaptureFolder);
    qv::LoadResString(IDS_DEFAULT_CAPTURE_NAME, g_session.szCaptureName, sizeof g_session.szCaptureName);
    ApplyCaptureExtension();
    qv::FormatBounded(g_session.szCaptureFileName, sizeof g_session.szCaptureFileName, "%s\\%s",
                      g_session.szCaptureFolder, g_session.szCaptureName);
    WriteSettingString(kKeyCaptureFileName, g_session.szCaptureFileName);
}

} // namespace

int ReadSettingInt(const char* key, int nDefault)
{
    return static_cast<int>(GetPrivateProfileIntA(kSection, key, nDefault, g_szIniPath));
}

void ReadSettingString(const char* key, char* out, size_t cb)
{
    if (!out || cb == 0) return;
    out[0] = 0;
    GetPrivateProfileStringA(kSection, key, "", out, static_cast<DWORD>(cb), g_szIniPath);
}

void WriteSettingString(const char* key, const char* value)
{
    WritePrivateProfileStringA(kSection, key, value, g_szIniPath);
}

void WriteSettingInt(const char* key, int value)
{
    char text[16];
    qv::FormatBounded(text, sizeof text, "%d", value);
    WriteSettingString(key, text);
}

void LoadSettings()
{
    std::memset(g_szAppDataFolder, 0, sizeof g_szAppDataFolder);
    q32GetAppDataFolderA(g_szAppDataFolder, sizeof g_szAppDataFolder, 0, 1);
    qv::FormatBounded(g_szIniPath, sizeof g_szIniPath, "%s%s", g_szAppDataFolder, kIniFileName);

    qv::LoadResString(IDS_MODULE_TITLE, g_szMsgTitle, sizeof g_szMsgTitle);

    ReadSettingString(kKeySavePSFDir, g_session.szSavePSFDir, sizeof g_session.szSavePSFDir);
    if (!g_session.szSavePSFDir[0]) {
        GetDefaultCaptureFolder(g_session.szSavePSFDir);
        WriteSettingString(kKeySavePSFDir, g_session.szSavePSFDir);
    }

    LoadCaptureFileName();

    ReadSettingString(kKeyProductionLibFolder, g_session.szProductionLibFolder,
                      sizeof g_session.szProductionLibFolder);
    if (!g_session.szProductionLibFolder[0]) {
        qv::LoadResString(IDS_DEFAULT_LIBRARY_FOLDER, g_session.szProductionLibFolder,
                          sizeof g_session.szProductionLibFolder);
        WriteSettingString(kKeyProductionLibFolder, g_session.szProductionLibFolder);
    }
}

void GetDefaultCaptureFolder(char* out)
{
    if (!out) return;
    char documents[QV_MAX_PATH] = "";
    char candidate[QV_MAX_PATH] = "";
    HKEY key = nullptr;
    // Only read access is asked for: the value is only read, and a user
    // without write rights to the key still gets the documents folder.
    if (RegOpenKeyExA(HKEY_CURRENT_USER, kShellFoldersKey, 0, KEY_QUERY_VALUE, &key) == ERROR_SUCCESS) {
        DWORD type = 0;
        DWORD cb = sizeof documents - 1;
        if (RegQueryValueExA(key, "Personal", nullptr, &type, reinterpret_cast<BYTE*>(documents), &cb) !=
                ERROR_SUCCESS ||
            (type != REG_SZ && type != REG_EXPAND_SZ)) {
            qv::CopyBounded(documents, kFallbackDocuments);
        }
        documents[sizeof documents - 1] = 0;
        qv::FormatBounded(candidate, sizeof candidate, "%s\\%s", documents, g_szMsgTitle);
        RegCloseKey(key);
    }
    if (!qfdIsDirA(candidate) && !qfdCreateDirA(candidate)) qv::CopyBounded(candidate, documents);
    qv::CopyBounded(out, QV_MAX_PATH, candidate);
}
