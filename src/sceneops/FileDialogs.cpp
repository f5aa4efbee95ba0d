// The scene list file dialogs: the platform's open and save dialogs with an
// extra area for the tape's name and description.  When opening, the area
// previews the tape of the file selected in the list; when saving, it shows
// (and lets the user edit) what will be written.
#include "dialog/PreScanDlg.h"

#include "ResourceIds.h"
#include "platform/BoundedCopy.h"
#include "platform/File.h"
#include "platform/ResourceLib.h"
#include "platform/SupportLib.h"
#include "sceneops/SceneListCodec.h"
#include "sceneops/SceneListFile.h"
#include "session/NameRules.h"
#include "session/Session.h"
#include "session/Settings.h"

#include <commdlg.h>

#include <cstring>

static_assert(sizeof(OPENFILENAMEA) == 152, "the dialog record of the platform's 64-bit form");

namespace {

const char kListExtension[] = "psf";
const char kAllListFiles[] = "*.psf";

// The file name part of a path: after its last backslash.
const char* FileNamePart(const char* path)
{
    const char* slash = std::strrchr(path, '\\');
    return slash ? slash + 1 : path;
}

void SetExtraFields(HWND hook, const char* name, const char* description)
{
    SetDlgItemTextA(hook, IDC_PSF_TAPE_NAME, name);
    SetDlgItemTextA(hook, IDC_PSF_TAPE_DESCRIPTION, description);
}

// Shows the tape name and description of the file selected in open mode.
void PreviewSelectedFile(HWND hook)
{
    HWND fileDialog = GetParent(hook);
    // The name box as it reads (the selected file's name); a name without a
    // folder is taken in the folder the dialog shows.
    char name[QV_MAX_PATH] = "";
    if (!GetDlgItemTextA(fileDialog, 1152, name, sizeof name)) GetDlgItemTextA(fileDialog, 1148, name, sizeof name);
    char path[QV_MAX_PATH] = "";
    bool absolute = std::strchr(name, ':') || name[0] == '\\';
    char folder[QV_MAX_PATH] = "";
    if (!absolute && SendMessageA(fileDialog, CDM_GETFOLDERPATH, sizeof folder, reinterpret_cast<LPARAM>(folder)) > 0)
        qv::JoinFolderAndName(path, sizeof path, folder, name);
    else
        qv::CopyBounded(path, name);
    path[sizeof path - 1] = 0;
    if (std::strcmp(FileNamePart(path), kAllListFiles) == 0 || !path[0]) return;

    qv::File file;
    if (!file.OpenRead(path)) {
        SetExtraFields(hook, "", "");
        return;
    }
    const char* ext = HasListExtension(path) ? nullptr : std::strrchr(FileNamePart(path), '.');
    if (ext) {  // another extension: not a scene list
        SetExtraFields(hook, "", "");
        return;
    }
    qv::SceneListInfo info;
    if (qv::ReadSceneListHeader(file, info))
        SetExtraFields(hook, info.tapeName.c_str(), info.tapeDescription.c_str());
    // A shorter file, or one whose header is not a scene list's, leaves the
    // fields as they were.
}

UINT_PTR CALLBACK SceneListDialogHookProc(HWND hook, UINT msg, WPARAM wp, LPARAM lp)
{
    return SceneListDialogHook(hook, msg, wp, lp);
}

} // namespace

bool HasListExtension(const char* path)
{
    const char* name = FileNamePart(path ? path : "");
    const char* dot = std::strrchr(name, '.');
    return dot && std::strcmp(dot + 1, kListExtension) == 0;
}

void CompleteListExtension(char* path, size_t cb)
{
    char* name = const_cast<char*>(FileNamePart(path));
    char* dot = std::strrchr(name, '.');
    if (dot && std::strcmp(dot + 1, kListExtension) == 0) return;
    if (dot) *dot = 0;  // another extension gives way to .psf
    size_t room = cb - 1;
    if (std::strlen(path) + 4 > room) path[room - 4] = 0;  // the extension always fits
    qv::AppendBounded(path, cb, ".psf");
}

void CopyFolderOfPath(char* folder, const char* path)
{
    const char* slash = std::strrchr(path, '\\');
    if (!slash) return;
    size_t n = static_cast<size_t>(slash - path);
    if (n >= QV_MAX_PATH) n = QV_MAX_PATH - 1;
    std::memcpy(folder, path, n);
    folder[n] = 0;
}

UINT_PTR SceneListDialogHook(HWND hook, UINT msg, WPARAM wp, LPARAM lp)
{
    CPreScanDlg* dlg = g_session.pDialog;
    if (!dlg) return 0;
    switch (msg) {
    case WM_INITDIALOG:
        // The extra area is a child of the file dialog: the dialog itself is placed.
        q32MoveWindow(GetParent(hook), -1, 1);
        if (dlg->m_bOpenFileDialog) {
            SendDlgItemMessageA(hook, IDC_PSF_TAPE_NAME, EM_SETREADONLY, TRUE, 0);
            SendDlgItemMessageA(hook, IDC_PSF_TAPE_DESCRIPTION, EM_SETREADONLY, TRUE, 0);
        } else {
            SetExtraFields(hook, dlg->m_strTapeName.c_str(), dlg->m_strTapeDescription.c_str());
        }
        return 0;
    case WM_NOTIFY: {
        auto* hdr = reinterpret_cast<NMHDR*>(lp);
        if (hdr->code == CDN_SELCHANGE && dlg->m_bOpenFileDialog) {
            PreviewSelectedFile(hook);
        } else if (hdr->code == CDN_FILEOK) {
            char name[QV_MAX_PATH] = "";
            char description[520] = "";
            GetDlgItemTextA(hook, IDC_PSF_TAPE_NAME, name, sizeof name);
            GetDlgItemTextA(hook, IDC_PSF_TAPE_DESCRIPTION, description, sizeof description);
            dlg->ApplyTapeName(name);
            dlg->ApplyTapeDescription(description);
            SetWindowLongPtrA(hook, DWLP_MSGRESULT, 0);  // the file is accepted
        }
        return 0;
    }
    case WM_COMMAND:
        if (LOWORD(wp) == IDC_PSF_HELP) WinHelpA(hook, g_szHelpFile, HELP_CONTEXT, HELP_CONTEXT_LIST_FILE);
        return 1;
    default:
        return 0;
    }
}

void CPreScanDlg::ApplyTapeName(const char* pszText)
{
    if (!pszText || !pszText[0]) return;
    m_strTapeName.assign(pszText, qv::BoundedLength(pszText, 100));
    SetItemText(IDC_TAPE_NAME, m_strTapeName.c_str());
}

void CPreScanDlg::ApplyTapeDescription(const char* pszText)
{
    if (!pszText || !pszText[0]) return;
    m_strTapeDescription.assign(pszText, qv::BoundedLength(pszText, 520));
    SetItemText(IDC_TAPE_DESCRIPTION, m_strTapeDescription.c_str());
}

int CPreScanDlg::RunSceneListDialog(char* pszProposed)
{
    const bool open = m_bOpenFileDialog != 0;
    char filter[QV_MAX_PATH] = "";
    qv::LoadResString(IDS_LIST_FILE_FILTER, filter, QV_MAX_PATH - 2);
    size_t len = std::strlen(filter);
    for (size_t i = 0; i < len; ++i)
        if (filter[i] == '|') filter[i] = 0;
    filter[len] = 0;
    filter[len + 1] = 0;

    char file[QV_MAX_PATH] = "*.psf";
    char initialDir[QV_MAX_PATH];
    qv::CopyBounded(initialDir, g_session.szSavePSFDir);
    std::string title = qv::LoadResString(open ? IDS_OPEN_LIST_TITLE : IDS_SAVE_LIST_TITLE);

    OPENFILENAMEA ofn;
    std::memset(&ofn, 0, sizeof ofn);
    ofn.lStructSize = sizeof ofn;
    ofn.hwndOwner = m_hWnd;
    ofn.hInstance = g_hResInst;
    ofn.lpstrFilter = filter;
    ofn.nFilterIndex = 1;
    ofn.lpstrFile = (!open && pszProposed && pszProposed[0]) ? pszProposed : file;
    ofn.nMaxFile = QV_MAX_PATH;
    ofn.lpstrInitialDir = initialDir;
    ofn.lpstrTitle = title.c_str();
    ofn.Flags = open ? OFN_EXPLORER | OFN_PATHMUSTEXIST | OFN_ENABLETEMPLATE | OFN_ENABLEHOOK | OFN_HIDEREADONLY
                     : OFN_EXPLORER | OFN_ENABLETEMPLATE | OFN_ENABLEHOOK | OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT;
    ofn.lpstrDefExt = kListExtension;
    ofn.lpfnHook = &SceneListDialogHookProc;
    ofn.lpTemplateName = IDD_FILEOPENSAVE;

    // The scene feed of another thread waits while the user chooses.
    qv::SceneLockGuard lock(g_csScenes);
    BOOL chosen = open ? GetOpenFileNameA(&ofn) : GetSaveFileNameA(&ofn);
    if (!chosen) {
        CommDlgExtendedError();  // a failing dialog counts as a cancel
        return 0;
    }
    if (open) {
        qv::CopyBounded(g_session.szSceneListFile, ofn.lpstrFile);
    } else {
        char chosenPath[QV_MAX_PATH];
        qv::CopyBounded(chosenPath, ofn.lpstrFile);
        CompleteListExtension(chosenPath, sizeof chosenPath);
        qv::CopyBounded(g_session.szSceneListFile, chosenPath);
    }
    CopyFolderOfPath(g_session.szSavePSFDir, g_session.szSceneListFile);
    WriteSettingString(kKeySavePSFDir, g_session.szSavePSFDir);
    return 1;
}
