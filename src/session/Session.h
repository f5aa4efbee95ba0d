// The one pre-scan session and the module-wide values that live beside it.
#pragma once

#include <windows.h>

#include "qvPreScan.h"

class CPreScanDlg;

// Everything the module knows between qvPreScanInit and qvPreScanUnInit.
// Zeroed as a whole at both ends.
struct PreScanSession {
    void* hHost;                          // the host's handle; never used
    HostRequestProc pfnHostRequest;       // every host request goes through it
    int32_t bInitialized;
    CPreScanDlg* pDialog;                 // the pre-scan dialog object, or null
    int32_t nWantIndexFile;               // setting WantIndexFile
    int32_t nSaveToLibrary;               // setting SaveToLibrary
    int32_t nQuickScanSpeed;              // setting QuickScanSpeed; > 0 = quick scan
    int32_t nScanMethodIndex;             // setting ScanMethodIndex (1, 2, 3)
    int32_t nTvStandard;                  // 0, 1 (30 fps) or 2 (25 fps)
    char szCaptureExt[QV_CAPTURE_EXT_SIZE];
    char szCaptureFileName[QV_MAX_PATH];  // setting PSCaptureFileName
    char szCaptureName[QV_CAPTURE_NAME_SIZE];
    char szCaptureFolder[QV_MAX_PATH];    // the index file lives here too
    char szSavePSFDir[QV_MAX_PATH];       // setting SavePSFDir
    char szSceneListFile[QV_MAX_PATH];    // the current scene list file
    char szProductionLibFolder[QV_MAX_PATH];
};

extern PreScanSession g_session;

// Module-wide values, each one instance, zero at load.
extern HINSTANCE g_hModule;       // this library
extern HINSTANCE g_hResInst;      // the host's resource library: every text
extern HWND g_hPreScanWnd;        // the dialog's window; owner of message boxes
extern char g_szHelpFile[QV_MAX_PATH];
extern char g_szAppDataFolder[QV_MAX_PATH];
extern char g_szIniPath[QV_MAX_PATH];
extern char g_szMsgTitle[50];     // title of every message box
extern int32_t g_bStopScan;       // the running scan is to stop
extern int32_t g_bForcedStop;     // the host asked the dialog to close

inline bool HasSession() { return g_session.bInitialized != 0; }
inline bool HasDialog() { return g_session.bInitialized != 0 && g_session.pDialog != nullptr; }

// Starts the session from the host's record (qvPreScanInit's work).
void StartSession(const PreScanInitInfo& info);
// Ends it (qvPreScanUnInit's work); does not destroy an open dialog.
void EndSession();
