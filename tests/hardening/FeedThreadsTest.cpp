// A quick scan fed from a host thread as fast as it can while the dialog's
// thread pumps, scrolls and clicks: every scene arrives once and in order,
// and closing the dialog under a running feed harms nothing (a feed call
// after the close finds the scene lock dead and returns).  A watchdog turns
// a deadlock into a failure instead of a hang.
#include "ResourceIds.h"
#include "scenes/SceneStore.h"
#include "session/Session.h"
#include "support/DialogFixture.h"

#include <atomic>
#include <thread>

using namespace qvtest;
using FeedThreadsTest = DialogFixture;

TEST_F(FeedThreadsTest, QuickScanFedFromAHostThread)
{
    // Scene i starts 4 seconds after scene i-1 and lasts two.
    auto in = [](int i) { return Tc(i / 900, i / 15 % 60, i * 4 % 60, 0); };
    std::atomic<int> fed{0};
    std::atomic<bool> stop{false};  // the watchdog ran out
    auto feed = [&](int scenes) {
        Thumbnail thumb = MakeThumbnail(30, 60, 90);
        for (fed = 0; fed < scenes && !stop; ++fed) {
            SceneInfo scene = MakeScene(in(fed), 0, static_cast<uint32_t>(thumb.bits.size()));
            qvSetSceneDataBegin(&scene, &thumb.header, thumb.bits.data());
            scene.dwTimeCodeOut = in(fed) + (2 << 8);
            qvSetSceneDataEnd(&scene);
        }
    };
    // Pumps until `done`, scrolling the list and clicking into it meanwhile.
    auto pumpWhileFeeding = [&](const std::function<bool()>& done) {
        int round = 0;
        return PumpUntil([&] {
            if (++round % 50 == 0) {
                SendMessageA(Item(IDC_SCENE_LIST), WM_VSCROLL, round % 100 ? SB_PAGEUP : SB_LINEDOWN, 0);
                PostMessageA(Item(IDC_SCENE_LIST), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(120, 40));
                PostMessageA(Item(IDC_SCENE_LIST), WM_LBUTTONUP, 0, MAKELPARAM(120, 40));
            }
            return done();
        }, 120000);
    };
    g_session.nQuickScanSpeed = 4;
    OpenDialog();
    StartScan();
    const int kScenes = 5000;
    std::thread host(feed, kScenes);
    bool done = pumpWhileFeeding([&] { return qvGetCurrentSceneNumber() == kScenes; });
    stop = !done;
    host.join();
    PumpPending();
    ASSERT_TRUE(done) << qvGetCurrentSceneNumber();
    EXPECT_EQ(RowCount(), kScenes);
    ASSERT_EQ(SceneTableSize(), kScenes);
    EXPECT_EQ(g_arThumbBits.GetSize(), kScenes);
    for (int i = 0; i < kScenes; ++i)
        ASSERT_TRUE(g_arScenes.GetAt(i)->dwTimeCodeIn == in(i) && g_arScenes.GetAt(i)->dwTimeCodeOut == in(i) + (2 << 8))
            << "scene " << i << " lost, duplicated or out of order";

    PressKey(VK_ESCAPE);
    Dlg().m_bModified = 0, qvForceToStopPreScan(1);
    OpenDialog();
    StartScan();
    host = std::thread(feed, 8000);
    EXPECT_TRUE(pumpWhileFeeding([&] { return qvGetCurrentSceneNumber() >= 300; }));
    ModalResponder responder;
    responder.ExpectMessageRes(IDS_ASK_SAVE_CHANGES, IDNO);
    qvForceToStopPreScan(1);
    responder.Verify();
    EXPECT_FALSE(IsWindow(Wnd()));
    // Every later feed call returns; none waits on the gone lock.
    EXPECT_TRUE(PumpUntil([&] { return fed == 8000; }, 120000)) << fed;
    stop = true;
    host.join();
    EXPECT_EQ(SceneTableSize(), 0);
}
