#include "options/ScanOption.h"

#include "ResourceIds.h"
#include "host/HostRequests.h"
#include "platform/BoundedCopy.h"
#include "platform/FolderBrowser.h"
#include "platform/ResourceLib.h"
#include "platform/SupportLib.h"
#include "session/FolderRules.h"
#include "session/NameRules.h"
#include "session/Session.h"
#include "session/Settings.h"

#include <commctrl.h>

#include <algorithm>
#include <vector>

CScanOption::CScanOption(HWND hParent) : CDialog(IDD_SCAN_OPTIONS, hParent) {}

void CScanOption::DataToControls()
{
    CheckDlgButton(m_hWnd, IDC_WANT_INDEX_FILE, m_bWantIndexFile ? BST_CHECKED : BST_UNCHECKED);
    CheckDlgButton(m_hWnd, IDC_SAVE_TO_LIBRARY, m_bSaveToLibrary ? BST_CHECKED : BST_UNCHECKED);
    ::SendMessageA(GetDlgItem(IDC_LIBRARY_FOLDER), EM_LIMITTEXT, kMaxLibraryEdit, 0);
    SetItemText(IDC_LIBRARY_FOLDER, m_strLibraryFolder.c_str());
    CheckDlgButton(m_hWnd, IDC_QUICK_SCAN, m_bQuickScan ? BST_CHECKED : BST_UNCHECKED);
}

bool CScanOption::ControlsToData()
{
    m_bWantIndexFile = IsDlgButtonChecked(m_hWnd, IDC_WANT_INDEX_FILE) == BST_CHECKED;
    m_bSaveToLibrary = IsDlgButtonChecked(m_hWnd, IDC_SAVE_TO_LIBRARY) == BST_CHECKED;
    m_strLibraryFolder = GetItemText(IDC_LIBRARY_FOLDER);
    m_bQuickScan = IsDlgButtonChecked(m_hWnd, IDC_QUICK_SCAN) == BST_CHECKED;
    return true;
}

BOOL CScanOption::OnInitDialog()
{
    m_bWantIndexFile = g_session.nWantIndexFile;
    m_bSaveToLibrary = g_session.nSaveToLibrary;
    m_strCaptureFolder = g_session.szCaptureFolder;
    m_strCaptureName = g_session.szCaptureName;
    m_nQuickScanSpeed = g_session.nQuickScanSpeed;
    m_bQuickScan = g_session.nQuickScanSpeed > 0 ? 1 : 0;
    m_strLibraryFolder = g_session.szProductionLibFolder;
    CDialog::OnInitDialog();
    q32MoveWindow(m_hWnd, -1, 1);

    if (m_strCaptureFolder.empty()) {
        char folder[QV_MAX_PATH];
        GetDefaultCaptureFolder(folder);
        m_strCaptureFolder = folder;
    }
    SetItemText(IDC_CAPTURE_FOLDER, m_strCaptureFolder.c_str());
    if (m_strCaptureName.empty()) m_strCaptureName = qv::LoadResString(IDS_DEFAULT_CAPTURE_NAME) + g_session.szCaptureExt;
    SetItemText(IDC_CAPTURE_NAME, m_strCaptureName.c_str());
    if (m_strLibraryFolder.empty()) m_strLibraryFolder = qv::LoadResString(IDS_DEFAULT_LIBRARY_FOLDER);
    SetItemText(IDC_LIBRARY_FOLDER, m_strLibraryFolder.c_str());

    if (g_session.nScanMethodIndex == 3) {
        // Scanning while capturing: no quick scan and no index file.
        for (int id : {IDC_WANT_INDEX_FILE, IDC_QUICK_SCAN, IDC_QUICK_SCAN_SPEED}) EnableItem(id, FALSE);
    } else {
        EnableItem(IDC_QUICK_SCAN, TRUE);
        EnableItem(IDC_WANT_INDEX_FILE, !m_bQuickScan);
        EnableItem(IDC_QUICK_SCAN_SPEED, m_bQuickScan);
    }
    HWND speed = GetDlgItem(IDC_QUICK_SCAN_SPEED);
    ::SendMessageA(speed, TBM_SETRANGE, TRUE, MAKELPARAM(1, 4));
    ::SendMessageA(speed, TBM_SETTICFREQ, 1, 0);
    ::SendMessageA(speed, TBM_SETPOS, TRUE, m_nQuickScanSpeed < 1 ? 1 : m_nQuickScanSpeed);
    return TRUE;
}

int CScanOption::TrackbarPosition() const
{
    int pos = static_cast<int>(::SendMessageA(GetDlgItem(IDC_QUICK_SCAN_SPEED), TBM_GETPOS, 0, 0));
    return pos < 1 ? 1 : pos;
}

bool CScanOption::OnCommand(UINT id, UINT code, HWND hCtl)
{
    // Only a click acts: a check box that reports its focus changes must not
    // flip its setting when the user tabs through it.
    if (code != BN_CLICKED) return CDialog::OnCommand(id, code, hCtl);
    switch (id) {
    case IDC_BROWSE_CAPTURE_FOLDER: OnBrowseCaptureFolder(); return true;
    case IDC_SAVE_TO_LIBRARY: m_bSaveToLibrary = !m_bSaveToLibrary; return true;
    case IDC_CHOOSE_LIBRARY: OnChooseLibrary(); return true;
    case IDC_WANT_INDEX_FILE: m_bWantIndexFile = !m_bWantIndexFile; return true;
    case IDC_QUICK_SCAN: OnToggleQuickScan(); return true;
    case IDC_HELP_OPTIONS: OnHelp(); return true;
    default: return CDialog::OnCommand(id, code, hCtl);
    }
}

void CScanOption::OnToggleQuickScan()
{
    m_bQuickScan = !m_bQuickScan;
    EnableItem(IDC_WANT_INDEX_FILE, !m_bQuickScan);  // the box keeps its tick
    EnableItem(IDC_QUICK_SCAN_SPEED, m_bQuickScan);
    m_nQuickScanSpeed = m_bQuickScan ? TrackbarPosition() : 0;
}

void CScanOption::OnBrowseCaptureFolder()
{
    char folder[272] = "";
    qv::CopyBounded(folder, GetItemText(IDC_CAPTURE_FOLDER).c_str());
    std::string chosen;
    int result = qBrowseForFolder(m_hWnd, folder, chosen);
    if (result >= 1) {
        std::vector<char> lower(chosen.begin(), chosen.end());
        lower.push_back(0);
        CharLowerA(lower.data());
        SetItemText(IDC_CAPTURE_FOLDER, lower.data());
    } else if (result < 0) {
        // The browser's own account of the failure, else the general one.
        QErrorRecord error;
        qGetLastErrorRecord(error);
        char text[sizeof error.szText] = "";
        qv::CopyField(text, sizeof text, error.szText, sizeof error.szText);
        if (!text[0] && error.hTextModule && error.nTextId)
            LoadStringA(error.hTextModule, error.nTextId, text, sizeof text);
        if (!text[0]) qv::LoadResString(IDS_BROWSE_FAILED, text, sizeof text);
        MessageBoxA(m_hWnd, text, g_szMsgTitle, MB_OK);
    }
}

void CScanOption::OnChooseLibrary()
{
    LibraryRequest req = {};
    req.bSaveToLibrary = m_bSaveToLibrary;
    // The request's field holds 171 characters: a longer folder is cut for
    // the request only; the dialog keeps its full text.
    qv::CopyBounded(req.szLibraryFolder, m_strLibraryFolder.c_str());
    if (!SendHostRequest(HOSTREQ_CHOOSE_LIBRARY, reinterpret_cast<intptr_t>(&req))) return;
    if (req.bSaveToLibrary) {
        m_bSaveToLibrary = 1;
        CheckDlgButton(m_hWnd, IDC_SAVE_TO_LIBRARY, BST_CHECKED);
    }
    char folder[sizeof req.szLibraryFolder + 1];
    qv::CopyField(folder, sizeof folder, req.szLibraryFolder, sizeof req.szLibraryFolder);
    SetItemText(IDC_LIBRARY_FOLDER, folder);
}

void CScanOption::OnHelp()
{
    WinHelpA(m_hWnd, g_szHelpFile, HELP_CONTEXT, HELP_CONTEXT_OPTIONS);
}

bool CScanOption::RefuseTooLong(const std::string& text, size_t limit, UINT message, int control)
{
    if (text.size() <= limit) return false;
    // Refused, never cut: the user sees the limit and the dialog stays open.
    MessageBoxA(m_hWnd, qv::FormatResString(message, static_cast<int>(limit)).c_str(), g_szMsgTitle,
                MB_OK | MB_ICONEXCLAMATION);
    ::SetFocus(GetDlgItem(control));
    return true;
}

void CScanOption::OnOK()
{
    m_strCaptureName = GetItemText(IDC_CAPTURE_NAME);
    m_strCaptureFolder = GetItemText(IDC_CAPTURE_FOLDER);
    m_strLibraryFolder = GetItemText(IDC_LIBRARY_FOLDER);

    std::vector<char> name(m_strCaptureName.begin(), m_strCaptureName.end());
    name.push_back(0);
    int kind = GetFileNameKind(name.data());
    std::string finalName = name.data();
    if (kind == qv::FILE_NAME_EMPTY) finalName = qv::LoadResString(IDS_DEFAULT_CAPTURE_NAME) + g_session.szCaptureExt;
    else if (kind == qv::FILE_NAME_NO_EXTENSION) finalName += g_session.szCaptureExt;
    if (RefuseTooLong(finalName, kMaxName, IDS_CAPTURE_NAME_TOO_LONG, IDC_CAPTURE_NAME)) return;
    SetItemText(IDC_CAPTURE_NAME, finalName.c_str());

    std::vector<char> folder(m_strCaptureFolder.begin(), m_strCaptureFolder.end());
    folder.resize(std::max<size_t>(folder.size() + 1, QV_MAX_PATH), 0);
    if (RefuseTooLong(m_strCaptureFolder, kMaxFolder, IDS_CAPTURE_FOLDER_TOO_LONG, IDC_CAPTURE_FOLDER)) return;
    if (RefuseTooLong(m_strLibraryFolder, kMaxFolder, IDS_LIBRARY_FOLDER_TOO_LONG, IDC_LIBRARY_FOLDER)) return;
    if (EnsureFolderExists(folder.data()) != FOLDER_READY) return;
    SetItemText(IDC_CAPTURE_FOLDER, folder.data());

    g_session.nWantIndexFile = m_bWantIndexFile;
    WriteSettingInt(kKeyWantIndexFile, g_session.nWantIndexFile);
    g_session.nSaveToLibrary = m_bSaveToLibrary;
    WriteSettingInt(kKeySaveToLibrary, g_session.nSaveToLibrary);
    m_nQuickScanSpeed = m_bQuickScan ? TrackbarPosition() : 0;
    g_session.nQuickScanSpeed = m_nQuickScanSpeed;
    WriteSettingInt(kKeyQuickScanSpeed, g_session.nQuickScanSpeed);
    qv::JoinFolderAndName(g_session.szCaptureFileName, sizeof g_session.szCaptureFileName, folder.data(),
                          finalName.c_str(), IsLeadByte);
    WriteSettingString(kKeyCaptureFileName, g_session.szCaptureFileName);
    qv::CopyBounded(g_session.szCaptureFolder, folder.data());
    qv::CopyBounded(g_session.szCaptureName, finalName.c_str());
    qv::CopyBounded(g_session.szProductionLibFolder, m_strLibraryFolder.c_str());
    WriteSettingString(kKeyProductionLibFolder, g_session.szProductionLibFolder);
    CDialog::OnOK();
}
