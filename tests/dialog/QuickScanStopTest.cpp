// Stopping a quick scan whose scene messages have piled up in the dialog's
// queue: a host thread feeds every scene before the dialog's thread gets to
// pump, and the user's keys arrive behind them all.
#include "support/DialogFixture.h"

#include "ResourceIds.h"
#include "scenes/SceneStore.h"

#include <thread>

namespace qvtest {
namespace {

// lateBefore: late scene messages counted at an earlier stop; keys: key-downs queued behind the scenes.
struct StopCase { const char* name; int scenes, lateBefore; std::vector<UINT> keys; int rowsLeft; };
void PrintTo(const StopCase& c, std::ostream* os) { *os << c.name; }

// The first scene message finds Escape and stops the scan; ten late messages
// more are shown (as many as an earlier stop has not used up), and the next
// one drops the rest of the backlog with the scene it left open.
const StopCase kCases[] = {
    {"12 scenes", 12, 0, {VK_ESCAPE}, 5},
    {"100 scenes", 100, 0, {VK_ESCAPE}, 5},
    {"1000 scenes", 1000, 0, {VK_ESCAPE}, 5},
    {"a letter and a second Escape", 100, 0, {VK_ESCAPE, 'A', VK_ESCAPE}, 5},
    {"six late messages left over", 100, 6, {VK_ESCAPE}, 2},
};

class QuickScanStopTest : public DialogFixture, public testing::WithParamInterface<StopCase> {};

TEST_P(QuickScanStopTest, LeavesTheSameRowsWhateverTheBacklog)
{
    const StopCase& c = GetParam();
    SCOPED_TRACE(c.name);
    g_session.nQuickScanSpeed = 2;
    g_nLateSceneMsgs = c.lateBefore;
    OpenDialog();
    StartScan();
    std::thread host([&] {
        for (int i = 0; i < c.scenes; ++i) {
            uint32_t in = Tc(0, i / 60, i % 60, 0);
            SceneInfo begin = MakeScene(in, 0), end = MakeScene(in, in + 10);
            qvSetSceneDataBegin(&begin, nullptr, nullptr);
            qvSetSceneDataEnd(&end);
        }
    });
    host.join();
    HWND focus = GetFocus() ? GetFocus() : Wnd();
    for (UINT vk : c.keys) PostMessageA(focus, WM_KEYDOWN, vk, 1);
    ModalResponder noBox;
    PumpPending();

    noBox.Verify();
    ASSERT_TRUE(Dlg().IsWindow());
    EXPECT_EQ(Dlg().m_nState, PS_IDLE);
    EXPECT_EQ(RowCount(), c.rowsLeft);
    EXPECT_EQ(qvGetCurrentSceneNumber(), c.rowsLeft);
    ASSERT_EQ(SceneTableSize(), c.rowsLeft);
    for (int i = 0; i < c.rowsLeft; ++i)
        EXPECT_EQ(FetchScene(i)->dwTimeCodeOut, Tc(0, 0, i, 10)) << "row " << i << " left open";
    EXPECT_EQ(Host().Count(HOSTREQ_STOP_SCAN), 1);
    EXPECT_EQ(Host().Last(HOSTREQ_STOP_SCAN)->arg, 0);  // the count when the first scene saw Escape
    EXPECT_EQ(g_nLateSceneMsgs, 0);                     // the flush ran
}

// A host that answers the stop by reporting one more scene, and answers the
// position request that this brings (the open scene goes, the title follows)
// only after a feeding thread of its own has finished a call.  Were the scene
// lock held across either request, that thread could never finish.
class SceneLockTest : public DialogFixture {};

TEST_F(SceneLockTest, NoHostRequestWaitsOnIt)
{
    g_session.nQuickScanSpeed = 2;
    OpenDialog();
    StartScan();
    SceneInfo open = MakeScene(Tc(0, 0, 1, 0), 0);
    qvSetSceneDataBegin(&open, nullptr, nullptr);
    PumpPending();
    ASSERT_EQ(RowCount(), 1);
    bool inStop = false;
    DWORD feederWait = WAIT_FAILED;
    HANDLE feeder = nullptr;
    Host().OnRequest(HOSTREQ_GET_POSITION, [&](intptr_t) -> int32_t {
        if (!inStop || feeder) return 0;
        feeder = CreateThread(nullptr, 0, [](LPVOID) -> DWORD {
            SceneInfo end = MakeScene(Tc(0, 0, 1, 0), Tc(0, 0, 2, 0));
            qvSetSceneDataEnd(&end);
            return 0;
        }, nullptr, 0, nullptr);
        feederWait = WaitForSingleObject(feeder, 5000);
        return 0;
    });
    Host().OnRequest(HOSTREQ_STOP_SCAN, [&](intptr_t) -> int32_t {
        inStop = true;
        SceneInfo late = MakeScene(Tc(0, 0, 5, 0), 0);
        qvSetSceneDataBegin(&late, nullptr, nullptr);
        inStop = false;
        return 1;
    });
    PressKey(VK_ESCAPE);
    ASSERT_NE(feeder, nullptr);
    EXPECT_EQ(feederWait, WAIT_OBJECT_0);
    WaitForSingleObject(feeder, INFINITE);
    CloseHandle(feeder);
    EXPECT_EQ(RowCount(), 0);  // the scene left open at the stop went
}

INSTANTIATE_TEST_SUITE_P(Backlogs, QuickScanStopTest, testing::ValuesIn(kCases));

// Scenes from a host thread show as they come: while the scan still runs,
// every row is there, the newest one selected, in view and drawn.
TEST_F(SceneLockTest, RowsShowWhileTheScanRuns)
{
    g_session.nQuickScanSpeed = 2;
    OpenDialog(), StartScan();
    const int kLast = 19;  // more rows than the list shows at once
    std::thread([this] { for (int i = 0; i <= kLast; ++i) FeedScene(Tc(0, 0, i, 0), Tc(0, 0, i, 9), false); }).join();
    ASSERT_TRUE(PumpUntil([] { return qvGetCurrentSceneNumber() == kLast + 1; }));
    HWND list = Item(IDC_SCENE_LIST);
    int top = static_cast<int>(SendMessageA(list, LVM_GETTOPINDEX, 0, 0));
    EXPECT_TRUE(Dlg().m_nState == PS_SCANNING && RowCount() == kLast + 1 &&
                SendMessageA(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED) == kLast);
    EXPECT_TRUE(top <= kLast && kLast < top + SendMessageA(list, LVM_GETCOUNTPERPAGE, 0, 0) && !GetUpdateRect(list, nullptr, FALSE));
}

} // namespace
} // namespace qvtest
