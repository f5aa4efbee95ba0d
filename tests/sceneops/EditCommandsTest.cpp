// Merge and split (nested ones too), mark all, delete and the view switch,
// driven through the dialog's commands with marks set in the check boxes.
#include "ResourceIds.h"
#include "scenes/SceneStore.h"
#include "support/DialogFixture.h"

#include <commctrl.h>

using namespace qvtest;

namespace {

class EditCommandsTest : public DialogFixture {
protected:
    // A scan of `n` scenes (see OpenWithScenes), with `marks` ticked.
    void Scan(int n, bool pictures, const std::vector<int>& marks)
    {
        if (pictures) OpenWithScenes(n);
        else {
            OpenDialog();
            StartScan();
            for (int i = 0; i < n; ++i) FeedScene(Tc(0, 0, 10 * i, 0), Tc(0, 0, 10 * i + 5, 0), false);
            PressKey(VK_ESCAPE);
        }
        for (int r : marks) MarkRow(r);
    }
    void Command(int id, int from = -1, int to = -1)
    {
        if (from >= 0) SelectRows(from, to);
        SendMessageA(Wnd(), WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), 0);
        PumpPending();
    }
    SceneRecord& Scene(int i) { return *g_arScenes.GetAt(i); }
    int Marked() { return Dlg().m_listScenes.m_nMarkedCount; }
    int FirstSelected()
    {
        int first, last;
        Dlg().m_listScenes.GetSelRange(first, last);
        return first;
    }
};

} // namespace

// Each case merges ranges in turn, then splits every merged row again: the
// scan comes back whole, with its marks and comments.
TEST_F(EditCommandsTest, MergeThenSplitGivesTheScanBack)
{
    struct Case {
        const char* what;
        int scenes;
        bool pictures;
        std::vector<int> marks;
        std::vector<std::pair<int, int>> merges;
        int rows, marked, groups;  // after the merges
        int mergedRow, lastScene;  // the row the last merge made and the scene it ends with
    } cases[] = {
        {"one range", 4, true, {}, {{1, 2}}, 3, 0, 1, 1, 2},
        {"a mark on a scene taken in is dropped", 4, true, {2}, {{1, 2}}, 3, 0, 1, 1, 2},
        {"marks outside and on the first stay", 4, true, {1, 3}, {{1, 2}}, 3, 2, 1, 1, 2},
        {"scenes without pictures", 3, false, {0}, {{0, 2}}, 1, 1, 1, 0, 2},
        {"two separate groups", 5, true, {}, {{0, 1}, {1, 2}}, 3, 0, 2, 1, 3},
        {"a merged scene merged into one before it", 4, true, {}, {{1, 2}, {0, 1}}, 2, 0, 2, 0, 2},
        {"a merged scene extended by the next", 3, true, {}, {{0, 1}, {0, 1}}, 1, 0, 1, 0, 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Scan(c.scenes, c.pictures, c.marks);
        std::strcpy(Scene(c.scenes - 1).szComment, "kept for later");
        for (auto [from, to] : c.merges) Command(IDC_MERGE_SCENES, from, to);
        ASSERT_EQ(qvGetCurrentSceneNumber() * 10 + RowCount(), c.rows * 11);
        EXPECT_EQ(g_arMergeGroups.GetSize(), c.groups);
        EXPECT_EQ(Marked(), c.marked);
        EXPECT_EQ(Enabled(IDC_CAPTURE), c.marked > 0);
        EXPECT_EQ(Scene(c.mergedRow).dwTimeCodeOut, Tc(0, 0, 10 * c.lastScene + 5, 0));
        EXPECT_TRUE(Visible(IDC_SPLIT_SCENE) && Enabled(IDC_SPLIT_SCENE) && !Visible(IDC_MERGE_SCENES));
        EXPECT_TRUE(Dlg().m_bModified);

        for (int row = c.rows - 1; row >= 0; --row)
            if (Scene(row).bMerged) Command(IDC_SPLIT_SCENE, row, row);
        ASSERT_EQ(qvGetCurrentSceneNumber() * 10 + RowCount(), c.scenes * 11);
        for (int i = 0; i < c.scenes; ++i) {
            SceneRecord& s = Scene(i);
            EXPECT_EQ(std::vector<uint32_t>({s.dwTimeCodeIn, s.dwTimeCodeOut, uint32_t(s.bMerged)}),
                      std::vector<uint32_t>({Tc(0, 0, 10 * i, 0), Tc(0, 0, 10 * i + 5, 0), 0})) << i;
        }
        EXPECT_STREQ(Scene(c.scenes - 1).szComment, "kept for later");
        EXPECT_EQ(Marked(), static_cast<int>(c.marks.size()));
        EXPECT_TRUE(g_arMergeGroups.IsEmpty() && !Visible(IDC_SPLIT_SCENE));
        TearDown();
        SetUp();
    }
}

TEST_F(EditCommandsTest, DeleteAsksThenKeepsTheMarksAndSelectsWhatFollows)
{
    struct Case {
        const char* what;
        int scenes;
        std::vector<int> marks;
        int from, to, answer;
        int rows, marked, selected;  // selected: the first selected row after
    } cases[] = {
        {"rows in the middle", 6, {0, 3, 4}, 2, 4, IDYES, 3, 1, 2},
        {"the last rows", 6, {}, 4, 5, IDYES, 4, 0, 3},
        {"No changes nothing", 3, {1}, 0, 2, IDNO, 3, 1, 0},
        {"everything", 3, {1}, 0, 2, IDYES, 0, 0, -1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Scan(c.scenes, true, c.marks);
        ModalResponder responder;
        responder.ExpectMessageRes(IDS_ASK_DELETE_SCENES, c.answer);
        Command(IDC_DELETE_SCENES, c.from, c.to);
        responder.Verify();
        ASSERT_EQ(qvGetCurrentSceneNumber() * 10 + RowCount(), c.rows * 11);
        EXPECT_EQ(Marked(), c.marked);
        if (c.rows > 0) EXPECT_EQ(FirstSelected(), c.selected);
        if (c.answer == IDYES && c.rows > c.from) EXPECT_EQ(Scene(c.from).dwTimeCodeIn, Tc(0, 0, 10 * (c.to + 1), 0));
        EXPECT_TRUE(Enabled(IDC_SAVE_LIST) == (c.rows > 0) && (Dlg().m_bModified != 0) == (c.rows > 0));
        if (c.rows == 0) EXPECT_EQ(SceneTableSize(), 0);
        EXPECT_EQ(g_arThumbHeaders.GetSize(), g_arThumbBits.GetSize());  // each row keeps its own picture
        TearDown();
        SetUp();
    }
}

// Mark all, then unmark all; the view switched to compact (pressed with the
// mouse) and back, keeping the selection.
TEST_F(EditCommandsTest, MarkAllAndTheViewSwitch)
{
    Scan(5, true, {1});
    for (bool all : {true, false}) {
        Command(IDC_MARK_ALL);
        EXPECT_EQ(Scene(0).bMarked + Scene(1).bMarked + Scene(4).bMarked + Marked(), all ? 8 : 0);
    }
    SelectRows(1, 3);
    for (bool compact : {true, false}) {
        Click(IDC_VIEW_MODE);
        EXPECT_EQ(CellText(2, 1), compact ? "00:00:20:00" : "");  // no text over the thumbnail
        EXPECT_EQ(SendMessageA(Item(IDC_SCENE_LIST), LVM_GETSELECTEDCOUNT, 0, 0), 3);
    }
}
