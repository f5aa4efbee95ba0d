// Pairing a quick scan's ends with its begins, fed the way the scene store
// feeds the matcher: accept the end, queue it, match.
#include "scenes/QuickScanMatcher.h"

#include "platform/MemoryBlock.h"
#include "support/Portable.h"

#include <gtest/gtest.h>

#include <vector>

using namespace qv;
using qvtest::Tc;

namespace {

const int kRejected = -2;  // the end never joined the queue

struct EndCase {
    uint32_t in, out;
    int expect;  // matched begin, -1 for none, kRejected
};

struct MatchCase {
    const char* name;
    int speed, base, completed;
    std::vector<uint32_t> begins;
    std::vector<EndCase> ends;
    std::vector<uint32_t> queuedAfter;  // In time codes left in the end queue
    int cursorAfter;
};

struct Scan {
    PtrArray<SceneInfo> begins, ends;
    int matchPos = 0;
    SceneLock lock;
    QuickScanQueues q{begins, ends, matchPos, lock};
    Scan() { lock.Create(); }
    ~Scan()
    {
        for (auto* queue : {&begins, &ends})
            for (int i = 0; i < queue->GetSize(); ++i) FreeBlock(queue->GetAt(i));
    }
    static SceneInfo* Copy(uint32_t in, uint32_t out)
    {
        SceneInfo s = {};
        s.dwTimeCodeIn = in, s.dwTimeCodeOut = out;
        return static_cast<SceneInfo*>(CopyBlock(&s, sizeof s));
    }
};

const uint32_t T1 = Tc(0, 1, 0, 0), T2 = Tc(0, 2, 0, 0), T3 = Tc(0, 3, 0, 0);

const MatchCase kCases[] = {
    {"ends in order", 2, 0, 0, {T1, T2, T3}, {{T1, T1 + 9, 0}, {T2, T2 + 9, 1}, {T3, T3 + 9, 2}}, {}, 3},
    // The stale end is the oldest, so it leaves; the end that matched stays.
    {"stale end removed", 2, 0, 0, {T1, T2}, {{T1 + 1, T1 + 2, -1}, {T2, T2 + 9, 1}}, {T2}, 2},
    // Without an Out time code only its In can tell the repeat.
    {"repeated end rejected", 2, 0, 0, {T1, T2}, {{T1 + 1, 0, -1}, {T1 + 1, 0, kRejected}, {T2, T2 + 9, 1}}, {T2}, 2},
    // Past the last begin the search restarts at this scan's last completed
    // scene (6 - 4 - 1 = begin 1), where a late end for it still pairs.
    {"cursor pulled back", 2, 4, 6, {T1, T2}, {{T1, T1 + 9, 0}, {T2, T2 + 9, 1}, {T2, T2 + 9, 1}}, {}, 2},
    {"pulled back before the scan", 2, 4, 4, {T1}, {{T1, T1 + 9, 0}, {T2, T2 + 9, -1}}, {T2}, 0},
    {"no begins yet", 2, 0, 0, {}, {{T1, T1 + 9, -1}, {T2, T2 + 9, -1}}, {T1, T2}, 0},
    {"not a quick scan", 0, 0, 0, {T1}, {{T1, T1 + 9, 0}}, {T1}, 0},
};

TEST(QuickScanMatcherTest, PairsEndsWithBegins)
{
    for (const MatchCase& c : kCases) {
        SCOPED_TRACE(c.name);
        Scan scan;
        for (uint32_t in : c.begins) scan.begins.Add(Scan::Copy(in, 0));
        for (const EndCase& e : c.ends) {
            // As the store takes an end: accepted into the queue, then matched.
            SceneInfo matched = {}, *end = Scan::Copy(e.in, e.out);
            int got = kRejected;
            if (!AcceptQuickScanEnd(scan.q, *end)) FreeBlock(end);
            else scan.ends.Add(end), got = MatchQuickScanEnd(scan.q, c.speed, c.completed, c.base, &matched);
            EXPECT_EQ(got, e.expect) << std::hex << e.in;
            if (e.expect >= 0 && c.speed > 0) EXPECT_EQ(matched.dwTimeCodeOut, e.out);
        }
        std::vector<uint32_t> queued;
        for (int i = 0; i < scan.ends.GetSize(); ++i) queued.push_back(scan.ends.GetAt(i)->dwTimeCodeIn);
        EXPECT_EQ(queued, c.queuedAfter);
        EXPECT_EQ(scan.matchPos, c.cursorAfter);
    }
}

} // namespace
