// The host's resource library: every text the pre-scan module shows, its
// dialog templates and its menu live here.  The module finds them through
// the one export.
#include <windows.h>

namespace {
HINSTANCE g_hInstance;
}

extern "C" BOOL WINAPI DllMain(HINSTANCE hInstance, DWORD dwReason, LPVOID)
{
    if (dwReason == DLL_PROCESS_ATTACH) {
        g_hInstance = hInstance;
        DisableThreadLibraryCalls(hInstance);
    }
    return TRUE;
}

extern "C" HINSTANCE qvCaptureGetNewRCInstanceHandle(void)
{
    return g_hInstance;
}
