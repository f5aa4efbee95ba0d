// The pre-scan dialog's life and layout: construction, initialisation, data
// exchange, message routing, key and mouse filtering, cursor, system
// commands, the go-to popup, help, and destruction.
#include "dialog/PreScanDlg.h"

#include "ResourceIds.h"
#include "listview/CommentEdit.h"
#include "options/ScanOption.h"

#include <new>
#include "platform/BoundedCopy.h"
#include "platform/ResourceLib.h"
#include "platform/SupportLib.h"
#include "session/Session.h"

#include <commctrl.h>
#include <windowsx.h>

namespace {

const int kTapeNameLimit = 100;
const int kTapeDescriptionLimit = 520;
const UINT kVideoNotifyId = QV_VIDEO_NOTIFY_ID;

} // namespace

CPreScanDlg::CPreScanDlg(HWND hParent) : CDialog(IDD_PRESCAN, hParent)
{
    m_listScenes.SetOwner(this);
}

CPreScanDlg::~CPreScanDlg()
{
    if (m_hWnd && IsWindow()) DestroyWindow();
}

BOOL CPreScanDlg::Create(HWND hParent)
{
    return CDialog::Create(IDD_PRESCAN, hParent);
}

void CPreScanDlg::SendSysCommand(UINT nCommand)
{
    if (nCommand == SC_MINIMIZE || nCommand == SC_RESTORE) SendMessage(WM_SYSCOMMAND, nCommand, 0);
}

// ---- Data exchange -------------------------------------------------------

void CPreScanDlg::BindControls()
{
    if (m_bControlsBound) return;
    m_bControlsBound = true;
    m_btnSaveList.m_hWnd = GetDlgItem(IDC_SAVE_LIST);
    m_btnOpenList.m_hWnd = GetDlgItem(IDC_OPEN_LIST);
    m_btnPreview.SubclassDlgItem(IDC_PREVIEW, m_hWnd);
    m_btnCapture.SubclassDlgItem(IDC_CAPTURE, m_hWnd);
    m_btnViewMode.SubclassDlgItem(IDC_VIEW_MODE, m_hWnd);
    m_btnMarkAll.m_hWnd = GetDlgItem(IDC_MARK_ALL);
    m_btnSplit.SubclassDlgItem(IDC_SPLIT_SCENE, m_hWnd);
    m_btnMerge.SubclassDlgItem(IDC_MERGE_SCENES, m_hWnd);
    m_btnGoTo.SubclassDlgItem(IDC_GOTO, m_hWnd);
    m_btnDelete.m_hWnd = GetDlgItem(IDC_DELETE_SCENES);
    m_btnClearAll.m_hWnd = GetDlgItem(IDC_CLEAR_ALL);
    m_listScenes.SubclassVirtualList(IDC_SCENE_LIST, m_hWnd);
}

void CPreScanDlg::DataToControls()
{
    BindControls();
    ::SendMessageA(GetDlgItem(IDC_SCAN_METHOD), CB_SETCURSEL, static_cast<WPARAM>(m_nScanMethodIndex), 0);
    ::SendMessageA(GetDlgItem(IDC_TAPE_DESCRIPTION), EM_LIMITTEXT, kTapeDescriptionLimit, 0);
    SetItemText(IDC_TAPE_DESCRIPTION, m_strTapeDescription.c_str());
    ::SendMessageA(GetDlgItem(IDC_TAPE_NAME), EM_LIMITTEXT, kTapeNameLimit, 0);
    SetItemText(IDC_TAPE_NAME, m_strTapeName.c_str());
}

bool CPreScanDlg::ControlsToData()
{
    BindControls();
    m_nScanMethodIndex = static_cast<int>(::SendMessageA(GetDlgItem(IDC_SCAN_METHOD), CB_GETCURSEL, 0, 0));
    m_strTapeDescription = GetItemText(IDC_TAPE_DESCRIPTION).substr(0, kTapeDescriptionLimit);
    m_strTapeName = GetItemText(IDC_TAPE_NAME).substr(0, kTapeNameLimit);
    return true;
}

// ---- Initialisation and destruction --------------------------------------

std::string CPreScanDlg::DefaultListPath() const
{
    char path[QV_MAX_PATH];
    qv::FormatBounded(path, sizeof path, "%s\\%s.psf", g_session.szSavePSFDir, m_strDefaultListName.c_str());
    return path;
}

BOOL CPreScanDlg::OnInitDialog()
{
    CDialog::OnInitDialog();
    m_strDefaultListName = qv::LoadResString(IDS_DEFAULT_LIST_NAME);
    g_csScenes.Create();
    DropSceneNotifications();  // none of an earlier dialog's
    q32MoveWindow(m_hWnd, -1, 1);

    HWND methods = GetDlgItem(IDC_SCAN_METHOD);
    for (UINT id : {IDS_SCAN_METHOD_1, IDS_SCAN_METHOD_2, IDS_SCAN_METHOD_3})
        ::SendMessageA(methods, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(qv::LoadResString(id).c_str()));
    m_nScanMethodIndex = g_session.nScanMethodIndex - 1 < 0 ? 0 : g_session.nScanMethodIndex - 1;
    ::SendMessageA(methods, CB_SETCURSEL, static_cast<WPARAM>(m_nScanMethodIndex), 0);

    SetItemText(IDC_TAPE_NAME, m_strTapeName.c_str());
    SetItemText(IDC_TAPE_DESCRIPTION, m_strTapeDescription.c_str());
    m_strCaption = GetWindowText();
    qv::CopyBounded(g_session.szSceneListFile, DefaultListPath().c_str());

    m_btnViewMode.SetBitmap(IDB_VIEW_THUMBNAILS);
    m_btnCapture.SetBitmap(IDB_CAPTURE);
    m_btnPreview.SetBitmap(IDB_PREVIEW_PLAY);
    m_btnGoTo.SetBitmap(IDB_GOTO);
    m_btnMerge.SetBitmap(IDB_MERGE);
    m_btnSplit.SetBitmap(IDB_SPLIT);

    EnableItem(IDC_CAPTURE, m_bCaptureEnabled);
    SetPlayEnabled(m_bPlayEnabled);
    ShowItem(IDC_MERGE_SCENES, TRUE);
    EnableItem(IDC_MERGE_SCENES, m_bMergeEnabled);
    ShowItem(IDC_SPLIT_SCENE, FALSE);
    EnableItem(IDC_SPLIT_SCENE, FALSE);
    for (int id : {IDC_DELETE_SCENES, IDC_MARK_ALL, IDC_CLEAR_ALL, IDC_SAVE_LIST}) EnableItem(id, FALSE);
    EnableItem(IDC_OPEN_LIST, TRUE);

    m_nSceneCount = 0;
    m_listScenes.SetThumbnailView(TRUE);
    // The image lists only set the row height; they never hold an image.
    // The dialog owns them, so the list is told to leave them alone.
    SetWindowLongA(m_listScenes.m_hWnd, GWL_STYLE,
                   GetWindowLongA(m_listScenes.m_hWnd, GWL_STYLE) | LVS_SHAREIMAGELISTS);
    m_imageList = ImageList_Create(80, 60, ILC_COLOR24, 0, 4);
    m_listScenes.SendMessage(LVM_SETIMAGELIST, LVSIL_NORMAL, reinterpret_cast<LPARAM>(m_imageList));
    m_listScenes.SendMessage(LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(m_imageList));
    m_listScenes.InsertSceneColumns();
    m_listScenes.RedrawAllRows();

    m_pScanOptionDlg = new (std::nothrow) CScanOption(m_hWnd);
    m_menuPopup = LoadMenuA(g_hResInst, MAKEINTRESOURCEA(IDR_PRESCAN_POPUP));
    CreateToolTips();

    m_bModified = 0;
    UpdateTitle();
    g_hPreScanWnd = m_hWnd;
    PostMessage(WM_COMMAND, ID_CHECK_DEVICE, 0);
    return TRUE;
}

void CPreScanDlg::CreateToolTips()
{
    m_toolTip = CreateWindowExA(0, TOOLTIPS_CLASSA, nullptr, 0, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT,
                                CW_USEDEFAULT, m_hWnd, nullptr, g_hModule, nullptr);
    if (!m_toolTip) return;
    ::SendMessageA(m_toolTip, TTM_ACTIVATE, TRUE, 0);
    for (HWND child = ::GetWindow(m_hWnd, GW_CHILD); child; child = ::GetWindow(child, GW_HWNDNEXT)) {
        int id = ::GetDlgCtrlID(child);
        char text[256];
        if (id <= 0 || qv::LoadResString(static_cast<UINT>(id), text, sizeof text) <= 0) continue;
        TOOLINFOA tool = {};
        tool.cbSize = TTTOOLINFOA_V1_SIZE;
        tool.uFlags = TTF_IDISHWND;
        tool.hwnd = m_hWnd;
        tool.uId = reinterpret_cast<UINT_PTR>(child);
        tool.lpszText = text;
        ::SendMessageA(m_toolTip, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&tool));
    }
}

BOOL CPreScanDlg::DestroyWindow()
{
    delete m_pScanOptionDlg;
    m_pScanOptionDlg = nullptr;
    m_strTapeDescription.clear();
    m_strTapeName.clear();
    m_nSceneCount = 0;
    m_bOpenFileDialog = 1;
    m_bAllMarked = 0;
    m_bBusy = 0;
    m_nTimerId = 0;  // the timer ends with the window
    m_strCaption.clear();
    m_bLastSceneComplete = 1;
    m_nState = PS_IDLE;
    m_bCaptureEnabled = 0;
    m_bPlayEnabled = 0;
    m_bMergeEnabled = 0;
    g_csScenes.Delete();
    g_hPreScanWnd = nullptr;
    BOOL result = CDialog::DestroyWindow();
    if (m_menuPopup) DestroyMenu(m_menuPopup);
    m_menuPopup = nullptr;
    if (m_imageList) ImageList_Destroy(m_imageList);
    m_imageList = nullptr;
    m_toolTip = nullptr;  // owned by the dialog; gone with it
    m_bControlsBound = false;
    return result;
}

// ---- Keys, mouse and cursor ---------------------------------------------

bool CPreScanDlg::PreTranslateMessage(MSG* pMsg)
{
    // Keys typed into the comment editor stay there: Return, Escape and
    // Delete (and anything with Ctrl) never reach the dialog's own handling.
    CInCommentEdit* editor = m_listScenes.m_pCommentEdit;
    if (editor && pMsg->message == WM_KEYDOWN && pMsg->hwnd == editor->m_hWnd && ::GetFocus() == editor->m_hWnd &&
        (pMsg->wParam == VK_RETURN || pMsg->wParam == VK_ESCAPE || pMsg->wParam == VK_DELETE ||
         GetKeyState(VK_CONTROL) < 0)) {
        TranslateMessage(pMsg);
        if (pMsg->wParam != VK_ESCAPE) DispatchMessageA(pMsg);
        return true;
    }
    if (pMsg->message == WM_KEYDOWN && pMsg->wParam == VK_RETURN) {
        if (m_bPlayEnabled == 1 && m_listScenes.m_bShowThumbnails) {
            ::SendMessageA(GetDlgItem(IDC_PREVIEW), BM_CLICK, 0, 0);
            return true;
        }
    } else if (pMsg->message == WM_KEYDOWN && pMsg->wParam == VK_ESCAPE) {
        // Escape stops what runs; when nothing runs it closes the dialog.
        // It never reaches the dialog's own processing.
        g_bStopScan = 1;
        if (m_nState != PS_IDLE) {
            StopCurrentOperation();
        } else {
            OnClosePreScan();
            g_bStopScan = 0;
        }
        return true;
    } else if (pMsg->message >= WM_MOUSEFIRST && pMsg->message <= WM_MOUSEFIRST + 14) {
        RelayToolTip(*pMsg);
    }
    return CDialog::PreTranslateMessage(pMsg);
}

void CPreScanDlg::RelayToolTip(const MSG& msg)
{
    if (!m_toolTip) return;
    MSG copy = msg;
    POINT pt = msg.pt;
    copy.hwnd = reinterpret_cast<HWND>(::SendMessageA(m_toolTip, TTM_WINDOWFROMPOINT, 0,
                                                      reinterpret_cast<LPARAM>(&pt)));
    if (!copy.hwnd) return;
    ScreenToClient(copy.hwnd, &pt);
    copy.lParam = MAKELPARAM(pt.x, pt.y);
    ::SendMessageA(m_toolTip, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&copy));
}

bool CPreScanDlg::OnSetCursor(HWND, UINT nHitTest, UINT, BOOL& bResult)
{
    if (m_nState == PS_IDLE) {
        SetCursor(LoadCursorA(nullptr, IDC_ARROW));
        bResult = TRUE;
        return true;
    }
    if (nHitTest != HTCLIENT) return false;
    if (m_nState != PS_FILE_PREVIEW) {
        SetCursor(LoadCursorA(nullptr, IDC_WAIT));
        bResult = FALSE;
        return true;
    }
    SetCursor(LoadCursorA(nullptr, IDC_ARROW));
    bResult = TRUE;
    return true;
}

bool CPreScanDlg::OnSysCommand(UINT nCmd, LPARAM)
{
    if ((nCmd & 0xFFF0) != SC_CLOSE) return false;
    StopCurrentOperation();
    OnClosePreScan();
    // Whether the user cancelled (the window stays) or the dialog is gone,
    // nothing more is to be done with the command.
    return true;
}

// ---- Commands -----------------------------------------------------------

bool CPreScanDlg::OnCommand(UINT id, UINT code, HWND hCtl)
{
    // The video library's end of playback ends the file preview.
    if (id == kVideoNotifyId && (code == QV_VIDEO_NOTIFY_STOPPED || code == QV_VIDEO_NOTIFY_ENDED) &&
        m_nState == PS_FILE_PREVIEW)
        StopFilePreview();
    switch (id) {
    case IDC_OPEN_LIST: OpenSceneList(); return true;
    case IDC_SAVE_LIST: SaveSceneListAs(); return true;
    case IDC_CAPTURE: OnCapture(); return true;
    case IDC_PREVIEW: PreviewScene(); return true;
    case IDC_VIEW_MODE: ToggleViewMode(); return true;
    case IDC_TAPE_DESCRIPTION:
        if (code == EN_CHANGE) OnTapeDescriptionChanged();
        return true;
    case IDC_TAPE_NAME:
        if (code == EN_CHANGE) OnTapeNameChanged();
        return true;
    case IDC_SCAN_METHOD:
        if (code == CBN_SELCHANGE) OnScanMethodChanged();
        return true;
    case IDC_START_SCAN: OnStartScan(); return true;
    case IDC_SCAN_OPTIONS:
        if (m_pScanOptionDlg) m_pScanOptionDlg->DoModal();
        return true;
    case IDC_MARK_ALL: OnMarkAll(); return true;
    case IDC_DELETE_SCENES: OnDeleteScenes(); return true;
    case IDC_CLEAR_ALL: OnClearAll(); return true;
    case IDC_MERGE_SCENES: MergeScenes(); return true;
    case IDC_SPLIT_SCENE: SplitScene(); return true;
    case IDC_GOTO: OnGoToMenu(); return true;
    case ID_GOTO_SCENE_START:
    case ID_GOTO_SCENE_END: OnGoToScene(id); return true;
    case IDC_CLOSE_PRESCAN: OnClosePreScan(); return true;
    case IDC_HELP_PRESCAN: OnHelpPreScan(); return true;
    case ID_CHECK_DEVICE: OnCheckDevice(); return true;
    default: return CDialog::OnCommand(id, code, hCtl);
    }
}

void CPreScanDlg::OnOK()
{
    // Enter reaches here only when no preview takes it: a modeless pre-scan
    // dialog does not end on Enter.
}

void CPreScanDlg::OnCancel()
{
    // Escape is handled before the dialog sees it; nothing ends the dialog here.
}

void CPreScanDlg::OnGoToMenu()
{
    HMENU popup = m_menuPopup ? GetSubMenu(m_menuPopup, 0) : nullptr;
    if (!popup) return;
    POINT pt;
    GetCursorPos(&pt);
    TrackPopupMenu(popup, TPM_LEFTALIGN, pt.x, pt.y, 0, m_hWnd, nullptr);
}

void CPreScanDlg::OnHelpPreScan()
{
    WinHelpA(m_hWnd, g_szHelpFile, HELP_CONTEXT, HELP_CONTEXT_PRESCAN);
}

bool CPreScanDlg::OnNotify(NMHDR* pHdr, LRESULT& result)
{
    // The scene list's notifications go back to the list, which draws its
    // cells and runs its comment editor itself.
    return m_listScenes.m_hWnd && m_listScenes.OnParentNotify(pHdr, result);
}

bool CPreScanDlg::OnTimer(UINT_PTR nId)
{
    OnStatusTimer(nId);
    return false;  // every timer message then gets the default processing
}

bool CPreScanDlg::OnDrawItem(UINT id, DRAWITEMSTRUCT* pDis)
{
    CStdButton* buttons[] = {&m_btnPreview, &m_btnCapture, &m_btnViewMode, &m_btnSplit, &m_btnMerge, &m_btnGoTo};
    for (CStdButton* button : buttons) {
        if (button->m_hWnd && static_cast<UINT>(button->GetDlgCtrlID()) == id) {
            button->DrawItem(*pDis);
            return true;
        }
    }
    return false;
}

bool CPreScanDlg::OnMessage(UINT msg, WPARAM wp, LPARAM lp, INT_PTR& result)
{
    switch (msg) {
    case WM_PRESCAN_SCENE:
        result = OnPreScanScene(static_cast<int>(wp), static_cast<int>(lp));
        return true;
    case WM_PRESCAN_NOTIFIED:
        TakeSceneNotifications();
        return true;
    case WM_PRESCAN_CLEAR_INCOMPLETE:
        ClearIncompleteScenes(*this, 0);
        return true;
    case WM_PRESCAN_CAPTURED:
        UpdateCapturedScene(static_cast<int>(wp));
        return true;
    case WM_PRESCAN_SHOW_NEWEST:
        OnShowNewestRow();
        return true;
    default:
        return false;
    }
}
