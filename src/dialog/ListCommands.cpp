// The tape's name and description, the scan method, and the commands that
// change the list as a whole.
#include "dialog/PreScanDlg.h"

#include "ResourceIds.h"
#include "platform/MemoryBlock.h"
#include "platform/ResourceLib.h"
#include "session/Session.h"
#include "session/Settings.h"

void CPreScanDlg::OnTapeDescriptionChanged()
{
    m_strTapeDescription = GetItemText(IDC_TAPE_DESCRIPTION);
    if (m_nSceneCount >= 1 && !m_bModified) {
        m_bModified = 1;
        UpdateTitle();
    }
}

void CPreScanDlg::OnTapeNameChanged()
{
    m_strTapeName = GetItemText(IDC_TAPE_NAME);
    // The default list name is a placeholder, not a tape name.
    if (m_strTapeName == m_strDefaultListName) m_strTapeName.clear();
    if (m_nSceneCount >= 1 && !m_bModified) {
        m_bModified = 1;
        UpdateTitle();
    }
}

void CPreScanDlg::OnScanMethodChanged()
{
    m_nScanMethodIndex = static_cast<int>(::SendMessageA(GetDlgItem(IDC_SCAN_METHOD), CB_GETCURSEL, 0, 0));
    if (m_nScanMethodIndex >= 0 && m_nScanMethodIndex <= 2) g_session.nScanMethodIndex = m_nScanMethodIndex + 1;
    WriteSettingInt(kKeyScanMethodIndex, g_session.nScanMethodIndex);
}

void CPreScanDlg::OnMarkAll()
{
    if (m_nSceneCount == 0) return;
    m_bAllMarked = m_bAllMarked ? 0 : 1;
    UINT text = m_bAllMarked ? IDS_UNMARK_ALL : IDS_MARK_ALL;
    {
        qv::SceneLockGuard lock(g_csScenes);
        for (int i = 0; i < m_nSceneCount; ++i)
            if (SceneRecord* r = g_arScenes.GetAtOrNull(i)) r->bMarked = m_bAllMarked;
        // The scenes kept for splitting follow, so a split shows the same marks.
        for (int g = 0; g < g_arMergeGroups.GetSize(); ++g) {
            MergeGroup* group = g_arMergeGroups.GetAt(g);
            for (int k = 0; group && k < group->arRecords.GetSize(); ++k) {
                SceneRecord* r = group->arRecords.GetAt(k);
                if (!r) break;
                r->bMarked = m_bAllMarked;
            }
        }
    }
    m_bCaptureEnabled = m_bAllMarked;
    EnableItem(IDC_CAPTURE, m_bCaptureEnabled);
    m_listScenes.m_nMarkedCount = m_bAllMarked ? m_nSceneCount.load() : 0;
    m_listScenes.RedrawAllRows();
    SetItemText(IDC_MARK_ALL, qv::LoadResString(text).c_str());
}

void CPreScanDlg::OnDeleteScenes()
{
    if (m_nSceneCount < 1 || m_nState != PS_IDLE) return;
    int first, last;
    m_listScenes.GetSelRange(first, last);
    if (first < 0 || last < 0 || first >= m_nSceneCount || last >= m_nSceneCount) return;
    if (last - first + 1 >= m_nSceneCount) {
        OnClearAll();
        return;
    }
    if (qv::MessageBoxRes(IDS_ASK_DELETE_SCENES, MB_YESNO | MB_ICONEXCLAMATION) != IDYES) return;
    for (int row = last; row >= first; --row) {
        SceneRecord* scene = FetchScene(row);
        if (m_listScenes.m_nMarkedCount > 0) {
            if (scene && scene->bMarked == 1) --m_listScenes.m_nMarkedCount;
            SetCaptureEnabled(m_listScenes.m_nMarkedCount > 0 ? 1 : 0);
        }
        if (scene && scene->bMerged == 1) {
            int g = FindMergeGroup(scene);
            if (g >= 0) {
                FreeMergeGroup(g_arMergeGroups.GetAt(g));
                g_arMergeGroups.RemoveAt(g);
            }
        }
        m_listScenes.DeleteRow(row);
        {
            qv::SceneLockGuard lock(g_csScenes);
            qv::FreeBlock(scene);  // nothing refers to a deleted scene
            if (g_arScenes.IsValidIndex(row)) g_arScenes.RemoveAt(row);
            // The picture's header goes with its pixels, so every later row
            // keeps describing its own picture.
            if (g_arThumbBits.IsValidIndex(row)) {
                qv::FreeBlock(g_arThumbBits.GetAt(row));
                g_arThumbBits.RemoveAt(row);
            }
            if (g_arThumbHeaders.IsValidIndex(row)) {
                qv::FreeBlock(g_arThumbHeaders.GetAt(row));
                g_arThumbHeaders.RemoveAt(row);
            }
        }
        --m_nSceneCount;
    }
    int select = first <= 0 ? 0 : (first < m_nSceneCount ? first : m_nSceneCount - 1);
    m_listScenes.SelectRange(select, FALSE, 0);
    if (m_nSceneCount > 0) {
        if (!m_bModified) {
            m_bModified = 1;
            UpdateTitle();
        }
    } else {
        ResetEmptyList();
    }
}

void CPreScanDlg::OnClearAll()
{
    if (m_nSceneCount < 1 || m_nState != PS_IDLE) return;
    if (qv::MessageBoxRes(IDS_ASK_DELETE_SCENES, MB_YESNO | MB_ICONEXCLAMATION) != IDYES) return;
    m_listScenes.m_nMarkedCount = 0;
    m_listScenes.DeleteAllRows();
    FreeSceneStore();
    m_nSceneCount = 0;
    ResetEmptyList();
}
