#include "platform/SupportLib.h"

#include "platform/BoundedCopy.h"
#include "session/FolderRules.h"
#include "session/NameRules.h"

#include <cstring>

BOOL q32MoveWindow(HWND hWnd, INT_PTR hRelative, int nMode)
{
    if (!IsWindow(hWnd)) return FALSE;
    RECT rc;
    GetWindowRect(hWnd, &rc);
    int cx = rc.right - rc.left, cy = rc.bottom - rc.top;

    RECT work;
    HMONITOR monitor = MonitorFromWindow(hWnd, MONITOR_DEFAULTTONEAREST);
    MONITORINFO mi = {};
    mi.cbSize = sizeof mi;
    if (monitor && GetMonitorInfoA(monitor, &mi))
        work = mi.rcWork;
    else
        SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);

    RECT around = work;
    HWND owner = hRelative == -1 ? GetWindow(hWnd, GW_OWNER) : reinterpret_cast<HWND>(hRelative);
    if (!owner && hRelative == -1) owner = GetParent(hWnd);
    if (owner && IsWindowVisible(owner) && !IsIconic(owner)) GetWindowRect(owner, &around);

    int x = around.left + ((around.right - around.left) - cx) / 2;
    int y = around.top + ((around.bottom - around.top) - cy) / 2;
    if (nMode == 1) {
        if (x + cx > work.right) x = work.right - cx;
        if (y + cy > work.bottom) y = work.bottom - cy;
        if (x < work.left) x = work.left;
        if (y < work.top) y = work.top;
    }
    // A child window is placed in its parent's client coordinates.
    if (GetWindowLongA(hWnd, GWL_STYLE) & WS_CHILD) {
        POINT pt = {x, y};
        ScreenToClient(GetParent(hWnd), &pt);
        x = pt.x;
        y = pt.y;
    }
    return SetWindowPos(hWnd, nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

int q32GetAppDataFolderA(char* buffer, size_t cb, int /*reserved*/, int bCreate)
{
    if (!buffer || cb == 0) return 0;
    buffer[0] = 0;
    char folder[MAX_PATH] = "";
    DWORD n = GetEnvironmentVariableA("QVPRESCAN_APPDATA", folder, sizeof folder);
    if (n == 0 || n >= sizeof folder) {
        char appData[MAX_PATH] = "";
        n = GetEnvironmentVariableA("APPDATA", appData, sizeof appData);
        if (n == 0 || n >= sizeof appData) return 0;
        if (!qv::JoinFolderAndName(folder, sizeof folder, appData, "qvPreScan", IsLeadByte)) return 0;
    }
    qv::RemoveTrailingBackslash(folder, IsLeadByte);
    if (bCreate && !qfdIsDirA(folder) && !qfdCreateDirA(folder)) return 0;
    if (!qv::FormatBounded(buffer, cb, "%s\\", folder)) {
        buffer[0] = 0;  // a cut folder would name another place
        return 0;
    }
    return static_cast<int>(std::strlen(buffer));
}

void qfdSplitPathnameA(const char* path, char* name, size_t cbName, char* folder, size_t cbFolder)
{
    qv::SplitPath(path, folder, cbFolder, name, cbName, IsLeadByte);
}

BOOL qfdIsDirA(const char* path)
{
    if (!path || !path[0]) return FALSE;
    DWORD attr = GetFileAttributesA(path);
    return attr != INVALID_FILE_ATTRIBUTES && (attr & FILE_ATTRIBUTE_DIRECTORY);
}

BOOL qfdCreateDirA(const char* path)
{
    if (!path || !path[0]) return FALSE;
    char buf[MAX_PATH];
    if (!qv::CopyBounded(buf, path)) return FALSE;
    qv::RemoveTrailingBackslash(buf, IsLeadByte);
    if (qfdIsDirA(buf)) return TRUE;
    // Create each missing parent in turn, from the top down.
    for (size_t i = 0; buf[i]; i += (IsLeadByte(static_cast<unsigned char>(buf[i])) && buf[i + 1]) ? 2 : 1) {
        if (buf[i] != '\\' || i == 0 || buf[i - 1] == ':' || buf[i - 1] == '\\') continue;
        buf[i] = 0;
        if (!qfdIsDirA(buf)) CreateDirectoryA(buf, nullptr);
        buf[i] = '\\';
    }
    if (!CreateDirectoryA(buf, nullptr) && GetLastError() != ERROR_ALREADY_EXISTS) return FALSE;
    return qfdIsDirA(buf);
}

void qfdDelSlashA(char* path)
{
    if (!path) return;
    size_t len = std::strlen(path);
    if (len == 3 && path[1] == ':') return;  // "D:\" stays a drive root
    if (len <= 1) return;
    qv::RemoveTrailingBackslash(path, IsLeadByte);
}

BOOL qfIsFileExistA(const char* path)
{
    if (!path || !path[0]) return FALSE;
    DWORD attr = GetFileAttributesA(path);
    return attr != INVALID_FILE_ATTRIBUTES && !(attr & FILE_ATTRIBUTE_DIRECTORY);
}
