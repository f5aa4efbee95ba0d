#include "scenes/QuickScanMatcher.h"

#include "platform/MemoryBlock.h"

#include <cstring>

namespace qv {
namespace {

// One entry of a queue, fetched under the lock; null when missing or when
// the lock is gone (the dialog closed meanwhile).
SceneInfo* Fetch(PtrArray<SceneInfo>& queue, int i, SceneLock& lock)
{
    SceneLockGuard guard(lock);
    return guard.Held() ? queue.GetAtOrNull(i) : nullptr;
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
    int nBegins = q.begins.GetSize();
    int nEnds = q.ends.GetSize();
    if (nEnds < 1) return -1;

    for (int j = 0; j < nEnds; ++j) {
        SceneInfo* end = Fetch(q.ends, j, q.lock);
        if (!end) return -1;
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
            SceneInfo* begin = Fetch(q.begins, i, q.lock);
            if (!begin || begin->dwTimeCodeIn != end->dwTimeCodeIn) continue;
            if (out) std::memcpy(out, end, sizeof *out);
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
