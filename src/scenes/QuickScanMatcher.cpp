#include "scenes/QuickScanMatcher.h"

#include "platform/MemoryBlock.h"

#include <cstring>

namespace qv {
namespace {

// Copies one queue entry under the lock, so that nothing is read from an
// entry after the lock is released (the dialog may free the queues at any
// moment in between).  False when the entry is missing or the lock is gone
// (the dialog closed meanwhile).
bool CopyEntry(PtrArray<SceneInfo>& queue, int i, SceneLock& lock, SceneInfo& out)
{
    SceneLockGuard guard(lock);
    const SceneInfo* entry = guard.Held() ? queue.GetAtOrNull(i) : nullptr;
    if (!entry) return false;
    std::memcpy(&out, entry, sizeof out);
    return true;
}

// True when begin i exists and starts at `dwTimeCodeIn`; compared under the lock.
bool BeginStartsAt(PtrArray<SceneInfo>& begins, int i, SceneLock& lock, uint32_t dwTimeCodeIn)
{
    SceneLockGuard guard(lock);
    const SceneInfo* begin = guard.Held() ? begins.GetAtOrNull(i) : nullptr;
    return begin && begin->dwTimeCodeIn == dwTimeCodeIn;
}

} // namespace

bool AcceptQuickScanEnd(const QuickScanQueues& q, const SceneInfo& end)
{
    SceneLockGuard guard(q.lock);
    if (!guard.Held() || q.ends.IsEmpty()) return guard.Held();
    const SceneInfo* newest = q.ends.GetAt(q.ends.GetSize() - 1);
    return !(newest->dwTimeCodeIn >= end.dwTimeCodeIn || newest->dwTimeCodeOut >= end.dwTimeCodeIn);
}

int MatchQuickScanEnd(QuickScanQueues& q, int nQuickScanSpeed, int nCompletedScenes, int nBaseSceneCount,
                      SceneInfo* out)
{
    if (nQuickScanSpeed <= 0) return 0;
    int nBegins, nEnds;
    {
        SceneLockGuard guard(q.lock);
        if (!guard.Held()) return -1;
        nBegins = q.begins.GetSize();
        nEnds = q.ends.GetSize();
    }
    if (nEnds < 1) return -1;

    SceneInfo end;
    for (int j = 0; j < nEnds; ++j) {
        if (!CopyEntry(q.ends, j, q.lock, end)) return -1;
        int p = q.matchPos;
        if (p >= nBegins) {
            // The cursor ran past the queued begins: search again from the
            // last completed scene of this scan.
            p = nCompletedScenes - nBaseSceneCount - 1;
            q.matchPos = p;
        }
        if (p < 0) {
            q.matchPos = 0;
            return -1;
        }
        for (int i = p; i < nBegins; ++i) {
            if (!BeginStartsAt(q.begins, i, q.lock, end.dwTimeCodeIn)) continue;
            if (out) std::memcpy(out, &end, sizeof *out);
            q.matchPos = i + 1;
            SceneLockGuard guard(q.lock);
            if (guard.Held() && !q.ends.IsEmpty()) {
                FreeBlock(q.ends.GetAt(0));
                q.ends.RemoveAt(0);
            }
            return i;
        }
    }
    return -1;
}

} // namespace qv
