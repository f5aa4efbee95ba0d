// The module's requests to the host: building each record byte for byte and
// sending it through the session's HostRequestProc.
#pragma once

#include "qvPreScan.h"
#include "scenes/SceneRecord.h"

// Sends one request on the calling (dialog) thread.  Without a session or a
// callback nothing is sent and the answer is 0: no request ever goes
// nowhere.
int32_t SendHostRequest(int32_t nRequest, intptr_t lParam);

// Request 1's record from the session: zero-filled, then the fields.  For
// scan method 3 the index file and quick scan are always off.
void BuildScanRequest(ScanRequest& req, int nSceneCount);

// Request 3's record and its span chain: the first `nSpanCount` marked
// scenes among the first `nCompleted` of the table, in table order.
// Returns false when a span could not be allocated (the chain is then freed).
bool BuildCaptureRequest(CaptureRequest& req, int nSpanCount, const char* pszTapeName, int nCompleted);
void FreeSpanChain(SceneSpan* pFirst);

// A scene's stretch of tape (request 4, and each link of request 3).
SceneSpan MakeSceneSpan(const SceneRecord& scene);
