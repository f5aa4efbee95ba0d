// Memory running out at every single allocation of a scan, of opening a list
// file, of a merge and of a split: each operation ends quietly and the
// dialog stays consistent (rows, scene count, marked count, thumbnails in
// step with the scenes).  And a scan, save, open, merge, split and close
// cycle, repeated, leaves the process's memory flat.  (A save that cannot
// replace the old file is covered where list files are tested: the old file
// stays as it was.)
#include "ResourceIds.h"
#include "platform/BoundedCopy.h"
#include "platform/MemoryBlock.h"
#include "scenes/SceneStore.h"
#include "session/Session.h"
#include "support/DialogFixture.h"
#include "support/ProcessMemory.h"
#include "support/TestEnvironment.h"

#include <cstring>

using namespace qvtest;

namespace {

class FaultSweepTest : public DialogFixture {
protected:
    void TearDown() override
    {
        qv::FailBlockAllocationAt(0);
        DialogFixture::TearDown();
    }
    void Reopen()
    {
        if (g_session.pDialog && Dlg().IsWindow()) {
            Dlg().m_bModified = 0;
            qvForceToStopPreScan(1);  // closes as the host closes it: the table goes too
        }
        PumpPending();
        OpenDialog();
    }
    void Scan(int scenes)
    {
        StartScan();
        for (int i = 0; i < scenes; ++i) FeedScene(Tc(0, 3, i, 0), Tc(0, 3, i, 20));
        PressKey(VK_ESCAPE);
    }
    // Everything the dialog shows agrees with the scene table.
    void ExpectConsistent(const char* what, long n)
    {
        SCOPED_TRACE(std::string(what) + ", allocation " + std::to_string(n) + " failed");
        int scenes = qvGetCurrentSceneNumber();
        EXPECT_EQ(Dlg().m_nState, PS_IDLE);
        EXPECT_EQ(RowCount(), scenes);
        EXPECT_EQ(SceneTableSize(), scenes);
        EXPECT_EQ(g_arThumbBits.GetSize(), g_arThumbHeaders.GetSize());
        int marked = 0;
        for (int i = 0; i < SceneTableSize(); ++i) {
            const SceneRecord* r = g_arScenes.GetAt(i);
            EXPECT_NE(r->dwTimeCodeOut, 0u) << i;
            marked += r->bMarked == 1;
        }
        EXPECT_EQ(Dlg().m_listScenes.m_nMarkedCount, marked);
    }
    // Allocations one clean run of `op` makes.
    long Allocations(const std::function<void()>& op)
    {
        long before = qv::BlockAllocationCount();
        op();
        return qv::BlockAllocationCount() - before;
    }
};

} // namespace

TEST_F(FaultSweepTest, ScanWithMemoryRunningOut)
{
    OpenDialog();
    long total = Allocations([&] { Scan(4); });
    ASSERT_GT(total, 8);
    for (long n = 1; n <= total; ++n) {
        Reopen();
        StartScan();
        qv::FailBlockAllocationAt(n);
        for (int i = 0; i < 4; ++i) FeedScene(Tc(0, 3, i, 0), Tc(0, 3, i, 20));
        qv::FailBlockAllocationAt(0);
        PressKey(VK_ESCAPE);
        ExpectConsistent("scan", n);
        EXPECT_GE(qvGetCurrentSceneNumber(), 3);  // one scene at most is lost
    }
}

TEST_F(FaultSweepTest, OpeningAListFileWithMemoryRunningOut)
{
    std::string dir = MakeTempDir("FaultLists");
    std::string path = dir + "\\four.psf";
    OpenDialog();
    Scan(4);
    qv::CopyBounded(g_session.szSceneListFile, path.c_str());
    ASSERT_EQ(Dlg().WriteSceneListFile(), 1);
    long total = Allocations([&] { Dlg().OpenChosenSceneList(); });
    ASSERT_EQ(qvGetCurrentSceneNumber(), 4);
    for (long n = 1; n <= total; ++n) {
        Reopen();
        qv::CopyBounded(g_session.szSceneListFile, path.c_str());
        qv::FailBlockAllocationAt(n);
        Dlg().OpenChosenSceneList();
        qv::FailBlockAllocationAt(0);
        ExpectConsistent("open", n);
        EXPECT_LT(qvGetCurrentSceneNumber(), 4);  // the list stops where memory ran out
    }
}

TEST_F(FaultSweepTest, MergeAndSplitWithMemoryRunningOut)
{
    auto select = [&](int from, int to) {
        Dlg().m_listScenes.m_bRangeSelected = from != to;
        Dlg().m_listScenes.SelectRange(from, TRUE, to);
    };
    auto command = [&](int id) {
        SendMessageA(Wnd(), WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), 0);
        PumpPending();
    };
    auto prepare = [&] {
        Reopen();
        Scan(6);
        g_arScenes.GetAt(2)->bMarked = 1;
        Dlg().m_listScenes.m_nMarkedCount = 1;
        select(1, 4);
    };
    prepare();
    long merge = Allocations([&] { command(IDC_MERGE_SCENES); });
    select(1, 1);
    long split = Allocations([&] { command(IDC_SPLIT_SCENE); });
    ASSERT_EQ(qvGetCurrentSceneNumber(), 6);
    for (long n = 1; n <= merge; ++n) {
        prepare();
        qv::FailBlockAllocationAt(n);
        command(IDC_MERGE_SCENES);
        qv::FailBlockAllocationAt(0);
        ExpectConsistent("merge", n);
        EXPECT_EQ(qvGetCurrentSceneNumber(), 6);  // a merge that cannot copy changes nothing
    }
    for (long n = 1; n <= split; ++n) {
        prepare();
        command(IDC_MERGE_SCENES);
        select(1, 1);
        qv::FailBlockAllocationAt(n);
        command(IDC_SPLIT_SCENE);
        qv::FailBlockAllocationAt(0);
        ExpectConsistent("split", n);
        EXPECT_GE(qvGetCurrentSceneNumber(), 3);
    }
}

TEST_F(FaultSweepTest, FiftyFullCyclesLeaveMemoryFlat)
{
    std::string dir = MakeTempDir("Cycles");
    std::string path = dir + "\\cycle.psf";
    auto cycle = [&] {
        Host().Reset();  // the scripted host keeps every request it saw
        Reopen();
        Scan(20);
        qv::CopyBounded(g_session.szSceneListFile, path.c_str());
        Dlg().WriteSceneListFile();
        Dlg().OpenChosenSceneList();
        Dlg().m_listScenes.m_bRangeSelected = TRUE;
        Dlg().m_listScenes.SelectRange(2, TRUE, 8);
        SendMessageA(Wnd(), WM_COMMAND, MAKEWPARAM(IDC_MERGE_SCENES, BN_CLICKED), 0);
        Dlg().m_listScenes.SelectRange(2, FALSE, 0);
        SendMessageA(Wnd(), WM_COMMAND, MAKEWPARAM(IDC_SPLIT_SCENE, BN_CLICKED), 0);
        PumpPending();
        EXPECT_EQ(qvGetCurrentSceneNumber(), 20);
        Dlg().m_bModified = 0;
        qvForceToStopPreScan(1);
        PumpPending();
    };
    for (int i = 0; i < 10; ++i) cycle();  // first uses of fonts, bitmaps and the heap
    uint64_t before = PrivateBytes();
    for (int i = 0; i < 50; ++i) cycle();
    uint64_t after = PrivateBytes();
    EXPECT_LE(after, before + before / 50) << before << " -> " << after << " bytes";
}
