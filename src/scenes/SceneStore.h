// The scene store: the scene table with its thumbnails, the merge groups,
// the quick-scan queues and the counters of the host's scene feed.
//
// Every record, thumbnail block and group is a memory block (MemoryBlock.h)
// that only the store frees.  Changes to the tables are made under
// g_csScenes, which exists exactly while the pre-scan dialog's window does;
// a feed call that finds the lock gone does nothing.
#pragma once

#include <windows.h>

#include "platform/PtrArray.h"
#include "platform/SceneLock.h"
#include "scenes/SceneRecord.h"

// Private messages the store posts to the dialog when the host feeds from a
// thread of its own: remove the open trailing scene; show a captured file;
// take the scene notifications that wait (one message for all of them).
#define WM_PRESCAN_CLEAR_INCOMPLETE (WM_USER + 2)
#define WM_PRESCAN_CAPTURED (WM_USER + 3)
#define WM_PRESCAN_NOTIFIED (WM_USER + 5)

// What the store asks of the pre-scan dialog.
class SceneFeedTarget {
public:
    virtual ~SceneFeedTarget() = default;
    // m_nSceneCount; read also from the host's threads.
    virtual int CompletedSceneCount() const = 0;
    virtual HWND FeedWindow() const = 0;                  // where the store posts its messages
    virtual int OnPreScanScene(int nRow, int bBegun) = 0; // the handler, called directly
    virtual void DeleteSceneRow(int nRow) = 0;            // one row of the scene list
    // After trailing incomplete scenes were removed: K completed scenes remain.
    virtual void OnIncompleteScenesCleared(int nCompleted) = 0;
    // The host reported the captured file of a scene.
    virtual void OnCaptureFileStored(int nScene) = 0;
};

// One merged scene that can still be split: copies of its source records
// and their thumbnail pixels, in table order.
struct MergeGroup {
    int32_t nCount = 0;          // source scenes the merged scene stands for
    int32_t nFirst = 0;          // table position of the first source scene
    uint32_t dwTimeCodeIn = 0;   // the first source scene's start
    qv::PtrArray<SceneRecord> arRecords;
    qv::PtrArray<uint8_t> arThumbBits;
    qv::PtrArray<void> arExtra;
};

extern qv::PtrArray<SceneRecord> g_arScenes;
extern qv::PtrArray<ThumbHeader> g_arThumbHeaders;
extern qv::PtrArray<uint8_t> g_arThumbBits;
extern qv::PtrArray<MergeGroup> g_arMergeGroups;
extern qv::PtrArray<SceneInfo> g_arQuickBegins;
extern qv::PtrArray<SceneInfo> g_arQuickEnds;
extern qv::SceneLock g_csScenes;
extern int32_t g_nBeginCount;
extern int32_t g_nEndCount;
extern int32_t g_nBaseSceneCount;
extern int32_t g_nQuickMatchPos;
extern int32_t g_bSceneOpen;
extern int32_t g_bHaveThumbnails;
extern int32_t g_bDirectCapture;

// The feed (the exports call these with the dialog as target).
void AddSceneBegin(SceneFeedTarget& dlg, const SceneInfo& scene, const ThumbHeader* pHeader, const void* pBits);
void CompleteScene(SceneFeedTarget& dlg, const SceneInfo& scene);
void StoreSceneBitmap(int nPos, const ThumbHeader* pHeader, const void* pBits, int32_t nBytes);
void SetCaptureFileName(SceneFeedTarget& dlg, int nNumber, const char* pszPath);
// Removes trailing scenes whose end never came (all of them with bForce);
// returns the completed count.
int ClearIncompleteScenes(SceneFeedTarget& dlg, int bForce);
void ResetSceneCounters(int nCompletedScenes);
// Scene notifications waiting for the dialog (a quick scan, or a host thread
// of its own), oldest first.  The dialog, woken by WM_PRESCAN_NOTIFIED, takes
// the count waiting (from then on, a new notification wakes it again), then
// takes them one by one; false when none waits.
int BeginSceneNotifications();
bool TakeSceneNotification(int& nRow, int& bBegun);
void DropSceneNotifications();
void FreeSceneStore();
void FreeQuickScanQueues();

// Single fetches under the lock, for readers on the dialog's thread.
SceneRecord* FetchScene(int nPos);
bool FetchThumbnail(int nPos, const ThumbHeader*& pHeader, const uint8_t*& pBits);
int SceneTableSize();

// A new merge group, and freeing one with everything it holds.
MergeGroup* NewMergeGroup();
void FreeMergeGroup(MergeGroup* pGroup);
