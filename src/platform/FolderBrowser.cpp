#include "platform/FolderBrowser.h"

#include <shlobj.h>

namespace {

int CALLBACK StartAt(HWND hWnd, UINT msg, LPARAM, LPARAM data)
{
    if (msg == BFFM_INITIALIZED && data) SendMessageA(hWnd, BFFM_SETSELECTIONA, TRUE, data);
    return 0;
}

} // namespace

int qBrowseForFolder(HWND hOwner, const char* current, std::string& chosen)
{
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
        CoTaskMemFree(item);
    }
    if (SUCCEEDED(com)) CoUninitialize();
    return result;
}
