#include "host/HostRequests.h"

#include "platform/BoundedCopy.h"
#include "platform/MemoryBlock.h"
#include "scenes/SceneStore.h"
#include "session/Session.h"

#include <cstring>

int32_t SendHostRequest(int32_t nRequest, intptr_t lParam)
{
    HostRequestProc proc = g_session.pfnHostRequest;
    if (!g_session.bInitialized || !proc) return 0;
    return proc(nRequest, lParam);
}

void BuildScanRequest(ScanRequest& req, int nSceneCount)
{
    std::memset(&req, 0, sizeof req);
    req.nScanMethod = g_session.nScanMethodIndex;
    req.bSaveToLibrary = g_session.nSaveToLibrary;
    req.bWantIndexFile = g_session.nQuickScanSpeed < 1 ? g_session.nWantIndexFile : 0;
    req.nQuickScanSpeed = g_session.nQuickScanSpeed;
    if (req.nScanMethod == 3) {
        req.bWantIndexFile = 0;
        req.nQuickScanSpeed = 0;
    }
    req.nSceneCount = nSceneCount;
    qv::FillField(req.szCaptureName, g_session.szCaptureName);
    qv::FillField(req.szCaptureFolder, g_session.szCaptureFolder);
}

SceneSpan MakeSceneSpan(const SceneRecord& scene)
{
    SceneSpan span;
    std::memset(&span, 0, sizeof span);
    span.dwTimeCodeIn = scene.dwTimeCodeIn;
    span.dwTimeCodeOut = scene.dwTimeCodeOut;
    span.pNext = nullptr;
    span.dwPositionIn = scene.dwPositionIn;
    span.dwPositionOut = scene.dwPositionOut;
    return span;
}

bool BuildCaptureRequest(CaptureRequest& req, int nSpanCount, const char* pszTapeName, int nCompleted)
{
    std::memset(&req, 0, sizeof req);
    req.nSpanCount = nSpanCount;
    // The tape name, the capture name and the folder, in that order; a tape
    // name of a whole 100 characters fills its field without a terminator.
    qv::FillField(req.szTapeName, pszTapeName);
    qv::FillField(req.szCaptureName, g_session.szCaptureName);
    qv::FillField(req.szCaptureFolder, g_session.szCaptureFolder);
    req.bSaveToLibrary = g_session.nSaveToLibrary;

    SceneSpan* last = nullptr;
    int count = 0;
    for (int i = 0; i < nCompleted && count < nSpanCount; ++i) {
        SceneRecord* scene = FetchScene(i);
        if (!scene || scene->bMarked != 1) continue;
        auto* span = static_cast<SceneSpan*>(qv::AllocBlock(sizeof(SceneSpan)));
        if (!span) {
            FreeSpanChain(req.pFirstSpan);
            req.pFirstSpan = nullptr;
            return false;
        }
        *span = MakeSceneSpan(*scene);
        if (last) last->pNext = span;
        else req.pFirstSpan = span;
        last = span;
        ++count;
    }
    return true;
}

void FreeSpanChain(SceneSpan* pFirst)
{
    while (pFirst) {
        SceneSpan* next = pFirst->pNext;
        qv::FreeBlock(pFirst);
        pFirst = next;
    }
}
