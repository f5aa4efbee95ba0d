// A host thread feeding a quick scan as fast as it can while the dialog's
// thread pumps, scrolls and clicks: every scene arrives once, a stop in the
// middle leaves an idle, consistent list, and closing the dialog under a
// running feed harms nothing.  Each run has a watchdog: a deadlock fails the
// test instead of hanging it.
#include "ResourceIds.h"
#include "scenes/SceneStore.h"
#include "session/Session.h"
#include "support/DialogFixture.h"

#include <atomic>
#include <thread>

using namespace qvtest;

namespace {

const DWORD kWatchdogMs = 240000;

class FeedThreadsTest : public DialogFixture {
protected:
    void SetUp() override
    {
        DialogFixture::SetUp();
        g_session.nQuickScanSpeed = 4;
        OpenDialog();
        StartScan();
    }
    void TearDown() override
    {
        m_stop = true;
        if (m_feeder.joinable()) m_feeder.join();
        DialogFixture::TearDown();
    }
    // Scene i starts 4 seconds after scene i-1 and lasts two.
    static uint32_t In(int i) { return Tc(i / 900, i / 15 % 60, i * 4 % 60, 0); }
    // `ahead`: how many scenes the host may run ahead of the rows the
    // dialog completed (0: as fast as it can).
    void StartFeeder(int scenes, int ahead = 0)
    {
        m_fed = 0;
        m_feeder = std::thread([this, scenes, ahead] {
            Thumbnail thumb = MakeThumbnail(30, 60, 90);
            for (int i = 0; i < scenes && !m_stop; ++i) {
                while (ahead && !m_stop && i - qvGetCurrentSceneNumber() > ahead) Sleep(1);
                SceneInfo begin = MakeScene(In(i), 0, static_cast<uint32_t>(thumb.bits.size()));
                qvSetSceneDataBegin(&begin, &thumb.header, thumb.bits.data());
                SceneInfo end = MakeScene(In(i), In(i) + (2 << 8));
                qvSetSceneDataEnd(&end);
                ++m_fed;
            }
        });
    }
    // What a user does meanwhile: scroll the list and click into it.
    void Fidget(int round)
    {
        HWND list = Item(IDC_SCENE_LIST);
        SendMessageA(list, WM_VSCROLL, round % 2 ? SB_PAGEUP : SB_LINEDOWN, 0);
        PostMessageA(list, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(120, 40));
        PostMessageA(list, WM_LBUTTONUP, 0, MAKELPARAM(120, 40));
    }
    bool PumpWhileFeeding(const std::function<bool()>& done)
    {
        int round = 0;
        return PumpUntil([&] {
            if (++round % 50 == 0) Fidget(round / 50);
            return done();
        }, kWatchdogMs);
    }

    std::thread m_feeder;
    std::atomic<bool> m_stop{false};
    std::atomic<int> m_fed{0};
};

} // namespace

TEST_F(FeedThreadsTest, ThirtyThousandScenesArriveOnceEach)
{
    const int kScenes = 30000;
    StartFeeder(kScenes);
    bool done = PumpWhileFeeding([&] { return qvGetCurrentSceneNumber() == kScenes; });
    m_stop = !done;
    m_feeder.join();
    PumpPending();
    ASSERT_TRUE(done) << "watchdog: " << qvGetCurrentSceneNumber() << " of " << kScenes;
    EXPECT_EQ(RowCount(), kScenes);
    ASSERT_EQ(SceneTableSize(), kScenes);
    for (int i = 0; i < kScenes; ++i) {
        const SceneRecord* r = g_arScenes.GetAt(i);
        if (r->dwTimeCodeIn != In(i) || r->dwTimeCodeOut != In(i) + (2 << 8)) {
            ADD_FAILURE() << "scene " << i << " lost, duplicated or out of order";
            break;
        }
    }
    EXPECT_EQ(g_arThumbBits.GetSize(), kScenes);
    PressKey(VK_ESCAPE);
    EXPECT_EQ(Dlg().m_nState, PS_IDLE);
}

TEST_F(FeedThreadsTest, EscapeInTheMiddleEndsIdleAndConsistent)
{
    StartFeeder(8000, 200);
    ASSERT_TRUE(PumpWhileFeeding([&] { return qvGetCurrentSceneNumber() >= 1500; }));
    PressKey(VK_ESCAPE);  // through the queue, behind the scene messages
    m_feeder.join();      // the host may feed on after the stop
    ASSERT_TRUE(PumpUntil([&] { return Dlg().m_nState == PS_IDLE; }, kWatchdogMs));
    PumpFor(200);
    EXPECT_EQ(Dlg().m_nState, PS_IDLE);
    EXPECT_EQ(RowCount(), qvGetCurrentSceneNumber());
    EXPECT_EQ(SceneTableSize(), qvGetCurrentSceneNumber());
    for (int i = 0; i < SceneTableSize(); ++i) ASSERT_NE(g_arScenes.GetAt(i)->dwTimeCodeOut, 0u) << i;
}

// The feed and the close meet at the scene lock.  Every feed call enters it
// through a gate that also counts the callers inside; closing the dialog
// marks the lock dead under the same gate and then waits until that count
// is zero before the lock goes.  So a feed call either finishes before the
// lock goes or finds it dead and returns: it never enters a deleted lock.
TEST_F(FeedThreadsTest, ClosingUnderARunningFeedHarmsNothing)
{
    StartFeeder(8000);
    ASSERT_TRUE(PumpWhileFeeding([&] { return qvGetCurrentSceneNumber() >= 300; }));
    ModalResponder responder;
    responder.ExpectMessageRes(IDS_ASK_SAVE_CHANGES, IDNO);
    qvForceToStopPreScan(1);
    responder.Verify();
    EXPECT_FALSE(IsWindow(Wnd()));
    int fedAtClose = m_fed;
    PumpUntil([&] { return m_fed == 8000; }, kWatchdogMs);  // the host feeds on into nothing
    m_stop = true;
    m_feeder.join();
    EXPECT_GE(m_fed.load(), fedAtClose);
    EXPECT_EQ(qvGetCurrentSceneNumber(), 0);
    EXPECT_EQ(SceneTableSize(), 0);
    // A new dialog scans as before.
    OpenDialog();
    StartScan();
    FeedScene(Tc(2, 0, 0, 0), Tc(2, 0, 0, 10));
    EXPECT_TRUE(PumpUntil([&] { return RowCount() == 1; }));
}
