// Merge and split (nested ones too), mark all, delete and clear, driven
// through the dialog's commands with the confirmations answered.
#include "ResourceIds.h"
#include "platform/ResourceLib.h"
#include "scenes/SceneStore.h"
#include "session/Session.h"
#include "support/DialogFixture.h"

#include <commctrl.h>
#include <cstring>

using namespace qvtest;

namespace {

class EditCommandsTest : public DialogFixture {
protected:
    void ScanScenes(int n)
    {
        OpenDialog();
        StartScan();
        for (int i = 0; i < n; ++i) FeedScene(Tc(0, 1, i, 0), Tc(0, 1, i, 20));
        PressKey(VK_ESCAPE);
    }
    void Select(int from, int to)
    {
        Dlg().m_listScenes.m_bRangeSelected = from != to;
        Dlg().m_listScenes.SelectRange(from, TRUE, to);
    }
    void Command(int id)
    {
        SendMessageA(Wnd(), WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), 0);
        PumpPending();
    }
    void Mark(std::initializer_list<int> rows)
    {
        for (int r : rows) g_arScenes.GetAt(r)->bMarked = 1;
        Dlg().m_listScenes.m_nMarkedCount = static_cast<int>(rows.size());
    }
    uint32_t In(int row) { return g_arScenes.GetAt(row)->dwTimeCodeIn; }
    int MarkedRecords()
    {
        int n = 0;
        for (int i = 0; i < g_arScenes.GetSize(); ++i) n += g_arScenes.GetAt(i)->bMarked == 1;
        return n;
    }
};

} // namespace

TEST_F(EditCommandsTest, MergeMakesOneSceneAndSplitGivesThemBack)
{
    ScanScenes(6);
    Mark({3, 4});
    std::strcpy(g_arScenes.GetAt(3)->szComment, "kept for later");
    Select(2, 4);
    Command(IDC_MERGE_SCENES);
    ASSERT_EQ(qvGetCurrentSceneNumber(), 4);
    EXPECT_EQ(RowCount(), 4);
    EXPECT_EQ(In(2), Tc(0, 1, 2, 0));
    EXPECT_EQ(g_arScenes.GetAt(2)->dwTimeCodeOut, Tc(0, 1, 4, 20));
    EXPECT_EQ(g_arScenes.GetAt(2)->bMerged, 1);
    EXPECT_EQ(g_arScenes.GetAt(2)->bMarked, 0);
    EXPECT_EQ(In(3), Tc(0, 1, 5, 0));  // the former scene 5 moved up
    EXPECT_EQ(Dlg().m_listScenes.m_nMarkedCount, 0);
    EXPECT_TRUE(Visible(IDC_SPLIT_SCENE));
    EXPECT_TRUE(Enabled(IDC_SPLIT_SCENE));
    EXPECT_FALSE(Visible(IDC_MERGE_SCENES));

    Command(IDC_SPLIT_SCENE);
    ASSERT_EQ(qvGetCurrentSceneNumber(), 6);
    EXPECT_EQ(RowCount(), 6);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(In(i), Tc(0, 1, i, 0)) << i;
    EXPECT_EQ(g_arScenes.GetAt(2)->dwTimeCodeOut, Tc(0, 1, 2, 20));
    EXPECT_STREQ(g_arScenes.GetAt(3)->szComment, "kept for later");
    EXPECT_EQ(Dlg().m_listScenes.m_nMarkedCount, MarkedRecords());
    EXPECT_EQ(MarkedRecords(), 2);
    EXPECT_TRUE(g_arMergeGroups.IsEmpty());
    EXPECT_FALSE(Visible(IDC_SPLIT_SCENE));
}

TEST_F(EditCommandsTest, NestedMergesSplitInOneCommand)
{
    ScanScenes(4);
    Select(1, 2);  // B+C into X
    Command(IDC_MERGE_SCENES);
    Select(0, 1);  // A with X, X not first
    Command(IDC_MERGE_SCENES);
    ASSERT_EQ(qvGetCurrentSceneNumber(), 2);
    Select(0, 0);
    Command(IDC_SPLIT_SCENE);
    ASSERT_EQ(qvGetCurrentSceneNumber(), 4);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(In(i), Tc(0, 1, i, 0)) << i;
        EXPECT_EQ(g_arScenes.GetAt(i)->bMerged, 0) << i;
    }
    EXPECT_TRUE(g_arMergeGroups.IsEmpty());
}

TEST_F(EditCommandsTest, MergingAMergedSceneExtendsItsGroup)
{
    ScanScenes(3);
    Select(0, 1);
    Command(IDC_MERGE_SCENES);
    Select(0, 1);  // the merged scene with C
    Command(IDC_MERGE_SCENES);
    EXPECT_EQ(g_arMergeGroups.GetSize(), 1);
    EXPECT_EQ(g_arMergeGroups.GetAt(0)->nCount, 3);
    Select(0, 0);
    Command(IDC_SPLIT_SCENE);
    EXPECT_EQ(qvGetCurrentSceneNumber(), 3);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(In(i), Tc(0, 1, i, 0)) << i;
}

TEST_F(EditCommandsTest, MarkAllAndUnmarkAll)
{
    ScanScenes(3);
    Command(IDC_MARK_ALL);
    EXPECT_EQ(MarkedRecords(), 3);
    EXPECT_EQ(Dlg().m_listScenes.m_nMarkedCount, 3);
    char text[64];
    GetWindowTextA(Item(IDC_MARK_ALL), text, sizeof text);
    EXPECT_EQ(std::string(text), qv::LoadResString(IDS_UNMARK_ALL));
    EXPECT_TRUE(Enabled(IDC_CAPTURE));
    Command(IDC_MARK_ALL);
    EXPECT_EQ(MarkedRecords(), 0);
    EXPECT_EQ(Dlg().m_listScenes.m_nMarkedCount, 0);
    GetWindowTextA(Item(IDC_MARK_ALL), text, sizeof text);
    EXPECT_EQ(std::string(text), qv::LoadResString(IDS_MARK_ALL));
}

TEST_F(EditCommandsTest, DeleteKeepsTheMarkedCountAndSelectsWhatFollows)
{
    ScanScenes(10);
    Mark({0, 3, 4, 7, 9});
    Select(2, 4);
    ModalResponder responder;
    responder.ExpectMessageRes(IDS_ASK_DELETE_SCENES, IDYES);
    Command(IDC_DELETE_SCENES);
    responder.Verify();
    EXPECT_EQ(qvGetCurrentSceneNumber(), 7);
    EXPECT_EQ(RowCount(), 7);
    EXPECT_EQ(Dlg().m_listScenes.m_nMarkedCount, 3);
    EXPECT_EQ(In(2), Tc(0, 1, 5, 0));
    int first, last;
    Dlg().m_listScenes.GetSelRange(first, last);
    EXPECT_EQ(first, 2);
}

TEST_F(EditCommandsTest, DeletingTheLastRowsSelectsTheNewLast)
{
    ScanScenes(6);
    Select(4, 5);
    ModalResponder responder;
    responder.ExpectMessageRes(IDS_ASK_DELETE_SCENES, IDYES);
    Command(IDC_DELETE_SCENES);
    responder.Verify();
    int first, last;
    Dlg().m_listScenes.GetSelRange(first, last);
    EXPECT_EQ(first, 3);
    EXPECT_EQ(qvGetCurrentSceneNumber(), 4);
}

TEST_F(EditCommandsTest, DeletingEverythingAsksOnceAndEmptiesTheList)
{
    ScanScenes(3);
    Select(0, 2);
    {
        ModalResponder responder;
        responder.ExpectMessageRes(IDS_ASK_DELETE_SCENES, IDNO);
        Command(IDC_DELETE_SCENES);
        responder.Verify();
    }
    EXPECT_EQ(qvGetCurrentSceneNumber(), 3);  // No changes nothing
    ModalResponder responder;
    responder.ExpectMessageRes(IDS_ASK_DELETE_SCENES, IDYES);
    Command(IDC_DELETE_SCENES);
    responder.Verify();
    EXPECT_EQ(qvGetCurrentSceneNumber(), 0);
    EXPECT_EQ(RowCount(), 0);
    EXPECT_EQ(SceneTableSize(), 0);
    EXPECT_FALSE(Enabled(IDC_SAVE_LIST));
    EXPECT_EQ(Dlg().m_bModified, 0);
}

TEST_F(EditCommandsTest, ViewSwitchRebuildsTheListBothWays)
{
    ScanScenes(5);
    Select(1, 3);
    std::string datesBefore = CellText(2, 3);
    Command(IDC_VIEW_MODE);
    EXPECT_FALSE(Dlg().m_listScenes.m_bShowThumbnails);
    EXPECT_EQ(SendMessageA(Item(IDC_SCENE_LIST), LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0),
              LVS_EX_FULLROWSELECT | LVS_EX_HEADERDRAGDROP | LVS_EX_GRIDLINES);
    EXPECT_EQ(RowCount(), 5);
    EXPECT_EQ(CellText(2, 1), "00:01:02:00");
    EXPECT_EQ(CellText(2, 2), "00:01:02:20");
    EXPECT_EQ(CellText(2, 3), "2003/ 7/ 4  15:06:09");
    EXPECT_FALSE(Enabled(IDC_PREVIEW));  // no preview in the compact view
    int first, last;
    Dlg().m_listScenes.GetSelRange(first, last);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(last, 3);
    Command(IDC_VIEW_MODE);
    EXPECT_TRUE(Dlg().m_listScenes.m_bShowThumbnails);
    EXPECT_EQ(CellText(2, 3), datesBefore);
    EXPECT_EQ(CellText(2, 1), "");  // the thumbnail's column holds no text
    Dlg().m_listScenes.GetSelRange(first, last);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(last, 3);
    EXPECT_EQ(SendMessageA(Item(IDC_SCENE_LIST), LVM_GETSELECTEDCOUNT, 0, 0), 3);
}
