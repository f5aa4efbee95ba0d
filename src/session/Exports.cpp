// The fourteen functions the host calls.  Each guards itself: without a
// session (or, where it needs one, without a dialog) it does nothing and
// returns its no-op result.  No exception ever leaves an export.
#include "qvPreScan.h"
#include "platform/BoundedCopy.h"
#include "session/NameRules.h"
#include "session/FolderRules.h"
#include "session/Session.h"

#include <exception>

namespace {

const char kIndexFileName[] = "PSIndex.avi";

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
    Guarded([] { EndSession(); });
    return 1;
}

HWND qvShowPreScanDlg(HWND /*hParent*/)
{
    // The pre-scan dialog is not part of this build yet.
    return nullptr;
}

void qvMinimizePreScanDlg(void) {}
void qvRestorePreScanDlg(void) {}
void qvForceToStopPreScan(int32_t /*bClose*/) {}

int32_t qvGetCurrentSceneNumber(void)
{
    return 0;
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
    return 0;
}

void qvSetSceneDataBegin(const SceneInfo* /*pScene*/, const BITMAPINFOHEADER* /*pHeader*/, const void* /*pBits*/) {}
void qvSetSceneDataEnd(const SceneInfo* /*pScene*/) {}
void qvSetSceneBitmapData(int32_t /*nScene*/, const BITMAPINFOHEADER* /*pHeader*/, const void* /*pBits*/,
                          int32_t /*nBytes*/)
{
}
void qvSetCapSceneFileName(int32_t /*nScene*/, const char* /*pszPath*/) {}

} // extern "C"
