// Stand-in for the in-house folder browser (the platform's folder dialog)
// and the in-house libraries' record of their last error.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

// Lets the user pick a folder, starting at `current`.  Returns 1 with the
// folder in `chosen`, 0 when cancelled, a negative value when the dialog
// could not be shown or gave no usable folder; the error record then tells
// why.
int qBrowseForFolder(HWND hOwner, const char* current, std::string& chosen);

// The last error of the in-house libraries: the module holding the error's
// text and its string ID, or the text itself (either may be missing).
struct QErrorRecord {
    HINSTANCE hTextModule;
    uint8_t abUnused[12];
    uint32_t nTextId;
    char szText[260];
};
void qGetLastErrorRecord(QErrorRecord& record);
// Records an error: a text, or (with an empty text) a string ID of `hModule`.
void qSetLastErrorRecord(HINSTANCE hModule, uint32_t nTextId, const char* text);

// Tests only: a browser in place of the platform's dialog (null restores it).
using FolderBrowserProc = int (*)(HWND hOwner, const char* current, std::string& chosen);
void qReplaceFolderBrowser(FolderBrowserProc proc);
