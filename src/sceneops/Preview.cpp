// Previewing the selected scene from tape: the host plays the scene's span.
#include "dialog/PreScanDlg.h"

#include "ResourceIds.h"
#include "host/HostRequests.h"
#include "session/Session.h"

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
    // Back to idle from a file preview: the preview button shows its play
    // picture again and the video surface goes away.
    m_bBusy = 0;
    m_nState = PS_IDLE;
    EnableItem(IDC_VIEW_MODE, TRUE);
    m_btnPreview.SetBitmap(IDB_PREVIEW_PLAY);
    RestoreControls();
    UpdateTitle();
    ShowItem(IDC_PREVIEW_VIDEO, FALSE);
    EnableDeviceControls(m_bDeviceReady);
    Invalidate(TRUE);
    g_bStopScan = 0;
}
