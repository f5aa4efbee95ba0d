// Changes to single scenes on the user's or the host's behalf: a finished
// comment edit, and a file the host captured for a scene.
#include "dialog/PreScanDlg.h"

#include "platform/BoundedCopy.h"
#include "scenes/SceneStore.h"

#include <cstring>

void CPreScanDlg::SetSceneComment(int nRow, const char* pszText)
{
    if (nRow < 0 || nRow >= m_nSceneCount || !pszText) return;
    SceneRecord* scene = FetchScene(nRow);
    if (!scene) return;
    // The field holds 519 characters; the editor never lets more be typed,
    // and a longer text from elsewhere is cut at the field's end.
    char comment[QV_COMMENT_SIZE];
    std::memset(comment, 0, sizeof comment);
    qv::CopyBounded(comment, pszText);
    {
        qv::SceneLockGuard lock(g_csScenes);
        std::memcpy(scene->szComment, comment, sizeof comment);
    }
    if (m_nSceneCount >= 1 && !m_bModified) {
        m_bModified = 1;
        UpdateTitle();
    }
}

void CPreScanDlg::UpdateCapturedScene(int nScene)
{
    if (nScene < 0 || nScene >= m_nSceneCount) return;
    // While scanning with capture, rows appear as their files are reported.
    if (g_bDirectCapture) m_listScenes.SetSceneRow(nScene, TRUE);
    m_listScenes.RefreshCommentAndFiles(nScene, FALSE, TRUE);
    m_listScenes.SelectRange(nScene, FALSE, 0);
    m_listScenes.RedrawAllRows();
    if (m_nSceneCount >= 1 && !m_bModified) {
        m_bModified = 1;
        UpdateTitle();
    }
}
