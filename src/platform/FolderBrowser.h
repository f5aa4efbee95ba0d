// Stand-in for the in-house folder browser: the platform's folder dialog.
#pragma once

#include <windows.h>

#include <string>

// Lets the user pick a folder, starting at `current`.  Returns 1 with the
// folder in `chosen`, 0 when cancelled, -1 when the dialog could not be shown
// or gave no usable folder.
int qBrowseForFolder(HWND hOwner, const char* current, std::string& chosen);
