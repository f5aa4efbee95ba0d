// The fourteen functions the host calls.  Each guards itself: without a
// session (or, where it needs one, without a dialog) it does nothing and
// returns its no-op result.  No exception ever leaves an export.
#include "qvPreScan.h"
#include "platform/BoundedCopy.h"
#include "session/NameRules.h"
#include "session/FolderRules.h"
#include "session/Session.h"
#include "dialog/PreScanDlg.h"
#include "scenes/SceneStore.h"

#include <exception>
#include <new>

namespace {

const char kIndexFileName[] = "PSIndex.avi";

bool FeedOpen()
{
    return HasDialog() && g_csScenes.IsAlive();
}

template <class F, class R> R Guarded(F&& body, R fallback)
{
    try {
        return body();
    } catch (const std::exception&) {
        return fallback;
    }
}

template <class F> void Guarded(F&& body)
{
    try {
        body();
    } catch (const std::exception&) {
    }
}

} // namespace

extern "C" {

int32_t qvPreScanInit(const PreScanInitInfo* pInfo)
{
    if (!pInfo) return 0;
    return Guarded([&] { StartSession(*pInfo); return 1; }, 1);
}

int32_t qvPreScanUnInit(void)
{
    if (!HasSession()) return 1;
    Guarded([] {
        EndSession();
        FreeSceneStore();
    });
    return 1;
}

HWND qvShowPreScanDlg(HWND hParent)
{
    if (!HasSession()) return nullptr;  // no callback to ask the host anything through
    return Guarded([&]() -> HWND {
        if (g_session.pDialog) {
            delete g_session.pDialog;  // its window, if any, goes with it
            g_session.pDialog = nullptr;
        }
        auto* dlg = new (std::nothrow) CPreScanDlg(hParent);
        if (!dlg) return nullptr;
        g_session.pDialog = dlg;
        if (!dlg->Create(hParent)) return nullptr;
        dlg->ShowWindow(SW_SHOW);
        return g_hPreScanWnd;
    }, static_cast<HWND>(nullptr));
}

void qvMinimizePreScanDlg(void)
{
    if (HasDialog()) Guarded([] { g_session.pDialog->SendSysCommand(SC_MINIMIZE); });
}

void qvRestorePreScanDlg(void)
{
    if (HasDialog()) Guarded([] { g_session.pDialog->SendSysCommand(SC_RESTORE); });
}

void qvForceToStopPreScan(int32_t bClose)
{
    if (!HasDialog()) return;
    Guarded([&] {
        CPreScanDlg* dlg = g_session.pDialog;
        g_bStopScan = 1;
        dlg->StopCurrentOperation();
        if (bClose && dlg->IsWindow()) {
            g_bForcedStop = 1;
            dlg->OnClosePreScan();
        }
    });
}

int32_t qvGetCurrentSceneNumber(void)
{
    return HasDialog() ? g_session.pDialog->m_nSceneCount.load() : 0;
}

void qvGetLibFolderFromPreScan(char* pszFolder)
{
    if (!pszFolder || !HasDialog()) return;
    qv::CopyBounded(pszFolder, QV_MAX_PATH, g_session.szProductionLibFolder);
}

void qvGetPreScanIndexFileName(char* pszPath)
{
    if (!pszPath) return;
    qv::JoinFolderAndName(pszPath, QV_MAX_PATH, g_session.szCaptureFolder, kIndexFileName, IsLeadByte);
}

int32_t qvPSClearUncompleteScene(void)
{
    if (!HasDialog()) return 0;
    return Guarded([] { return ClearIncompleteScenes(*g_session.pDialog, 0); }, 0);
}

// The scene feed works only while the dialog's window exists; the store's
// lock (which lives exactly as long) turns calls after the close into no-ops.
void qvSetSceneDataBegin(const SceneInfo* pScene, const BITMAPINFOHEADER* pHeader, const void* pBits)
{
    if (!pScene || !FeedOpen()) return;
    Guarded([&] { AddSceneBegin(*g_session.pDialog, *pScene, reinterpret_cast<const ThumbHeader*>(pHeader), pBits); });
}

void qvSetSceneDataEnd(const SceneInfo* pScene)
{
    if (!pScene || !FeedOpen()) return;
    Guarded([&] { CompleteScene(*g_session.pDialog, *pScene); });
}

void qvSetSceneBitmapData(int32_t nScene, const BITMAPINFOHEADER* pHeader, const void* pBits, int32_t nBytes)
{
    if (!FeedOpen() || nScene < 0 || nScene >= g_session.pDialog->m_nSceneCount || !pHeader || !pBits || nBytes < 1)
        return;
    Guarded([&] { StoreSceneBitmap(nScene, reinterpret_cast<const ThumbHeader*>(pHeader), pBits, nBytes); });
}

void qvSetCapSceneFileName(int32_t nScene, const char* pszPath)
{
    if (nScene < 0 || !pszPath || !FeedOpen()) return;
    Guarded([&] { SetCaptureFileName(*g_session.pDialog, nScene, pszPath); });
}

} // extern "C"
