// Stand-ins for the in-house support libraries the module calls: window
// placement, the application data folder, and path and file helpers.
#pragma once

#include <windows.h>

#include <cstddef>

// Places a window: hRelative -1 centres it on its owner (or on the work area
// when it has none, or the owner is hidden or minimised); nMode 1 also keeps
// it wholly inside the work area.
BOOL q32MoveWindow(HWND hWnd, INT_PTR hRelative, int nMode);

// The per-user folder of the module's settings, ending in "\" and created:
// %QVPRESCAN_APPDATA% when set (tests, portable installs), else
// %APPDATA%\qvPreScan\.  Returns the length, 0 on failure (empty buffer).
int q32GetAppDataFolderA(char* buffer, size_t cb, int reserved, int bCreate);

// Splits a full path into its file name (with extension) and its folder
// (ending in "\" when the path had one).  Either output may be null.
void qfdSplitPathnameA(const char* path, char* name, size_t cbName, char* folder, size_t cbFolder);

// Nonzero when the folder exists.
BOOL qfdIsDirA(const char* path);

// Creates the folder with any missing parents.  Nonzero on success, also
// when it already existed.
BOOL qfdCreateDirA(const char* path);

// Removes a trailing "\" in place; a drive root ("D:\") keeps it.
void qfdDelSlashA(char* path);

// Nonzero when a file (not a folder) of that name exists.
BOOL qfIsFileExistA(const char* path);
