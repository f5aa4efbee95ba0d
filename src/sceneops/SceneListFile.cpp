// Saving the scene list to a .psf file and opening one.  A save never
// destroys the previous file: the list is written to a new file beside it,
// which replaces the old one only when every block was written.
#include "dialog/PreScanDlg.h"

#include "ResourceIds.h"
#include "platform/BoundedCopy.h"
#include "platform/File.h"
#include "platform/MemoryBlock.h"
#include "platform/ResourceLib.h"
#include "sceneops/SceneListCodec.h"
#include "sceneops/SceneListFile.h"
#include "session/NameRules.h"
#include "session/FolderRules.h"
#include "session/Session.h"
#include "session/Settings.h"

#include <cstring>

namespace {

// The scene table as the file writer reads it.
class StoreSource : public qv::SceneListSource {
public:
    explicit StoreSource(int count) : m_count(count) {}
    int Count() const override { return m_count; }
    SceneRecord* Record(int i) override { return FetchScene(i); }
    const ThumbHeader* Header(int i) const override { return g_arThumbHeaders.GetAtOrNull(i); }
    const uint8_t* Bits(int i) const override { return g_arThumbBits.GetAtOrNull(i); }

private:
    int m_count;
};

// Fills the scene table and the list from the file being read.
class StoreSink : public qv::SceneListSink {
public:
    explicit StoreSink(CPreScanDlg& dlg) : m_dlg(dlg) {}
    void OnHeader(const qv::SceneListInfo& info) override
    {
        // Also scenes whose end never came go: the file replaces the whole table.
        if (m_dlg.m_nSceneCount != 0 || SceneTableSize() != 0) FreeSceneStore();
        m_dlg.m_nSceneCount = 0;
        m_dlg.m_listScenes.DeleteAllRows();
        m_dlg.m_strTapeName = info.tapeName.substr(0, 100);
        m_dlg.m_strTapeDescription = info.tapeDescription.substr(0, 520);
        qv::CopyBounded(g_session.szCaptureFolder, info.captureFolder.c_str());
        qv::CopyBounded(g_session.szProductionLibFolder, info.productionLibFolder.c_str());
        std::string name = m_dlg.m_strTapeName, description = m_dlg.m_strTapeDescription;
        m_dlg.SetItemText(IDC_TAPE_NAME, name.c_str());
        m_dlg.SetItemText(IDC_TAPE_DESCRIPTION, description.c_str());
        g_arScenes.Reserve(info.nDeclaredScenes);
        g_bHaveThumbnails = 1;
        version = info.nVersion;
    }
    bool OnEntry(int nIndex, SceneRecord* pRecord, ThumbHeader* pHeader, uint8_t* pBits) override
    {
        {
            qv::SceneLockGuard lock(g_csScenes);
            g_arScenes.Add(pRecord);
            g_arThumbHeaders.Add(pHeader);
            g_arThumbBits.Add(pBits);
        }
        // The scene count follows the records actually stored, so a file
        // that ends early leaves a consistent list.
        m_dlg.m_nSceneCount = nIndex + 1;
        return true;
    }
    int version = 0;

private:
    CPreScanDlg& m_dlg;
};

} // namespace

void CPreScanDlg::SaveSceneListAs()
{
    m_bOpenFileDialog = 0;
    DisableAllControls();
    if (m_nSceneCount > qv::kMaxScenesInList) {
        // The file's scene count is a 16-bit number: such a list cannot be stored.
        qv::MessageBoxText(qv::FormatResString(IDS_TOO_MANY_SCENES, qv::kMaxScenesInList).c_str(),
                           MB_OK | MB_ICONEXCLAMATION);
    } else if (RunSceneListDialog(g_session.szSceneListFile)) {
        SetCursor(LoadCursorA(nullptr, IDC_WAIT));
        WriteSceneListFile();
    }
    RestoreControls();
    EnableDeviceControls(m_bDeviceReady);
    SetCursor(LoadCursorA(nullptr, IDC_ARROW));
}

int CPreScanDlg::WriteSceneListFile()
{
    const char* target = g_session.szSceneListFile;
    if (m_nSceneCount > qv::kMaxScenesInList) return 0;
    // A new file beside the old one, on the same volume.
    char folder[QV_MAX_PATH] = "";
    char temp[MAX_PATH] = "";
    CopyFolderOfPath(folder, target);
    if (!folder[0] || !GetTempFileNameA(folder, "psf", 0, temp)) {
        if (!qv::FormatBounded(temp, sizeof temp, "%s~", target)) return 0;
    }
    bool written = false;
    {
        qv::File file;
        if (!file.Create(temp)) {
            qv::File::Delete(temp);
            return 0;
        }
        StoreSource source(m_nSceneCount);
        qv::SceneListTexts texts;
        texts.tapeName = m_strTapeName.c_str();
        texts.tapeDescription = m_strTapeDescription.c_str();
        texts.captureFolder = g_session.szCaptureFolder;
        texts.productionLibFolder = g_session.szProductionLibFolder;
        written = qv::WriteSceneList(file, texts, source);
    }
    if (!written || !qv::File::Replace(temp, target)) {
        // The old file stays as it was and the list stays modified.
        qv::File::Delete(temp);
        qv::MessageBoxText(qv::FormatResString(IDS_SAVE_FAILED, target).c_str(), MB_OK | MB_ICONEXCLAMATION);
        return 0;
    }
    m_bModified = 0;
    UpdateTitle();
    return 1;
}

void CPreScanDlg::OpenSceneList()
{
    if (PromptSaveChanges(TRUE) == IDCANCEL) return;
    m_bOpenFileDialog = 1;
    DisableAllControls();
    if (RunSceneListDialog(nullptr)) {
        SetCursor(LoadCursorA(nullptr, IDC_WAIT));
        OpenChosenSceneList();
    }
    RestoreControls();
    SetCursor(LoadCursorA(nullptr, IDC_ARROW));
    EnableDeviceControls(m_bDeviceReady);
}

void CPreScanDlg::OpenChosenSceneList()
{
    if (!HasListExtension(g_session.szSceneListFile)) return;
    FinishOpen(ReadSceneListFile());
}

// True when the file replaced the list, wholly or in part.
bool CPreScanDlg::ReadSceneListFile()
{
    qv::File file;
    if (!file.OpenRead(g_session.szSceneListFile)) return false;
    StoreSink sink(*this);
    qv::ReadResult result = qv::ReadSceneList(file, g_session.nTvStandard, sink);
    file.Close();
    if (result.status == qv::ReadStatus::NoHeader) return false;
    // The rows come all at once, drawn from the scenes read.
    m_listScenes.SetRowCount(m_nSceneCount);
    m_listScenes.RedrawAllRows();
    m_listScenes.SelectRange(0, FALSE, 0);
    if (result.status != qv::ReadStatus::Complete) return true;  // the settings stay, the file is not rewritten

    if (qv::EndsWithBackslash(g_session.szCaptureFolder, IsLeadByte))
        qv::FormatBounded(g_session.szCaptureFileName, sizeof g_session.szCaptureFileName, "%s%s",
                          g_session.szCaptureFolder, g_session.szCaptureName);
    else
        qv::FormatBounded(g_session.szCaptureFileName, sizeof g_session.szCaptureFileName, "%s\\%s",
                          g_session.szCaptureFolder, g_session.szCaptureName);
    WriteSettingString(kKeyCaptureFileName, g_session.szCaptureFileName);
    WriteSettingString(kKeyProductionLibFolder, g_session.szProductionLibFolder);
    // Files of the oldest versions become current ones at once.
    if (sink.version <= 1) WriteSceneListFile();
    return true;
}

// The marked count, the Capture and Mark-all buttons follow the marks the
// table holds: none after a file was read (marks are not kept), the user's
// own when the file could not replace the list.  Only a list that came from
// the file counts as unmodified.
void CPreScanDlg::FinishOpen(bool bReplaced)
{
    if (m_nSceneCount > 0) m_listScenes.SelectRange(0, FALSE, 0);
    int marked = 0;
    for (int i = 0; i < m_nSceneCount; ++i)
        if (SceneRecord* scene = FetchScene(i)) marked += scene->bMarked == 1;
    m_listScenes.m_nMarkedCount = marked;
    m_bAllMarked = marked > 0 && marked == m_nSceneCount;
    m_bCaptureEnabled = marked > 0;
    SetItemText(IDC_MARK_ALL, qv::LoadResString(m_bAllMarked ? IDS_UNMARK_ALL : IDS_MARK_ALL).c_str());
    if (bReplaced) m_bModified = 0;
    UpdateTitle();
}
