// Memory running out at each allocation in turn of a scan, an open, a merge,
// a split and a capture: the operation ends quietly and everything the dialog
// shows agrees with the scene table.
#include "ResourceIds.h"
#include "platform/BoundedCopy.h"
#include "platform/MemoryBlock.h"
#include "scenes/SceneStore.h"
#include "support/DialogFixture.h"
#include "support/TestEnvironment.h"

#include <functional>

using namespace qvtest;

namespace {

class FaultSweepTest : public DialogFixture {
protected:
    void TearDown() override
    {
        qv::FailBlockAllocationAt(0);
        DialogFixture::TearDown();
    }
    void Reopen(int scenes)
    {
        if (g_session.pDialog && Dlg().IsWindow()) {
            Dlg().m_bModified = 0;
            qvForceToStopPreScan(1);  // closes as the host closes it: the table goes too
            PumpPending();
        }
        Host().Reset();
        OpenWithScenes(scenes);
    }
};

} // namespace

TEST_F(FaultSweepTest, EachAllocationFailingLeavesTheListConsistent)
{
    const std::string path = MakeTempDir("FaultLists") + "\\six.psf";
    auto command = [&](int id) { SendMessageA(Wnd(), WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), 0), PumpPending(); };
    struct Op {
        const char* what;
        std::function<void()> prepare, run;
        int fewest;  // scenes left at the least
    } ops[] = {
        {"scan", [&] { Reopen(0), StartScan(); },
         [&] { for (int i = 0; i < 4; ++i) FeedScene(Tc(0, 3, i, 0), Tc(0, 3, i, 20)); PressKey(VK_ESCAPE); }, 3},
        {"open", [&] { Reopen(6), qv::CopyBounded(g_session.szSceneListFile, path.c_str()), Dlg().WriteSceneListFile(); },
         [&] { Dlg().OpenChosenSceneList(); }, 0},
        {"merge", [&] { Reopen(6), MarkRow(2), SelectRows(1, 4); }, [&] { command(IDC_MERGE_SCENES); }, 6},
        {"split", [&] { Reopen(6), MarkRow(2), SelectRows(1, 4), command(IDC_MERGE_SCENES), SelectRow(1); },
         [&] { command(IDC_SPLIT_SCENE); }, 3},
        {"capture", [&] { Reopen(3), MarkRow(1), MarkRow(2); }, [&] { command(IDC_CAPTURE); }, 3},
    };
    for (const Op& op : ops) {
        op.prepare();
        long before = qv::BlockAllocationCount();
        op.run();
        long total = qv::BlockAllocationCount() - before;
        ASSERT_GT(total, 0) << op.what;
        for (long n = 1; n <= total; ++n) {
            SCOPED_TRACE(std::string(op.what) + ", allocation " + std::to_string(n) + " failed");
            op.prepare();
            qv::FailBlockAllocationAt(n);
            op.run();
            qv::FailBlockAllocationAt(0);
            int scenes = qvGetCurrentSceneNumber(), marked = 0;
            EXPECT_EQ(Dlg().m_nState, PS_IDLE);
            EXPECT_TRUE(RowCount() == scenes && SceneTableSize() == scenes && scenes >= op.fewest);
            EXPECT_EQ(g_arThumbBits.GetSize(), g_arThumbHeaders.GetSize());
            for (int i = 0; i < scenes; ++i) marked += g_arScenes.GetAt(i)->bMarked == 1;
            EXPECT_EQ(Dlg().m_listScenes.m_nMarkedCount, marked);
            // A capture that cannot build its whole chain of scenes asks the host for nothing.
            if (Host().Count(HOSTREQ_CAPTURE_SCENES)) EXPECT_EQ(Host().Last(HOSTREQ_CAPTURE_SCENES)->spans.size(), 2u);
        }
    }
}
