// Which buttons are enabled (and whether merge or split shows), and the
// title bar, which is the dialog's status line.
#include "dialog/PreScanDlg.h"

#include "ResourceIds.h"
#include "host/HostRequests.h"
#include "platform/ResourceLib.h"
#include "platform/SupportLib.h"
#include "platform/BoundedCopy.h"
#include "scenes/TimeCode.h"
#include "session/Session.h"

#include <map>

namespace {

// The last position and state the title showed: a timer tick that finds
// both unchanged leaves the title alone.
uint32_t g_dwLastTitlePosition;
int g_nLastTitleState;

UINT StateText(int state)
{
    switch (state) {
    case PS_SCANNING: return IDS_STATE_SCANNING;
    case PS_CAPTURING: return IDS_STATE_CAPTURING;
    case PS_TAPE_PREVIEW:
    case PS_FILE_PREVIEW: return IDS_STATE_PREVIEW;
    case PS_SEEKING: return IDS_STATE_SEEKING;
    case PS_SCAN_CAPTURE: return IDS_STATE_SCAN_CAPTURE;
    default: return 0;
    }
}

// The title's words for a state, loaded once from the resource library in
// use: a scan refreshes the title for every scene.
const std::string& StateTitle(UINT stateText)
{
    static HINSTANCE loadedFrom;
    static std::map<UINT, std::string> texts;
    if (loadedFrom != g_hResInst) texts.clear(), loadedFrom = g_hResInst;
    auto found = texts.find(stateText);
    if (found == texts.end())
        found = texts.emplace(stateText, " -- " + qv::LoadResString(stateText) + qv::LoadResString(IDS_STATE_CLOSING)).first;
    return found->second;
}

const int kAllButtons[] = {IDC_VIEW_MODE,  IDC_CAPTURE,       IDC_PREVIEW,   IDC_GOTO,
                           IDC_MERGE_SCENES, IDC_SPLIT_SCENE,  IDC_MARK_ALL,  IDC_DELETE_SCENES,
                           IDC_CLEAR_ALL,  IDC_OPEN_LIST,     IDC_SAVE_LIST, IDC_START_SCAN,
                           IDC_SCAN_OPTIONS, IDC_HELP_PRESCAN, IDC_CLOSE_PRESCAN};

} // namespace

void CPreScanDlg::UpdateTitle()
{
    if (!m_hWnd) return;
    std::string title = m_strCaption;
    UINT stateText = StateText(m_nState);
    uint32_t position = 0;
    if (m_nState == PS_SCANNING || m_nState == PS_TAPE_PREVIEW || m_nState == PS_SEEKING) {
        if (SendHostRequest(HOSTREQ_GET_POSITION, reinterpret_cast<intptr_t>(&position)) == 0) position = 0;
        if (position != 0) {
            if (position == g_dwLastTitlePosition && m_nState == g_nLastTitleState) return;
            char text[qv::TIME_TEXT_SIZE];
            qv::FormatTimeCode(position, g_session.nTvStandard, true, text, sizeof text);
            title += "  --  ";
            title += text;
        }
    }
    if (stateText) {
        title += StateTitle(stateText);
    } else {
        title += " - ";
        title += g_session.szSceneListFile;
        if (m_bModified == 1) title += "*";
    }
    if (!m_hWnd) return;  // the window may have gone during the request
    // Most scenes of a scan leave the title as it was: it is set only when it
    // changes, so the caption is not redrawn for every scene.
    char shown[512] = "";
    ::GetWindowTextA(m_hWnd, shown, sizeof shown);
    if (title != shown) SetWindowText(title.c_str());
    g_nLastTitleState = m_nState;
    g_dwLastTitlePosition = position;
}

void CPreScanDlg::DisableAllControls()
{
    for (int id : kAllButtons) EnableItem(id, FALSE);
}

void CPreScanDlg::RestoreControls()
{
    EnableItem(IDC_VIEW_MODE, TRUE);
    EnableItem(IDC_CAPTURE, m_bCaptureEnabled);
    SetPlayEnabled(m_bPlayEnabled);
    SetMergeEnabled(m_bMergeEnabled);
    for (int id : {IDC_DELETE_SCENES, IDC_MARK_ALL, IDC_CLEAR_ALL}) EnableItem(id, ScenesPresent());
    EnableItem(IDC_OPEN_LIST, TRUE);
    EnableItem(IDC_SAVE_LIST, ScenesPresent());
    for (int id : {IDC_START_SCAN, IDC_SCAN_OPTIONS, IDC_HELP_PRESCAN, IDC_CLOSE_PRESCAN}) EnableItem(id, TRUE);
}

void CPreScanDlg::RestoreControlsAfterScan()
{
    EnableItem(IDC_VIEW_MODE, TRUE);
    EnableItem(IDC_CAPTURE, m_bCaptureEnabled);
    SetPlayEnabled(TRUE);
    for (int id : {IDC_MARK_ALL, IDC_CLEAR_ALL, IDC_DELETE_SCENES, IDC_SAVE_LIST}) EnableItem(id, ScenesPresent());
    for (int id : {IDC_OPEN_LIST, IDC_START_SCAN, IDC_SCAN_OPTIONS, IDC_HELP_PRESCAN, IDC_CLOSE_PRESCAN})
        EnableItem(id, TRUE);
}

void CPreScanDlg::RestoreControlsAfterStop()
{
    EnableItem(IDC_CAPTURE, m_bCaptureEnabled);
    SetPlayEnabled(TRUE);
    for (int id : {IDC_MARK_ALL, IDC_CLEAR_ALL, IDC_DELETE_SCENES, IDC_SAVE_LIST}) EnableItem(id, ScenesPresent());
    for (int id : {IDC_OPEN_LIST, IDC_SCAN_OPTIONS, IDC_HELP_PRESCAN, IDC_CLOSE_PRESCAN}) EnableItem(id, TRUE);
    EnableDeviceControls(m_bDeviceReady);
    m_bModified = ScenesPresent() ? 1 : 0;
}

void CPreScanDlg::EnableDeviceControls(int bReady)
{
    EnableItem(IDC_START_SCAN, bReady);
    EnableItem(IDC_CAPTURE, bReady && m_bCaptureEnabled);
    EnableItem(IDC_GOTO, bReady && m_bPlayEnabled);
}

void CPreScanDlg::SetCaptureEnabled(int b)
{
    m_bCaptureEnabled = ScenesPresent() ? b : 0;
    EnableItem(IDC_CAPTURE, m_bCaptureEnabled);
    int marked = m_listScenes.m_nMarkedCount;
    if (m_bCaptureEnabled == 1 && marked == m_nSceneCount) {
        m_bAllMarked = 1;
        SetItemText(IDC_MARK_ALL, qv::LoadResString(IDS_UNMARK_ALL).c_str());
    } else if (m_bCaptureEnabled == 0 && marked == 0) {
        m_bAllMarked = 0;
        SetItemText(IDC_MARK_ALL, qv::LoadResString(IDS_MARK_ALL).c_str());
    }
}

void CPreScanDlg::SetPlayEnabled(int b)
{
    m_bPlayEnabled = ScenesPresent() ? b : 0;
    if (m_listScenes.m_bShowThumbnails)
        UpdatePreviewButton(m_bPlayEnabled);
    else
        EnableItem(IDC_PREVIEW, FALSE);
    EnableItem(IDC_GOTO, m_bPlayEnabled);
}

void CPreScanDlg::UpdatePreviewButton(int b)
{
    int first = -1, last = -1;
    if (m_listScenes.m_hWnd) m_listScenes.GetSelRange(first, last);
    bool enable = b == 1 && first >= 0 && last >= 0 && first == last && m_listScenes.m_bShowThumbnails;
    if (enable && !m_bDeviceReady) {
        // Without the deck only a captured file on disk can be previewed.
        SceneRecord* scene = FetchScene(first);
        enable = scene && scene->szCaptureFile[0] && qfIsFileExistA(scene->szCaptureFile);
    }
    EnableItem(IDC_PREVIEW, enable);
}

void CPreScanDlg::SetMergeEnabled(int b)
{
    if (!ScenesPresent()) {
        m_bMergeEnabled = 0;
        EnableItem(IDC_MERGE_SCENES, FALSE);
        EnableItem(IDC_SPLIT_SCENE, FALSE);
        return;
    }
    m_bMergeEnabled = b;
    int first, last;
    m_listScenes.GetSelRange(first, last);
    if (first < 0 || last < 0 || first >= m_nSceneCount || last >= m_nSceneCount) return;
    bool merged = false;
    if (!b) {
        SceneRecord* scene = FetchScene(first);
        merged = scene && scene->bMerged == 1;
    }
    ShowItem(IDC_MERGE_SCENES, !merged);
    EnableItem(IDC_MERGE_SCENES, b ? TRUE : FALSE);
    ShowItem(IDC_SPLIT_SCENE, merged);
    EnableItem(IDC_SPLIT_SCENE, merged);
}

void CPreScanDlg::ResetEmptyList()
{
    if (m_nSceneCount >= 1) return;
    for (int id : {IDC_MARK_ALL, IDC_CLEAR_ALL, IDC_DELETE_SCENES, IDC_SAVE_LIST}) EnableItem(id, FALSE);
    SetCaptureEnabled(0);
    SetPlayEnabled(0);
    m_bMergeEnabled = 0;
    EnableItem(IDC_MERGE_SCENES, FALSE);
    EnableItem(IDC_SPLIT_SCENE, FALSE);
    m_strTapeName.clear();
    m_strTapeDescription.clear();
    SetItemText(IDC_TAPE_NAME, "");
    SetItemText(IDC_TAPE_DESCRIPTION, "");
    qv::CopyBounded(g_session.szSceneListFile, DefaultListPath().c_str());
    m_bModified = 0;
    UpdateTitle();
}
