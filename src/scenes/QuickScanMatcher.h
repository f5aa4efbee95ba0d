// Pairing scene ends with their begins in a quick scan.
//
// A quick scan plays the tape fast; its detector reports begins and ends as
// it finds them, so an end need not belong to the scene that began last and
// may repeat.  Every begin of the scan is queued; each usable end is queued
// and matched with the begin of the same start time code, searching forward
// from a cursor.  Portable: the tables and the lock are the platform's shims.
#pragma once

#include "platform/PtrArray.h"
#include "platform/SceneLock.h"
#include "qvPreScan.h"

namespace qv {

struct QuickScanQueues {
    PtrArray<SceneInfo>& begins;   // every begin of this scan, in arrival order
    PtrArray<SceneInfo>& ends;     // ends waiting to be paired, oldest first
    int& matchPos;                 // where the next search starts
    SceneLock& lock;               // held for each read: a size, one entry
};

// True when `end` may join the end queue: it must be later than the newest
// queued end (its In time code above both the newest end's In and Out).
bool AcceptQuickScanEnd(const QuickScanQueues& q, const SceneInfo& end);

// Pairs the queued ends with queued begins.  Returns the matched begin's
// place among this scan's begins and copies the matching end into `out`, or
// -1 when nothing matches; 0 without doing anything when the scan is not a
// quick scan.  The oldest queued end leaves the queue on a match (whichever
// end matched), and is freed.
int MatchQuickScanEnd(QuickScanQueues& q, int nQuickScanSpeed, int nCompletedScenes, int nBaseSceneCount,
                      SceneInfo* out);

} // namespace qv
