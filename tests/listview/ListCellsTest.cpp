// The scene list's cells: the files column is as wide as its longest line and
// narrows when that row goes; the capped comment column keeps the width the
// user gave it; comments show without thumbnails; a click beside a check box
// marks nothing, also when a later repaint finds the box under its point.
#include "ResourceIds.h"
#include "scenes/SceneStore.h"
#include "support/DialogFixture.h"

#include <cstring>
#include <tuple>

using namespace qvtest;

namespace {

enum { COL_COMMENT = 4, COL_FILES = 5 };

class ListCellsTest : public DialogFixture {
protected:
    int List(UINT msg, WPARAM wp, LPARAM lp) { return (int)SendMessageA(Item(IDC_SCENE_LIST), msg, wp, lp); }
    int Width(int column) { return List(LVM_GETCOLUMNWIDTH, column, 0); }
};

} // namespace

TEST_F(ListCellsTest, FilesColumnFitsItsLongestLine)
{
    OpenWithScenes(3);
    Click(IDC_MARK_ALL);
    qvSetCapSceneFileName(1, ("C:\\Captures\\" + std::string(180, 'x') + ".avi").c_str());
    int line = List(LVM_GETSTRINGWIDTHA, 0, (LPARAM)CellText(1, COL_FILES).c_str());
    ASSERT_GT(line, 900);
    EXPECT_GE(Width(COL_FILES), line);
    ModalResponder responder;  // the row with it goes
    Dlg().m_listScenes.SelectRange(1, FALSE, 0);
    responder.ExpectMessageRes(IDS_ASK_DELETE_SCENES, IDYES);
    Click(IDC_DELETE_SCENES);
    responder.Verify();
    PumpPending();
    EXPECT_LT(Width(COL_FILES), line / 2);
}

TEST_F(ListCellsTest, CommentsShowAndTheCappedColumnKeepsTheUsersWidth)
{
    OpenDialog();
    StartScan();
    for (int i = 0; i < 2; ++i) FeedScene(Tc(0, 0, i, 0), Tc(0, 0, i, 9), false);  // no thumbnails
    PressKey(VK_ESCAPE);
    const std::tuple<int, std::string, int> edits[] = {{0, std::string(80, 'w'), 160}, {1, "pier", 400}};
    for (const auto& [row, comment, width] : edits) {
        std::strcpy(g_arScenes.GetAt(row)->szComment, comment.c_str());  // as the editor leaves it
        Dlg().m_listScenes.RefreshCommentAndFiles(row, row, TRUE, FALSE);
        EXPECT_EQ(CellText(row, COL_COMMENT), comment);
        EXPECT_EQ(Width(COL_COMMENT), width);
        List(LVM_SETCOLUMNWIDTH, COL_COMMENT, 400);  // the user widens it
    }
}

TEST_F(ListCellsTest, ClickBesideTheBoxMarksNothingLater)
{
    OpenWithScenes(2);
    List(LVM_SETCOLUMNWIDTH, COL_COMMENT, 3000);  // room to scroll sideways
    RECT cell, moved;
    ASSERT_TRUE(Dlg().m_listScenes.GetCellRect(0, 0, LVIR_BOUNDS, cell));
    LPARAM beside = MAKELPARAM(cell.left + 1, (cell.top + cell.bottom) / 2);  // the box sits in the middle
    List(WM_LBUTTONDOWN, MK_LBUTTON, beside);
    List(WM_LBUTTONUP, 0, beside);
    ASSERT_EQ(g_arScenes.GetAt(0)->bMarked, 0);
    List(LVM_SCROLL, (cell.right - cell.left) / 2 - 1, 0);  // the box comes under the point
    ASSERT_TRUE(Dlg().m_listScenes.GetCellRect(0, 0, LVIR_BOUNDS, moved));
    ASSERT_EQ((moved.left + moved.right) / 2, cell.left + 1);
    RedrawWindow(Item(IDC_SCENE_LIST), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    EXPECT_EQ(g_arScenes.GetAt(0)->bMarked, 0);
}
