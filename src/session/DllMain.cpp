// The library's entry point.  The module needs no per-thread work; it keeps
// its own instance so that its bitmaps can be loaded from it.
#include "session/Session.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE hInstance, DWORD dwReason, LPVOID /*reserved*/)
{
    switch (dwReason) {
    case DLL_PROCESS_ATTACH:
#ifndef NDEBUG
        OutputDebugStringA("QVPreScan.DLL Initializing!\n");
#endif
        g_hModule = hInstance;
        DisableThreadLibraryCalls(hInstance);
        break;
    case DLL_PROCESS_DETACH:
#ifndef NDEBUG
        OutputDebugStringA("QVPreScan.DLL Terminating!\n");
#endif
        break;
    default:
        break;
    }
    return TRUE;
}
