// Rules of scene list file names, and the file dialogs' hook.
#pragma once

#include <windows.h>

#include <cstddef>

// True when the file name's extension (after its last '.') is exactly "psf".
bool HasListExtension(const char* path);
// Gives a chosen name the ".psf" extension: appended when there is none,
// replacing any other (the comparison is case-sensitive).
void CompleteListExtension(char* path, size_t cb);
// The characters of `path` before its last backslash, into `folder` (260
// bytes); a path without a backslash leaves `folder` as it was.
void CopyFolderOfPath(char* folder, const char* path);
UINT_PTR SceneListDialogHook(HWND hook, UINT msg, WPARAM wp, LPARAM lp);
