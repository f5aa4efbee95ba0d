#include "platform/FolderBrowser.h"

#include "platform/BoundedCopy.h"

#include <shlobj.h>

#include <cstring>

namespace {

QErrorRecord g_lastError;
FolderBrowserProc g_replacement;

int CALLBACK StartAt(HWND hWnd, UINT msg, LPARAM, LPARAM data)
{
    if (msg == BFFM_INITIALIZED && data) SendMessageA(hWnd, BFFM_SETSELECTIONA, TRUE, data);
    return 0;
}

} // namespace

void qGetLastErrorRecord(QErrorRecord& record)
{
    record = g_lastError;
}

void qSetLastErrorRecord(HINSTANCE hModule, uint32_t nTextId, const char* text)
{
    std::memset(&g_lastError, 0, sizeof g_lastError);
    g_lastError.hTextModule = hModule;
    g_lastError.nTextId = nTextId;
    qv::CopyBounded(g_lastError.szText, text);
}

void qReplaceFolderBrowser(FolderBrowserProc proc)
{
    g_replacement = proc;
}

int qBrowseForFolder(HWND hOwner, const char* current, std::string& chosen)
{
    qSetLastErrorRecord(nullptr, 0, "");
    if (g_replacement) return g_replacement(hOwner, current, chosen);
    char display[MAX_PATH] = "";
    BROWSEINFOA info = {};
    info.hwndOwner = hOwner;
    info.pszDisplayName = display;
    info.ulFlags = BIF_RETURNONLYFSDIRS | BIF_NEWDIALOGSTYLE;
    info.lpfn = &StartAt;
    info.lParam = reinterpret_cast<LPARAM>(current);
    HRESULT com = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    PIDLIST_ABSOLUTE item = SHBrowseForFolderA(&info);
    int result = 0;
    if (item) {
        char path[MAX_PATH] = "";
        result = SHGetPathFromIDListA(item, path) ? 1 : -1;
        if (result == 1) chosen = path;
        else qSetLastErrorRecord(nullptr, 0, "The chosen item is not a folder on a disk.");
        CoTaskMemFree(item);
    }
    if (SUCCEEDED(com)) CoUninitialize();
    return result;
}
