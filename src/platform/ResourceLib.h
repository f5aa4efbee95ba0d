// Texts from the host's resource library and the module's message boxes.
#pragma once

#include <windows.h>

#include <string>

extern "C" HINSTANCE qvCaptureGetNewRCInstanceHandle(void);

namespace qv {

// The instance of the host's resource library.
HINSTANCE GetHostResourceInstance();

// Loads string `id` of the resource library into a fixed buffer (empty when
// missing).  Returns the length copied.
int LoadResString(UINT id, char* out, int cb);
std::string LoadResString(UINT id);

// The string `id` used as a printf format with one text or number argument.
std::string FormatResString(UINT id, const char* arg);
std::string FormatResString(UINT id, int arg);

// A message box owned by the pre-scan dialog, titled with the module title.
int MessageBoxText(const char* text, UINT type);
int MessageBoxRes(UINT id, UINT type);

} // namespace qv
