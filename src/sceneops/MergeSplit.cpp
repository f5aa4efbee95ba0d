// Merging a range of scenes into one, and splitting a merged scene back into
// the scenes it was made of (nested merges included).  Each merge keeps
// copies of its source records and pixels in a merge group; the originals it
// takes out of the table are freed, and a split frees what it no longer needs.
#include "dialog/PreScanDlg.h"

#include "platform/MemoryBlock.h"
#include "scenes/SceneStore.h"

#include <cstring>

namespace {

SceneRecord* CopyRecord(const SceneRecord* r)
{
    return static_cast<SceneRecord*>(qv::CopyBlock(r, sizeof(SceneRecord)));
}

// A copy of a pixel block of `size` bytes; null stays null.
uint8_t* CopyBits(const uint8_t* bits, uint32_t size, bool& failed)
{
    if (!bits || size == 0) return nullptr;
    auto* copy = static_cast<uint8_t*>(qv::CopyBlock(bits, size));
    failed = copy == nullptr;
    return copy;
}

} // namespace

int FindMergeGroup(const SceneRecord* pRecord)
{
    if (!pRecord) return -1;
    for (int g = 0; g < g_arMergeGroups.GetSize(); ++g) {
        MergeGroup* group = g_arMergeGroups.GetAt(g);
        const SceneRecord* first = group ? group->arRecords.GetAtOrNull(0) : nullptr;
        if (first && first->nIndex == pRecord->nIndex && first->dwTimeCodeIn == pRecord->dwTimeCodeIn) return g;
    }
    return -1;
}

void CPreScanDlg::MergeScenes()
{
    int first, last;
    m_listScenes.GetSelRange(first, last);
    if (first < 0 || first >= m_nSceneCount || last < 0 || last >= m_nSceneCount) return;
    int n = last - first + 1;
    SceneRecord* target = FetchScene(first);
    SceneRecord* lastScene = FetchScene(last);
    if (!target || !lastScene) return;

    int g = g_arMergeGroups.IsEmpty() ? -1 : FindMergeGroup(target);
    bool extending = g >= 0;
    MergeGroup* group = extending ? g_arMergeGroups.GetAt(g) : NewMergeGroup();
    if (!group) return;
    int marks = m_listScenes.m_nMarkedCount;
    for (int k = extending ? 1 : 0; k < n; ++k) {
        SceneRecord* source = FetchScene(first + k);
        SceneRecord* copy = CopyRecord(source);
        bool failed = false;
        uint8_t* bits = copy ? CopyBits(g_arThumbBits.GetAtOrNull(first + k), copy->dwThumbSize, failed) : nullptr;
        if (!copy || failed) {
            // Out of memory: the table is unchanged; a new group goes again.
            qv::FreeBlock(copy);
            if (!extending) FreeMergeGroup(group);
            return;
        }
        group->arRecords.Add(copy);
        group->arThumbBits.Add(bits);
        if (k >= 1 && copy->bMarked == 1 && marks > 0) --marks;
    }
    if (extending) {
        group->nCount += n - 1;
    } else {
        group->nCount = n;
        group->nFirst = first;
        group->dwTimeCodeIn = group->arRecords.GetAt(0)->dwTimeCodeIn;
        g_arMergeGroups.Add(group);
    }

    target->bMerged = 1;
    target->dwTimeCodeOut = lastScene->dwTimeCodeOut;
    m_listScenes.SetSceneRow(first, FALSE);
    for (int k = 1; k < n; ++k) {
        int row = last - k + 1;
        m_listScenes.DeleteRow(row);
        qv::SceneLockGuard lock(g_csScenes);
        qv::FreeBlock(g_arScenes.GetAt(row));  // the group keeps its own copy
        g_arScenes.RemoveAt(row);
        if (g_arThumbBits.IsValidIndex(row)) {
            qv::FreeBlock(g_arThumbBits.GetAt(row));
            g_arThumbBits.RemoveAt(row);
        }
        // The thumbnail headers stay in step with the pixels.
        if (g_arThumbHeaders.IsValidIndex(row)) {
            qv::FreeBlock(g_arThumbHeaders.GetAt(row));
            g_arThumbHeaders.RemoveAt(row);
        }
    }
    m_listScenes.SelectRange(first, FALSE, 0);
    m_nSceneCount -= n - 1;
    SetMergeEnabled(FALSE);
    m_listScenes.m_nMarkedCount = marks;
    SetCaptureEnabled(marks >= 1);
    if (m_nSceneCount >= 1 && !m_bModified) {
        m_bModified = 1;
        UpdateTitle();
    }
}

void CPreScanDlg::SplitScene()
{
    int first, last;
    m_listScenes.GetSelRange(first, last);
    if (first < 0 || first >= m_nSceneCount || last < 0 || last >= m_nSceneCount) return;
    int marks = m_listScenes.m_nMarkedCount;
    int nested = 0;
    bool changed = false;
    for (;;) {
        SceneRecord* merged = FetchScene(first);
        if (!merged || merged->bMerged != 1) break;
        if (merged->bMarked == 1) --marks;
        int g = FindMergeGroup(merged);
        MergeGroup* group = g >= 0 ? g_arMergeGroups.GetAt(g) : nullptr;
        if (!group || group->nCount < 0) break;

        // The group's first record takes the merged scene's place; the
        // merged record itself is no longer needed.
        SceneRecord* original = group->arRecords.GetAt(0);
        {
            qv::SceneLockGuard lock(g_csScenes);
            g_arScenes.SetAt(first, original);
            group->arRecords.SetAt(0, nullptr);
        }
        qv::FreeBlock(merged);
        m_listScenes.SetSceneRow(first, FALSE);
        if (original->bMarked == 1) ++marks;
        int restored = 1;
        for (int j = 1; j < group->nCount && j < group->arRecords.GetSize(); ++j) {
            SceneRecord* copy = CopyRecord(group->arRecords.GetAt(j));
            bool failed = false;
            uint8_t* bits = copy ? CopyBits(group->arThumbBits.GetAtOrNull(j), copy->dwThumbSize, failed) : nullptr;
            // Each restored scene gets a header of its own, like the one of
            // the scene it was merged into (the group keeps pixels only).
            const ThumbHeader* model = g_arThumbHeaders.GetAtOrNull(first);
            ThumbHeader* header = model && copy && !failed
                                      ? static_cast<ThumbHeader*>(qv::CopyBlock(model, sizeof(ThumbHeader)))
                                      : nullptr;
            if (!copy || failed || (model && !header)) {
                qv::FreeBlock(copy);
                qv::FreeBlock(bits);
                break;  // out of memory: what was restored stays, counted below
            }
            {
                qv::SceneLockGuard lock(g_csScenes);
                g_arScenes.InsertAt(first + j, copy);
                int at = first + j <= g_arThumbBits.GetSize() ? first + j : g_arThumbBits.GetSize();
                g_arThumbBits.InsertAt(at, bits);
                int headerAt = first + j <= g_arThumbHeaders.GetSize() ? first + j : g_arThumbHeaders.GetSize();
                if (model) g_arThumbHeaders.InsertAt(headerAt, header);
            }
            m_listScenes.SetSceneRow(first + j, TRUE);
            if (copy->bMarked == 1) ++marks;
            if (copy->bMerged == 1) ++nested;
            ++restored;
        }
        m_listScenes.SelectRange(first, FALSE, 0);
        // The scene count follows the rows actually restored, so a split cut
        // short by memory leaves a consistent list.
        m_nSceneCount += restored - 1;
        g_arMergeGroups.RemoveAt(g);
        FreeMergeGroup(group);
        m_listScenes.m_nMarkedCount = marks < 0 ? 0 : marks;
        SetCaptureEnabled(marks >= 1);
        changed = true;

        // A restored scene that was itself merged is split in the same command.
        if (nested < 1) break;
        int next = -1;
        for (int r = first + 1; r < m_nSceneCount; ++r) {
            SceneRecord* s = FetchScene(r);
            if (s && s->bMerged == 1) {
                next = r;
                break;
            }
        }
        if (next < 0) break;
        first = next;
        --nested;
        marks = m_listScenes.m_nMarkedCount;
    }
    if (changed && m_nSceneCount >= 1 && !m_bModified) {
        m_bModified = 1;
        UpdateTitle();
    }
    SetMergeEnabled(FALSE);
}
