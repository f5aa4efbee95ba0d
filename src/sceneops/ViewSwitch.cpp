// Switching the scene list between the thumbnail view and the compact view:
// the list is rebuilt with the other columns and row height, and every row
// filled again.
#include "dialog/PreScanDlg.h"

#include "ResourceIds.h"
#include "listview/CommentEdit.h"
#include "scenes/SceneStore.h"

namespace {

// While the columns are rebuilt, a cell drawing already under way on
// another path gets time to finish before the image list is replaced.
const DWORD kRebuildPauseMs = 500;

} // namespace

void CPreScanDlg::ToggleViewMode()
{
    BOOL thumbnails = m_listScenes.m_bShowThumbnails ? FALSE : TRUE;
    m_btnViewMode.SetBitmap(thumbnails ? IDB_VIEW_THUMBNAILS : IDB_VIEW_COMPACT);
    DisableAllControls();
    if (m_listScenes.m_pCommentEdit) m_listScenes.EndCommentEdit();

    int first = 0, last = 0;
    if (m_nSceneCount != 0) {
        m_listScenes.GetSelRange(first, last);
        m_listScenes.DeleteAllRows();
    }
    {
        qv::SceneLockGuard lock(g_csScenes);
        m_listScenes.ClearSelection();
        m_listScenes.DeleteAllColumns();
        m_listScenes.SetThumbnailView(thumbnails);
        m_listScenes.SendMessage(LVM_SETIMAGELIST, LVSIL_NORMAL, 0);
        m_listScenes.SendMessage(LVM_SETIMAGELIST, LVSIL_SMALL, 0);
        if (m_imageList) ImageList_Destroy(m_imageList);
        m_imageList = nullptr;
        g_bRebuildingList = 1;
    }
    if (m_nSceneCount != 0) Sleep(kRebuildPauseMs);

    // The image lists only set the row height: 80x60 pictures in the
    // thumbnail view, 30x20 in the compact view.
    m_imageList = thumbnails ? ImageList_Create(80, 60, ILC_COLOR24, 0, 4) : ImageList_Create(30, 20, ILC_COLOR24, 0, 4);
    if (thumbnails) m_listScenes.SendMessage(LVM_SETIMAGELIST, LVSIL_NORMAL, reinterpret_cast<LPARAM>(m_imageList));
    m_listScenes.SendMessage(LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(m_imageList));
    m_listScenes.InsertSceneColumns();
    m_listScenes.RedrawAllRows();
    g_bRebuildingList = 0;

    if (m_nSceneCount != 0) {
        m_listScenes.SetRowCount(m_nSceneCount);
        m_listScenes.SelectRange(first, TRUE, last);
    }
    RestoreControls();
    EnableDeviceControls(m_bDeviceReady);
}
