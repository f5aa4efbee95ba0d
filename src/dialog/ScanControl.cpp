// The operation state machine: start a scan, capture the marked scenes, move
// the tape to a scene, check the device, stop whatever runs, close.  Long
// host requests may pump messages while they run, so every operation sets
// its state before a request and looks at it again afterwards.
#include "dialog/PreScanDlg.h"

#include "ResourceIds.h"
#include "host/HostRequests.h"
#include "platform/ResourceLib.h"
#include "session/FolderRules.h"
#include "session/Session.h"

int g_nLateSceneMsgs;

namespace {

const int kLateSceneMessageLimit = 10;
// While scene notifications keep coming, the keyboard is read this often
// between them.
const DWORD kKeyReadMs = 50;

void ShowCursor(LPCSTR id)
{
    SetCursor(LoadCursorA(nullptr, id));
}

} // namespace

void CPreScanDlg::OnStartScan()
{
    g_bStopScan = 0;
    g_bSceneOpen = 0;
    FreeQuickScanQueues();
    if (m_nSceneCount > 0 && AskKeepCurrentList() == IDCANCEL) return;
    ResetSceneCounters(m_nSceneCount);

    if (g_session.nScanMethodIndex == 3) {
        if (EnsureFolderExists(g_session.szCaptureFolder) != FOLDER_READY) return;
        int32_t quick = g_session.nQuickScanSpeed, index = g_session.nWantIndexFile;
        g_session.nQuickScanSpeed = 0;  // the feed takes its normal path inside the call
        g_session.nWantIndexFile = 0;
        StartScanWithCapture();
        g_session.nQuickScanSpeed = quick;
        g_session.nWantIndexFile = index;
    } else {
        if (EnsureFolderExists(g_session.szCaptureFolder) != FOLDER_READY) return;
        ScanRequest req;
        BuildScanRequest(req, m_nSceneCount);
        DisableAllControls();
        int32_t accepted = SendHostRequest(HOSTREQ_START_SCAN, reinterpret_cast<intptr_t>(&req));
        if (!IsWindow()) return;  // closed while the host held the request
        if (accepted)
            EnterScanning();
        else
            StopScan();
    }
    if (IsWindow()) ::SetFocus(GetDlgItem(IDC_START_SCAN));
}

int CPreScanDlg::AskKeepCurrentList()
{
    if (m_nSceneCount <= 0) return IDNO;
    int answer = qv::MessageBoxRes(IDS_ASK_KEEP_LIST, MB_YESNOCANCEL | MB_ICONEXCLAMATION);
    if (answer == IDYES || answer == IDCANCEL) {
        m_bModified = 1;
        UpdateTitle();
        return answer;
    }
    // No: the list is saved, then a new one begins (also when the save was cancelled).
    SaveSceneListAs();
    m_listScenes.m_nMarkedCount = 0;
    m_listScenes.DeleteAllRows();
    FreeSceneStore();
    m_nSceneCount = 0;
    ResetEmptyList();
    return answer;
}

int CPreScanDlg::StartScanWithCapture()
{
    ScanRequest req;
    BuildScanRequest(req, m_nSceneCount);
    m_bBusy = 1;
    m_nState = PS_SCAN_CAPTURE;
    UpdateTitle();
    DisableAllControls();
    g_bDirectCapture = 1;
    int32_t result = SendHostRequest(HOSTREQ_START_SCAN, reinterpret_cast<intptr_t>(&req));
    if (!IsWindow()) return result;
    EndOperation();
    ClearIncompleteScenes(*this, 0);
    if (m_nSceneCount > 0 && !m_bModified) {
        m_bModified = 1;
        UpdateTitle();
    }
    return result;
}

void CPreScanDlg::EnterScanning()
{
    m_bBusy = 1;
    m_bPlayEnabled = 0;
    m_bMergeEnabled = 0;
    m_nState = PS_SCANNING;
    DisableAllControls();
    SetStatusTimer(TRUE);
    ShowCursor(IDC_WAIT);
}

void CPreScanDlg::StopScan()
{
    SendHostRequest(HOSTREQ_STOP_SCAN, static_cast<intptr_t>(m_nSceneCount));
    m_bBusy = 0;
    m_nState = PS_IDLE;
    RestoreControlsAfterScan();
    m_bModified = m_nSceneCount >= 1 ? 1 : 0;
    SetStatusTimer(FALSE);
    UpdateTitle();
}

void CPreScanDlg::StopCurrentOperation()
{
    switch (m_nState) {
    case PS_SCANNING: StopScan(); break;
    case PS_TAPE_PREVIEW: StopTapePreview(); break;
    case PS_SEEKING: EndSeek(); break;
    case PS_SCAN_CAPTURE: EndOperation(); break;
    case PS_FILE_PREVIEW: StopFilePreview(); break;
    default: break;  // idle, and a capture the host still holds: nothing to stop
    }
    ShowCursor(IDC_ARROW);
}

void CPreScanDlg::EndOperation()
{
    m_bBusy = 0;
    m_nState = PS_IDLE;
    RestoreControls();
    UpdateTitle();
    g_bDirectCapture = 0;
    g_bStopScan = 0;
}

void CPreScanDlg::EndSeek()
{
    m_bBusy = 0;
    m_nState = PS_IDLE;
    RestoreControls();
    UpdateTitle();
    g_bStopScan = 0;
    SetStatusTimer(FALSE);
}

void CPreScanDlg::OnCapture()
{
    CaptureRequest req;
    if (!BuildCaptureRequest(req, m_listScenes.m_nMarkedCount, m_strTapeName.c_str(), m_nSceneCount)) return;
    g_bDirectCapture = 0;
    if (EnsureFolderExists(g_session.szCaptureFolder) != FOLDER_READY) {
        FreeSpanChain(req.pFirstSpan);
        return;
    }
    m_bBusy = 1;
    m_nState = PS_CAPTURING;
    UpdateTitle();
    DisableAllControls();
    if (SendHostRequest(HOSTREQ_CAPTURE_SCENES, reinterpret_cast<intptr_t>(&req)) == 0) {
        // The host keeps the capture (and its chain); the dialog waits,
        // disabled, until the host or a close ends it.
        return;
    }
    if (IsWindow() && m_nState == PS_CAPTURING) EndOperation();
    FreeSpanChain(req.pFirstSpan);
}

void CPreScanDlg::OnGoToScene(UINT nId)
{
    int first, last;
    m_listScenes.GetSelRange(first, last);
    if (first < 0 || last < 0) return;
    SceneRecord* scene = FetchScene(first);
    if (!scene) return;
    bool toStart = nId == ID_GOTO_SCENE_START;
    // The device position is used when the scene has one (tested on its start).
    if (scene->dwPositionIn != QV_NO_POSITION)
        SeekPosition(toStart ? scene->dwPositionIn : scene->dwPositionOut);
    else
        SeekTimeCode(toStart ? scene->dwTimeCodeIn : scene->dwTimeCodeOut);
}

void CPreScanDlg::SeekPosition(uint32_t dwPosition)
{
    SeekTo(HOSTREQ_SEEK_POSITION, dwPosition);
}

void CPreScanDlg::SeekTimeCode(uint32_t dwTimeCode)
{
    SeekTo(HOSTREQ_SEEK_TIMECODE, dwTimeCode);
}

void CPreScanDlg::SeekTo(int32_t nRequest, uint32_t dwValue)
{
    m_bBusy = 1;
    m_nState = PS_SEEKING;
    SetStatusTimer(TRUE);
    UpdateTitle();
    DisableAllControls();
    // A zero answer means the tape is still moving: the dialog stays seeking,
    // with the position in the title, until a stop.
    int32_t arrived = SendHostRequest(nRequest, reinterpret_cast<intptr_t>(&dwValue));
    if (arrived && IsWindow() && m_nState == PS_SEEKING) EndSeek();
}

void CPreScanDlg::OnCheckDevice()
{
    DeviceStatus status = {};
    SendHostRequest(HOSTREQ_GET_DEVICE_STATUS, reinterpret_cast<intptr_t>(&status));
    if (!IsWindow()) return;
    const int32_t* flag = status.adwCondition;
    bool ready = true;
    for (int i = 0; i < 8; ++i) ready = ready && flag[i] != 0;
    m_bDeviceReady = ready ? 1 : 0;
    EnableDeviceControls(m_bDeviceReady);
    if (ready) return;

    // One reason is named: the first failing of flags 0, 6, 7, 1, unless one
    // of flags 5, 2, 4, 3 fails, which then takes its place.
    UINT reason = 0;
    for (int i : {0, 6, 7, 1})
        if (!flag[i]) { reason = IDS_DEVICE_REASON_0 + static_cast<UINT>(i); break; }
    for (int i : {5, 2, 4, 3})
        if (!flag[i]) { reason = IDS_DEVICE_REASON_0 + static_cast<UINT>(i); break; }
    std::string text = qv::LoadResString(IDS_DEVICE_NOT_READY) + "- " + qv::LoadResString(reason);
    qv::MessageBoxText(text.c_str(), MB_OK);
}

int32_t CPreScanDlg::OnClosePreScan()
{
    int answer = PromptSaveChanges(g_bForcedStop ? FALSE : TRUE);
    g_bForcedStop = 0;
    if (answer == IDCANCEL) return 0;
    if (m_bBusy) StopScan();
    // The feed ends first.  A host thread inside a feed call finishes only the
    // step it holds the lock for (deleting the lock waits for that); each
    // later step of that call, and every later call, finds the lock gone and
    // ends, so nothing can join the table after it was freed.  Such a call
    // may still post a scene message, which is dropped with the window.
    g_csScenes.Delete();
    m_listScenes.DeleteAllRows();
    FreeSceneStore();
    m_nSceneCount = 0;
    UpdateData(true);  // as the OK button would: the controls' data into the members
    DestroyWindow();
    return SendHostRequest(HOSTREQ_DIALOG_CLOSED, 0);
}

int CPreScanDlg::PromptSaveChanges(BOOL bWithCancel)
{
    if (!m_bModified || m_nSceneCount < 1) return IDNO;
    UINT buttons = bWithCancel ? MB_YESNOCANCEL : MB_YESNO;
    int answer = qv::MessageBoxRes(IDS_ASK_SAVE_CHANGES, buttons | MB_ICONEXCLAMATION);
    if (answer == IDYES) SaveSceneListAs();
    return answer;
}

void CPreScanDlg::SetStatusTimer(BOOL bOn)
{
    if (bOn) {
        if (m_nTimerId == 0) m_nTimerId = SetTimer(m_hWnd, kStatusTimerId, kStatusTimerMs, nullptr);
    } else if (m_nTimerId != 0) {
        KillTimer(m_hWnd, m_nTimerId);
        m_nTimerId = 0;
    }
}

void CPreScanDlg::OnStatusTimer(UINT_PTR nId)
{
    if (nId != kStatusTimerId) return;
    UpdateTitle();
    TakeSceneNotifications();  // in case the message that wakes the dialog was refused
}

// The scene notifications of a quick scan or a host thread, taken in one go:
// as many as wait when the dialog is woken (those that come meanwhile wake
// it again), each as a scene message of its own.  The title is refreshed
// once for them all, and the keyboard read once (and again for each late
// scene, or when scenes keep coming).
void CPreScanDlg::TakeSceneNotifications()
{
    int n = BeginSceneNotifications();
    if (n == 0) return;
    bool taking = m_bTakingNotifications;
    m_bTakingNotifications = true;
    m_dwKeysReadAt = GetTickCount() - kKeyReadMs;
    int nRow, bBegun;
    for (; n > 0 && IsWindow() && TakeSceneNotification(nRow, bBegun); --n) OnPreScanScene(nRow, bBegun);
    m_bTakingNotifications = taking;
    if (IsWindow()) UpdateTitle();
}

bool CPreScanDlg::KeyReadDue(bool bLate)
{
    DWORD now = GetTickCount();
    if (m_bTakingNotifications && !bLate && now - m_dwKeysReadAt < kKeyReadMs) return false;
    m_dwKeysReadAt = now;
    return true;
}

int CPreScanDlg::OnPreScanScene(int nRow, int bBegun)
{
    const bool quick = g_session.nQuickScanSpeed > 0;
    const bool late = !m_bBusy && g_bStopScan;
    bool updateRow = true;
    if (late) {
        // The scan has stopped, but scene messages still come.
        if (!quick) {
            updateRow = false;
        } else if (g_nLateSceneMsgs >= kLateSceneMessageLimit) {
            FlushLateSceneMessages();
            updateRow = false;
        } else {
            ++g_nLateSceneMsgs;
        }
    }
    if (updateRow) {
        m_bLastSceneComplete = bBegun ? 0 : 1;
        if (!g_bDirectCapture) {
            m_listScenes.SetSceneRow(nRow, bBegun ? TRUE : FALSE);
            m_listScenes.SelectRange(nRow, FALSE, 0);
            ShowNewestRow(nRow);
        }
        if (m_bLastSceneComplete) ++m_nSceneCount;
    }
    if (m_nSceneCount > 0 && !m_bModified && !g_bDirectCapture) m_bModified = 1;
    if (!m_bTakingNotifications) UpdateTitle();
    if (g_bStopScan) RestoreControlsAfterStop();

    if (!quick || !KeyReadDue(late)) return 1;
    // Scene messages may keep the keyboard waiting: one key is read here,
    // past the dialog's own key handling.  Only Escape pressed down stops the
    // scan; any other key taken out is dropped (a letter must not reach the
    // list, a second Escape must not close the dialog).
    MSG key;
    if (CDialog::TakeMessage(&key, WM_KEYFIRST, WM_KEYLAST) && key.message == WM_KEYDOWN &&
        key.wParam == VK_ESCAPE) {
        g_bStopScan = 1;
        StopCurrentOperation();
        return 0;
    }
    return 1;
}

// The list follows the scan to its newest row.  Scenes can come faster than
// a list can be drawn (a quick scan, a host catching up): the list's drawing
// is held from the first scene of a burst, and the list is scrolled and drawn
// once when the dialog's queue reaches the message posted here.  A scene that
// comes on its own is shown as soon as the dialog is idle again.
void CPreScanDlg::ShowNewestRow(int nRow)
{
    m_nNewestRow = nRow;
    if (m_bNewestRowPending) return;
    m_bNewestRowPending = 1;
    m_listScenes.SendMessage(WM_SETREDRAW, FALSE);
    PostMessage(WM_PRESCAN_SHOW_NEWEST, 0, 0);
}

void CPreScanDlg::OnShowNewestRow()
{
    if (!m_bNewestRowPending) return;
    m_bNewestRowPending = 0;
    m_listScenes.SendMessage(WM_SETREDRAW, TRUE);
    // Invalidated first: a list that scrolls draws itself at once, and then
    // does so whole, once.  (A host that keeps feeding keeps a message ahead
    // of any painting: the rows are drawn by that scroll meanwhile.)
    m_listScenes.Invalidate(FALSE);
    int rows = m_listScenes.GetRowCount();
    if (m_nNewestRow >= 0 && m_nNewestRow < rows) {
        m_listScenes.SendMessage(WM_VSCROLL, SB_BOTTOM, 0);
        // Not every list honours SB_BOTTOM; the new row is shown either way.
        m_listScenes.SendMessage(LVM_ENSUREVISIBLE, static_cast<WPARAM>(m_nNewestRow), FALSE);
    }
}

void CPreScanDlg::FlushLateSceneMessages()
{
    g_nLateSceneMsgs = 0;
    // The backlog is dropped, never handled: taken out past the dialog's
    // message handling, with the scenes that could not be posted.
    MSG msg;
    while (CDialog::TakeMessage(&msg, WM_USER, WM_PRESCAN_SCENE)) {
    }
    DropSceneNotifications();
    if (g_bStopScan) {
        ClearIncompleteScenes(*this, 1);
        RestoreControlsAfterStop();
    }
    ShowCursor(IDC_WAIT);
    m_listScenes.UpdateOutTimes(0);
    ShowCursor(IDC_ARROW);
}

void CPreScanDlg::DeleteSceneRow(int nRow)
{
    m_listScenes.DeleteRow(nRow);
}

void CPreScanDlg::OnIncompleteScenesCleared(int nCompleted)
{
    EnableItem(IDC_SAVE_LIST, nCompleted >= 1);
    m_bModified = nCompleted > 0 ? 1 : 0;
    if (nCompleted >= 1) m_listScenes.SelectRange(nCompleted - 1, FALSE, 0);
    if (m_nState == PS_IDLE) {
        RestoreControls();
        EnableDeviceControls(m_bDeviceReady);
    }
    UpdateTitle();
    m_bLastSceneComplete = 1;
}
