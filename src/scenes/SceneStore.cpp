#include "scenes/SceneStore.h"

#include "platform/BoundedCopy.h"
#include "platform/MemoryBlock.h"
#include "scenes/QuickScanMatcher.h"
#include "session/Session.h"

#include <cstring>
#include <deque>
#include <new>

qv::PtrArray<SceneRecord> g_arScenes;
qv::PtrArray<ThumbHeader> g_arThumbHeaders;
qv::PtrArray<uint8_t> g_arThumbBits;
qv::PtrArray<MergeGroup> g_arMergeGroups;
qv::PtrArray<SceneInfo> g_arQuickBegins;
qv::PtrArray<SceneInfo> g_arQuickEnds;
qv::SceneLock g_csScenes;
int32_t g_nBeginCount;
int32_t g_nEndCount;
int32_t g_nBaseSceneCount;
int32_t g_nQuickMatchPos;
int32_t g_bSceneOpen;
int32_t g_bHaveThumbnails;
int32_t g_bDirectCapture;

namespace {

bool IsQuickScan()
{
    return g_session.nQuickScanSpeed > 0;
}

// Frees a block when the scope ends, unless it was handed on.
class OwnedBlock {
public:
    explicit OwnedBlock(void* p) : m_p(p) {}
    ~OwnedBlock() { qv::FreeBlock(m_p); }
    OwnedBlock(const OwnedBlock&) = delete;
    OwnedBlock& operator=(const OwnedBlock&) = delete;
    void* Get() const { return m_p; }
    void* Release()
    {
        void* p = m_p;
        m_p = nullptr;
        return p;
    }

private:
    void* m_p;
};

qv::QuickScanQueues Queues()
{
    return {g_arQuickBegins, g_arQuickEnds, g_nQuickMatchPos, g_csScenes};
}

bool OnThreadOf(HWND hWnd)
{
    return hWnd && GetWindowThreadProcessId(hWnd, nullptr) == GetCurrentThreadId();
}

// Scene notifications waiting for the dialog, oldest first, and whether a
// WM_PRESCAN_NOTIFIED is on its way to wake it.
struct SceneNotification {
    int nRow;
    int bBegun;
};
std::deque<SceneNotification> g_notifications;
bool g_bWakePosted;

// Tells the dialog that a row begins or completes.  In a quick scan, or when
// the host calls from a thread other than the dialog's, the feed does no
// window work of its own: the notification waits here, and one posted
// message wakes the dialog for all that come before it takes them.  A
// message to another thread costs a round trip to the window system, which
// under load takes longer than the rest of a scene's work: one per scene
// would leave the dialog ever further behind a fast host.  When the queue
// refuses the message, the dialog's status timer takes the notifications.
void NotifyDialog(SceneFeedTarget& dlg, int nRow, int bBegun)
{
    HWND hWnd = dlg.FeedWindow();
    if (!IsQuickScan() && OnThreadOf(hWnd)) {
        dlg.OnPreScanScene(nRow, bBegun);
        return;
    }
    {
        qv::SceneLockGuard lock(g_csScenes);
        if (!lock.Held()) return;
        g_notifications.push_back({nRow, bBegun});
        if (g_bWakePosted) return;
        g_bWakePosted = true;
    }
    if (PostMessageA(hWnd, WM_PRESCAN_NOTIFIED, 0, 0)) return;
    qv::SceneLockGuard lock(g_csScenes);
    g_bWakePosted = false;
}

void FreeAll(qv::PtrArray<SceneInfo>& queue)
{
    for (int i = 0; i < queue.GetSize(); ++i) qv::FreeBlock(queue.GetAt(i));
    queue.RemoveAll();
}

// A thumbnail as the table keeps it: the host's header verbatim and every
// byte it delivered, whenever the pixels the header describes lie within
// those bytes, compressed pictures included (what the list cannot draw it
// shows as a blank cell).  Only a header that describes more than was
// delivered, or does not say how much it describes, is replaced by a blank
// 80x60 picture: the scene keeps its place in the thumbnail table and
// nothing is ever read by that header past the host's buffer.
struct ThumbnailCopy {
    ThumbHeader* header = nullptr;
    uint8_t* bits = nullptr;
    uint32_t bytes = 0;
};

ThumbnailCopy CopyThumbnail(const ThumbHeader* pHeader, const void* pBits, uint32_t nDelivered)
{
    ThumbHeader blank;
    std::memset(&blank, 0, sizeof blank);
    blank.biSize = sizeof blank;
    blank.biWidth = 80;
    blank.biHeight = 60;
    blank.biPlanes = 1;
    blank.biBitCount = 24;
    // No thumbnail is this large: a count beyond it is a host's slip, and
    // only the pixels the header describes are taken.
    const uint32_t kMostBytes = 16u << 20;
    uint32_t described = DescribedThumbnailBytes(*pHeader);
    bool kept = described != 0 && described <= nDelivered && described <= kMostBytes;
    uint32_t bytes = nDelivered <= kMostBytes ? nDelivered : described;
    if (!kept) {
        pHeader = &blank;
        pBits = nullptr;  // zero-filled
        bytes = ThumbnailBytes(blank);
    }
    ThumbnailCopy copy;
    OwnedBlock header(qv::CopyBlock(pHeader, sizeof(ThumbHeader)));
    OwnedBlock bits(qv::CopyBlock(pBits, bytes));
    if (!header.Get() || !bits.Get()) return copy;
    copy.header = static_cast<ThumbHeader*>(header.Release());
    copy.bits = static_cast<uint8_t*>(bits.Release());
    copy.bytes = bytes;
    if (!kept) copy.header->biSizeImage = bytes;
    return copy;
}

} // namespace

void AddSceneBegin(SceneFeedTarget& dlg, const SceneInfo& scene, const ThumbHeader* pHeader, const void* pBits)
{
    OwnedBlock copy(qv::CopyBlock(&scene, sizeof scene));
    if (!copy.Get()) return;
    int nRow = -1;
    bool stopped = false;
    // The lock covers the tables only: everything that reaches the dialog
    // (clearing rows, the title, host requests) runs after it is released.
    {
        qv::SceneLockGuard lock(g_csScenes);
        if (!lock.Held()) return;  // the dialog has gone
        ++g_nBeginCount;
        int nCompleted = dlg.CompletedSceneCount();
        int32_t nThumbSize = static_cast<int32_t>(scene.dwThumbSize);
        if (IsQuickScan()) g_arQuickBegins.Add(static_cast<SceneInfo*>(copy.Release()));

        if (g_bStopScan) {
            stopped = true;  // a stop was asked for: no record is added
        } else {
            // Every block is made before anything joins the table: when memory
            // runs short the scene is dropped whole and the tables stay in step.
            OwnedBlock recordBlock(qv::AllocBlock(sizeof(SceneRecord)));
            if (!recordBlock.Get()) return;
            ThumbnailCopy thumb;
            bool withThumbnail = nThumbSize != 0 && pHeader && pBits;
            if (withThumbnail) {
                thumb = CopyThumbnail(pHeader, pBits, scene.dwThumbSize);
                if (!thumb.header || !thumb.bits) return;
                g_arThumbHeaders.Add(thumb.header);
                g_arThumbBits.Add(thumb.bits);
            }
            g_bHaveThumbnails = withThumbnail ? 1 : 0;

            auto* record = static_cast<SceneRecord*>(recordBlock.Release());
            std::memcpy(record, &scene, sizeof scene);
            record->dwThumbSize = thumb.bytes;  // what the table holds
            record->nIndex = nCompleted;
            record->bMerged = 0;
            record->bMarked = 0;
            nRow = g_arScenes.Add(record);
        }
    }
    if (stopped) {
        // In a quick scan the scene left open at the stop goes; from a host
        // thread the dialog is asked to do that on its own thread.
        if (IsQuickScan()) {
            if (OnThreadOf(dlg.FeedWindow()))
                ClearIncompleteScenes(dlg, 0);
            else
                PostMessageA(dlg.FeedWindow(), WM_PRESCAN_CLEAR_INCOMPLETE, 0, 0);
        }
        return;
    }
    NotifyDialog(dlg, nRow, 1);
    g_bSceneOpen = 1;
}

void CompleteScene(SceneFeedTarget& dlg, const SceneInfo& scene)
{
    const bool quick = IsQuickScan();
    int nTable = SceneTableSize();
    if (nTable == 0) return;
    // Only the quick scan queues ends; a normal scan applies the host's own
    // descriptor, so a scene's end can never be lost to a short memory.
    OwnedBlock end(quick ? qv::CopyBlock(&scene, sizeof scene) : nullptr);
    if (quick && !end.Get()) return;
    const SceneInfo* pEnd = quick ? static_cast<SceneInfo*>(end.Get()) : &scene;

    qv::QuickScanQueues queues = Queues();
    if (quick) {
        if (!qv::AcceptQuickScanEnd(queues, *pEnd)) return;  // not later than the previous end
        qv::SceneLockGuard lock(g_csScenes);
        if (!lock.Held()) return;
        g_arQuickEnds.Add(static_cast<SceneInfo*>(end.Release()));
    }
    {
        qv::SceneLockGuard lock(g_csScenes);
        if (!lock.Held()) return;
        ++g_nEndCount;
        if (!quick && static_cast<uint32_t>(g_nEndCount) > static_cast<uint32_t>(g_nBeginCount)) {
            --g_nEndCount;  // an end without a begin
            return;
        }
    }

    SceneInfo matched;
    const SceneInfo* pApply = pEnd;
    int index = 0;
    if (quick) {
        index = qv::MatchQuickScanEnd(queues, g_session.nQuickScanSpeed, dlg.CompletedSceneCount(),
                                      g_nBaseSceneCount, &matched);
        if (index < 0) return;
        pApply = &matched;
    }
    if (index > nTable) return;
    if (g_bStopScan && !g_bSceneOpen) return;  // stopped, and no scene is open

    int target = quick ? g_nBaseSceneCount + index : dlg.CompletedSceneCount();
    if (target < 0 || target >= nTable) return;
    {
        qv::SceneLockGuard lock(g_csScenes);
        if (!lock.Held()) return;
        SceneRecord* record = g_arScenes.GetAtOrNull(target);
        if (!record) {
            if (!quick) --g_nEndCount;
            return;
        }
        if (!quick && record->dwTimeCodeIn > pEnd->dwTimeCodeOut) {
            --g_nEndCount;  // the end lies before the start
            return;
        }
        record->dwTimeCodeOut = pApply->dwTimeCodeOut;
        record->dwPositionOut = pApply->dwPositionOut;
        std::memcpy(record->szSceneFile, pApply->szSceneFile, sizeof record->szSceneFile);
        record->szSceneFile[sizeof record->szSceneFile - 1] = 0;
        record->nIndex = target;
        record->bMerged = 0;
        record->bMarked = 0;
        std::memset(record->szCaptureFile, 0, sizeof record->szCaptureFile);
        std::memset(record->szComment, 0, sizeof record->szComment);
    }
    NotifyDialog(dlg, target, 0);
    g_bSceneOpen = 0;
}

void StoreSceneBitmap(int nPos, const ThumbHeader* pHeader, const void* pBits, int32_t nBytes)
{
    if (nPos < 0 || nBytes <= 0 || !pHeader || !pBits) return;
    qv::SceneLockGuard lock(g_csScenes);
    if (!lock.Held()) return;
    ThumbnailCopy thumb = CopyThumbnail(pHeader, pBits, static_cast<uint32_t>(nBytes));
    if (!thumb.header || !thumb.bits) return;
    g_arThumbHeaders.Add(thumb.header);
    g_arThumbBits.Add(thumb.bits);
    g_bHaveThumbnails = 1;
    if (SceneRecord* record = g_arScenes.GetAtOrNull(nPos)) record->dwThumbSize = thumb.bytes;
}

void SetCaptureFileName(SceneFeedTarget& dlg, int nNumber, const char* pszPath)
{
    if (nNumber < 0 || !pszPath) return;
    int nCompleted = dlg.CompletedSceneCount();
    int found = -1;
    {
        qv::SceneLockGuard lock(g_csScenes);
        if (!lock.Held()) return;
        if (g_bDirectCapture) {
            // While scanning with capture the number is the table position.
            if (nNumber < nCompleted && nNumber < g_arScenes.GetSize()) found = nNumber;
        } else {
            // Otherwise it counts the marked scenes from the top.
            int marked = 0;
            for (int i = 0; i < nCompleted; ++i) {
                SceneRecord* record = g_arScenes.GetAtOrNull(i);
                if (!record) break;
                if (record->bMarked != 1) continue;
                if (marked++ == nNumber) {
                    found = i;
                    break;
                }
            }
        }
        if (found < 0) return;
        SceneRecord* record = g_arScenes.GetAt(found);
        qv::CopyBounded(record->szCaptureFile, pszPath);
    }
    if (OnThreadOf(dlg.FeedWindow()))
        dlg.OnCaptureFileStored(found);
    else
        PostMessageA(dlg.FeedWindow(), WM_PRESCAN_CAPTURED, static_cast<WPARAM>(found), 0);
}

int ClearIncompleteScenes(SceneFeedTarget& dlg, int bForce)
{
    int nCompleted = dlg.CompletedSceneCount();
    int nTable = SceneTableSize();
    if (nCompleted == nTable) return nCompleted;
    for (int i = nTable - 1; i >= nCompleted && i >= 0; --i) {
        {
            qv::SceneLockGuard lock(g_csScenes);
            SceneRecord* record = g_arScenes.GetAtOrNull(i);
            if (!(bForce || (record && record->dwTimeCodeOut == 0))) continue;
            qv::FreeBlock(record);
            g_arScenes.RemoveAt(i);
            if (g_arThumbBits.IsValidIndex(i) && g_arThumbHeaders.IsValidIndex(i)) {
                qv::FreeBlock(g_arThumbBits.GetAt(i));
                qv::FreeBlock(g_arThumbHeaders.GetAt(i));
                g_arThumbBits.RemoveAt(i);
                g_arThumbHeaders.RemoveAt(i);
            }
        }
        dlg.DeleteSceneRow(i);
    }
    dlg.OnIncompleteScenesCleared(nCompleted);
    return nCompleted;
}

int BeginSceneNotifications()
{
    qv::SceneLockGuard lock(g_csScenes);
    g_bWakePosted = false;
    return lock.Held() ? static_cast<int>(g_notifications.size()) : 0;
}

bool TakeSceneNotification(int& nRow, int& bBegun)
{
    qv::SceneLockGuard lock(g_csScenes);
    if (!lock.Held() || g_notifications.empty()) return false;
    nRow = g_notifications.front().nRow;
    bBegun = g_notifications.front().bBegun;
    g_notifications.pop_front();
    return true;
}

void DropSceneNotifications()
{
    qv::SceneLockGuard lock(g_csScenes);
    g_notifications.clear();
    g_bWakePosted = false;
}

void ResetSceneCounters(int nCompletedScenes)
{
    g_nBeginCount = 0;
    g_nEndCount = 0;
    g_nBaseSceneCount = nCompletedScenes;
    g_nQuickMatchPos = 0;
}

void FreeQuickScanQueues()
{
    qv::SceneLockGuard lock(g_csScenes);
    FreeAll(g_arQuickBegins);
    FreeAll(g_arQuickEnds);
}

MergeGroup* NewMergeGroup()
{
    void* block = qv::AllocBlock(sizeof(MergeGroup));
    return block ? new (block) MergeGroup : nullptr;
}

void FreeMergeGroup(MergeGroup* pGroup)
{
    if (!pGroup) return;
    for (int i = 0; i < pGroup->arRecords.GetSize(); ++i) qv::FreeBlock(pGroup->arRecords.GetAt(i));
    for (int i = 0; i < pGroup->arThumbBits.GetSize(); ++i) qv::FreeBlock(pGroup->arThumbBits.GetAt(i));
    for (int i = 0; i < pGroup->arExtra.GetSize(); ++i) qv::FreeBlock(pGroup->arExtra.GetAt(i));
    pGroup->~MergeGroup();
    qv::FreeBlock(pGroup);
}

void FreeSceneStore()
{
    // With the dialog gone the lock is gone too, and no feed call can run.
    qv::SceneLockGuard lock(g_csScenes);
    for (int i = 0; i < g_arThumbBits.GetSize(); ++i) qv::FreeBlock(g_arThumbBits.GetAt(i));
    for (int i = 0; i < g_arThumbHeaders.GetSize(); ++i) qv::FreeBlock(g_arThumbHeaders.GetAt(i));
    for (int i = 0; i < g_arScenes.GetSize(); ++i) qv::FreeBlock(g_arScenes.GetAt(i));
    for (int i = 0; i < g_arMergeGroups.GetSize(); ++i) FreeMergeGroup(g_arMergeGroups.GetAt(i));
    g_arThumbBits.RemoveAll();
    g_arThumbHeaders.RemoveAll();
    g_arScenes.RemoveAll();
    g_arMergeGroups.RemoveAll();
    FreeAll(g_arQuickBegins);
    FreeAll(g_arQuickEnds);
    g_notifications.clear();
    g_bWakePosted = false;
}

SceneRecord* FetchScene(int nPos)
{
    qv::SceneLockGuard lock(g_csScenes);
    return g_arScenes.GetAtOrNull(nPos);
}

bool FetchThumbnail(int nPos, const ThumbHeader*& pHeader, const uint8_t*& pBits)
{
    qv::SceneLockGuard lock(g_csScenes);
    pHeader = g_arThumbHeaders.GetAtOrNull(nPos);
    pBits = g_arThumbBits.GetAtOrNull(nPos);
    return pHeader && pBits;
}

int SceneTableSize()
{
    qv::SceneLockGuard lock(g_csScenes);
    return g_arScenes.GetSize();
}
