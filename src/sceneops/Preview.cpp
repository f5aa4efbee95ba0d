// Previewing the selected scene: its file on disk plays over its thumbnail
// (the captured file, else the one the host wrote while scanning); without
// a file the host plays the scene's stretch of tape.  Pressing the preview
// button again stops either.
#include "dialog/PreScanDlg.h"

#include "ResourceIds.h"
#include "host/HostRequests.h"
#include "platform/BoundedCopy.h"
#include "platform/SupportLib.h"
#include "platform/VideoPlayer.h"
#include "session/Session.h"

namespace {

const int kVideoWidth = 80;
const int kVideoHeight = 60;

} // namespace

void CPreScanDlg::PreviewScene()
{
    if (m_bBusy) {
        if (m_nState == PS_TAPE_PREVIEW) StopTapePreview();
        else if (m_nState == PS_FILE_PREVIEW) StopFilePreview();
        return;
    }
    int first, last;
    m_listScenes.GetSelRange(first, last);
    if (first < 0 || last < 0) return;
    SceneRecord* scene = FetchScene(first);
    if (!scene) return;
    const char* file = nullptr;
    if (scene->szCaptureFile[0] && qfIsFileExistA(scene->szCaptureFile)) file = scene->szCaptureFile;
    else if (scene->szSceneFile[0] && qfIsFileExistA(scene->szSceneFile)) file = scene->szSceneFile;
    if (file) {
        qv::CopyBounded(g_videoFileInfo.szPath, file);
        if (qVideoGetFileInfo(&g_videoFileInfo) > 0) PlayCapturedFile(first);
        else qVideoFreeFileInfo(&g_videoFileInfo);  // not playable: nothing happens
        return;
    }
    SceneSpan span = MakeSceneSpan(*scene);
    PlayTapeSpan(&span);
}

void CPreScanDlg::PlayCapturedFile(int nRow)
{
    m_bBusy = 1;
    m_nState = PS_FILE_PREVIEW;
    UpdateTitle();
    DisableAllControls();
    m_btnPreview.SetBitmap(IDB_PREVIEW_STOP);
    EnableItem(IDC_PREVIEW, TRUE);
    HWND video = GetDlgItem(IDC_PREVIEW_VIDEO);
    if (video) {
        // Exactly over the thumbnail: 80x60 around the centre of column 1's
        // cell, moved by (2, 2), in the dialog's client coordinates.
        RECT list;
        m_listScenes.GetWindowRect(&list);
        RECT cell = {0, 0, 1, 1};
        m_listScenes.GetCellRect(nRow, 1, LVIR_BOUNDS, cell);
        OffsetRect(&cell, list.left, list.top);
        int cx = (cell.left + cell.right) / 2, cy = (cell.top + cell.bottom) / 2;
        RECT v;
        SetRect(&v, cx - kVideoWidth / 2, cy - kVideoHeight / 2, cx + kVideoWidth / 2, cy + kVideoHeight / 2);
        OffsetRect(&v, 2, 2);
        MapWindowPoints(nullptr, m_hWnd, reinterpret_cast<POINT*>(&v), 2);
        // Above the list, which the template places over it.
        SetWindowPos(video, HWND_TOP, v.left, v.top, kVideoWidth, kVideoHeight, SWP_NOACTIVATE);
        if (qVideoPlayBegin(&g_videoFileInfo, video, m_hWnd, 0) < 1) {
            qVideoFreeFileInfo(&g_videoFileInfo);
            // Playback could not begin: back to idle at once rather than
            // leaving the user in a preview that shows nothing.
            StopFilePreview();
            return;
        }
        ::ShowWindow(video, SW_SHOW);
        qVideoPlayAction(&g_videoFileInfo, 1, 0, 0, 0, 0);
    }
    ::SetFocus(m_hWnd);
    qVideoFreeFileInfo(&g_videoFileInfo);
}

void CPreScanDlg::PlayTapeSpan(const SceneSpan* pSpan)
{
    m_bBusy = 1;
    m_nState = PS_TAPE_PREVIEW;
    SetStatusTimer(TRUE);
    UpdateTitle();
    DisableAllControls();
    m_btnPreview.SetBitmap(IDB_PREVIEW_STOP);
    EnableItem(IDC_PREVIEW, TRUE);
    // The host plays the span inside the request; a second press of the
    // button (handled inside it) sends request 5 and ends the preview.
    SendHostRequest(HOSTREQ_PLAY_SPAN, reinterpret_cast<intptr_t>(pSpan));
    if (IsWindow() && m_nState == PS_TAPE_PREVIEW) StopTapePreview();
}

void CPreScanDlg::StopTapePreview()
{
    m_bBusy = 0;
    m_nState = PS_IDLE;
    SendHostRequest(HOSTREQ_STOP_PLAY, 0);
    m_btnPreview.SetBitmap(IDB_PREVIEW_PLAY);
    RestoreControls();
    SetStatusTimer(FALSE);
    UpdateTitle();
    EnableDeviceControls(m_bDeviceReady);
    SetCursor(LoadCursorA(nullptr, IDC_ARROW));
    g_bStopScan = 0;
}

void CPreScanDlg::StopFilePreview()
{
    if (qVideoPlayAction(&g_videoFileInfo, 2, 0, 0, 0, 0) >= 0) {
        qVideoPlayEnd(&g_videoFileInfo, 0);
        m_bBusy = 0;
        m_nState = PS_IDLE;
        EnableItem(IDC_VIEW_MODE, TRUE);
        m_btnPreview.SetBitmap(IDB_PREVIEW_PLAY);
        RestoreControls();
        UpdateTitle();
        ShowItem(IDC_PREVIEW_VIDEO, FALSE);
        EnableDeviceControls(m_bDeviceReady);
        Invalidate(TRUE);
    }
    g_bStopScan = 0;
    qVideoFreeFileInfo(&g_videoFileInfo);
}
