// The scene list as the user meets it: rows and their texts, column widths,
// clicks and Shift ranges, marks toggled in the check box (and a stale click
// beside it), the header's rules, the comment editor, and what is drawn (read
// back pixel by pixel).
#include "ResourceIds.h"
#include "listview/CommentEdit.h"
#include "platform/ResourceLib.h"
#include "scenes/SceneStore.h"
#include "session/Session.h"
#include "support/DialogFixture.h"

#include <commctrl.h>
#include <cstring>
#include <functional>
#include <tuple>

using namespace qvtest;

namespace {

enum { COL_COMMENT = 4, COL_FILES = 5 };

class SceneListTest : public DialogFixture {
protected:
    HWND List() { return Item(IDC_SCENE_LIST); }
    int ListMsg(UINT msg, WPARAM wp, LPARAM lp) { return (int)SendMessageA(List(), msg, wp, lp); }
    int Width(int column) { return ListMsg(LVM_GETCOLUMNWIDTH, column, 0); }
    POINT Centre(int row, int column, int dx = 0, int dy = 0)
    {
        RECT rc = {};
        Dlg().m_listScenes.GetCellRect(row, column, LVIR_BOUNDS, rc);
        return {(rc.left + rc.right) / 2 + dx, (rc.top + rc.bottom) / 2 + dy};
    }
    void ClickAt(POINT pt, UINT msg = WM_LBUTTONDOWN)
    {
        SendMessageA(List(), msg, MK_LBUTTON, MAKELPARAM(pt.x, pt.y));
        SendMessageA(List(), WM_LBUTTONUP, 0, MAKELPARAM(pt.x, pt.y));
        PumpPending();
    }
    COLORREF PixelAt(POINT pt)
    {
        RedrawWindow(List(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        HDC dc = GetDC(List());
        COLORREF c = GetPixel(dc, pt.x, pt.y);
        ReleaseDC(List(), dc);
        return c;
    }
    void SetRow(int row, const char* comment)
    {
        std::strcpy(g_arScenes.GetAt(row)->szComment, comment);
        Dlg().m_listScenes.SetSceneRow(row, FALSE);
    }
    CInCommentEdit* Editor() { return Dlg().m_listScenes.m_pCommentEdit; }
};

} // namespace

TEST_F(SceneListTest, FilesColumnShowsFilesWithAnExtension)
{
    std::string cap = qv::LoadResString(IDS_CAPTURED_FILE_PREFIX), scan = qv::LoadResString(IDS_SCENE_FILE_PREFIX);
    struct Case {
        const char *capture, *scene;
        std::string shown;
    } cases[] = {
        {"  C:\\cap\\a.avi  ", "C:\\scan\\a.dv", cap + "C:\\cap\\a.avi\r\n" + scan + "C:\\scan\\a.dv"},
        {"C:\\cap\\noextension", "", ""},
    };
    OpenWithScenes(2);
    g_arScenes.GetAt(1)->stRecorded = {};
    for (int i = 0; i < 2; ++i) {
        std::strcpy(g_arScenes.GetAt(i)->szCaptureFile, cases[i].capture);
        std::strcpy(g_arScenes.GetAt(i)->szSceneFile, cases[i].scene);
        SetRow(i, "");
        EXPECT_EQ(CellText(i, COL_FILES), cases[i].shown) << i;
    }
    EXPECT_STREQ(g_arScenes.GetAt(0)->szCaptureFile, "C:\\cap\\a.avi");  // trimmed in place
    EXPECT_EQ(CellText(1, 3), qv::LoadResString(IDS_UNKNOWN_DATE));
}

// The files column is as wide as its longest line and narrows when that row
// goes; the capped comment column keeps the width the user gave it.
TEST_F(SceneListTest, ColumnWidthsFollowTheirTexts)
{
    OpenDialog();
    StartScan();
    for (int i = 0; i < 3; ++i) FeedScene(Tc(0, 0, i, 0), Tc(0, 0, i, 9), false);  // comments show without thumbnails
    PressKey(VK_ESCAPE);
    Click(IDC_MARK_ALL);
    qvSetCapSceneFileName(1, ("C:\\Captures\\" + std::string(180, 'x') + ".avi").c_str());
    int line = ListMsg(LVM_GETSTRINGWIDTHA, 0, (LPARAM)CellText(1, COL_FILES).c_str());
    ASSERT_GT(line, 900);
    EXPECT_GE(Width(COL_FILES), line);
    ModalResponder responder;  // the row with it goes
    Dlg().m_listScenes.SelectRange(1, FALSE, 0);
    responder.ExpectMessageRes(IDS_ASK_DELETE_SCENES, IDYES);
    Click(IDC_DELETE_SCENES);
    responder.Verify();
    PumpPending();
    EXPECT_LT(Width(COL_FILES), line / 2);
    const std::tuple<int, std::string, int> edits[] = {{0, std::string(80, 'w'), 160}, {1, "pier", 400}};
    for (const auto& [row, comment, width] : edits) {
        std::strcpy(g_arScenes.GetAt(row)->szComment, comment.c_str());  // as the editor leaves it
        Dlg().m_listScenes.RefreshCommentAndFiles(row, TRUE, FALSE);
        EXPECT_EQ(CellText(row, COL_COMMENT), comment);
        EXPECT_EQ(Width(COL_COMMENT), width);
        ListMsg(LVM_SETCOLUMNWIDTH, COL_COMMENT, 400);  // the user widens it
    }
}

// Each case clicks rows of three (Shift with a negative number: -1 is row 0)
// or elsewhere, after a plain click on row 1.
TEST_F(SceneListTest, ClicksAndTheRangesTheySelect)
{
    const int kBelowRows = 100, kRight = 200;
    struct Case {
        const char* what;
        std::vector<int> clicks;
        int first, last;
    } cases[] = {
        {"one row", {}, 1, 1},
        {"Shift above the anchor", {-1}, 0, 1},
        {"Shift below, then above", {-3, -1}, 0, 1},
        {"Shift on the anchor: that row alone", {-1, -2}, 1, 1},
        {"a plain click moves the anchor", {2, -1}, 0, 2},
        {"below the rows: nothing changes", {kBelowRows}, 1, 1},
        {"right button: nothing changes", {kRight}, 1, 1},
    };
    OpenWithScenes(3);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        SelectRow(1);
        for (int click : c.clicks) {
            RECT client;
            POINT pt = Centre(0, 2);
            if (click == kBelowRows) GetClientRect(List(), &client), ClickAt({pt.x, client.bottom - 3});
            else if (click == kRight) SendMessageA(List(), WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(pt.x, pt.y));
            else ClickCell(click < 0 ? -click - 1 : click, 2, click < 0);
        }
        int first, last, range = Dlg().m_listScenes.GetSelRange(first, last);
        EXPECT_EQ(first * 10 + last, c.first * 10 + c.last);
        EXPECT_EQ(SendMessageA(List(), LVM_GETSELECTEDCOUNT, 0, 0), c.last - c.first + 1);
        bool one = c.first == c.last;  // one row previews and goes to; a range merges
        EXPECT_TRUE(range != one && Enabled(IDC_MERGE_SCENES) != one && Enabled(IDC_PREVIEW) == one && Enabled(IDC_GOTO) == one);
    }
}

TEST_F(SceneListTest, ClickInTheCheckBoxTogglesTheMark)
{
    OpenWithScenes(3);
    for (int marked : {1, 0}) {
        MarkRow(1);
        EXPECT_EQ(PixelAt(Centre(1, 0)), marked ? RGB(0, 0, 0) : RGB(255, 255, 255));  // a tick or an empty box
        EXPECT_EQ(g_arScenes.GetAt(1)->bMarked, marked);  // the repaint did not toggle it again
        EXPECT_EQ(Enabled(IDC_CAPTURE), marked == 1);
    }
}

// A click beside the box marks nothing, also when a later repaint finds the
// box under its point.
TEST_F(SceneListTest, ClickBesideTheBoxMarksNothingLater)
{
    OpenWithScenes(2);
    ListMsg(LVM_SETCOLUMNWIDTH, COL_COMMENT, 3000);  // room to scroll sideways
    RECT cell, moved;
    ASSERT_TRUE(Dlg().m_listScenes.GetCellRect(0, 0, LVIR_BOUNDS, cell));
    ClickAt({cell.left + 1, (cell.top + cell.bottom) / 2});  // the box sits in the middle
    ASSERT_EQ(g_arScenes.GetAt(0)->bMarked, 0);
    ListMsg(LVM_SCROLL, (cell.right - cell.left) / 2 - 1, 0);  // the box comes under the point
    ASSERT_TRUE(Dlg().m_listScenes.GetCellRect(0, 0, LVIR_BOUNDS, moved));
    ASSERT_EQ((moved.left + moved.right) / 2, cell.left + 1);
    RedrawWindow(List(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    EXPECT_EQ(g_arScenes.GetAt(0)->bMarked, 0);
}

TEST_F(SceneListTest, ThumbnailsAndTheSelectedRowAsDrawn)
{
    OpenDialog();
    StartScan();
    Thumbnail thumb = MakeThumbnail(0, 0, 255, 40, 30);  // a smaller source is scaled up to 80x60
    for (int i = 0; i < 2; ++i) {
        SceneInfo begin = MakeScene(Tc(0, 0, i, 0), 0, static_cast<uint32_t>(thumb.bits.size()));
        qvSetSceneDataBegin(&begin, &thumb.header, thumb.bits.data());
        SceneInfo end = MakeScene(Tc(0, 0, i, 0), Tc(0, 0, i, 9));
        qvSetSceneDataEnd(&end);
    }
    PressKey(VK_ESCAPE);
    SelectRow(0);
    const COLORREF blue = RGB(0, 0, 255);
    for (POINT p : {Centre(1, 1, -39, -29), Centre(1, 1, 39, 29)}) EXPECT_EQ(PixelAt(p), blue);
    EXPECT_NE(PixelAt(Centre(1, 1, -41, 0)), blue);  // exactly 80 wide
    EXPECT_NE(PixelAt(Centre(1, 2)), blue);          // in its own column only
    EXPECT_EQ(PixelAt(Centre(0, 5, 0, 25)), GetSysColor(COLOR_HIGHLIGHT));
    EXPECT_EQ(PixelAt(Centre(1, 5, 0, 25)), RGB(255, 255, 255));
}

TEST_F(SceneListTest, HeaderKeepsItsRules)
{
    OpenWithScenes(1);
    HWND header = reinterpret_cast<HWND>(SendMessageA(List(), LVM_GETHEADER, 0, 0));
    for (int width : {15, 16}) {  // no column of 15 or less
        HDITEMA item = {};
        item.mask = HDI_WIDTH;
        item.cxy = width;
        NMHEADERA nm = {{header, static_cast<UINT_PTR>(GetDlgCtrlID(header)), HDN_ITEMCHANGINGW}, 3, 0, &item};
        EXPECT_EQ(SendMessageA(List(), WM_NOTIFY, nm.hdr.idFrom, reinterpret_cast<LPARAM>(&nm)), width == 15);
    }
}

// Every way an edit ends, and what becomes of the text typed.
TEST_F(SceneListTest, CommentEditorEndsKeepingOrDiscarding)
{
    const std::string kLong(600, 'x');
    auto key = [this](WPARAM vk) { return [this, vk] { PostMessageA(Editor()->m_hWnd, WM_KEYDOWN, vk, 1); }; };
    struct Case {
        const char* what;
        std::function<void()> end;
        std::string typed, comment;
    } cases[] = {
        {"Return keeps", key(VK_RETURN), "Beach", "Beach"},
        {"Escape discards", key(VK_ESCAPE), "Beach", "old"},
        {"focus elsewhere keeps, up to the field's size", [&] { SetFocus(List()); }, kLong, kLong.substr(0, 519)},
    };
    OpenWithScenes(8);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        SetRow(1, "old");
        Dlg().m_bModified = 0;
        SelectRow(1);
        ClickAt(Centre(1, 4), WM_LBUTTONDBLCLK);
        ASSERT_NE(Editor(), nullptr);
        EXPECT_EQ(GetFocus(), Editor()->m_hWnd);
        RECT before, after, list;
        GetWindowRect(Editor()->m_hWnd, &before);
        for (char ch : c.typed) SendMessageA(Editor()->m_hWnd, WM_CHAR, static_cast<unsigned char>(ch), 1);
        GetWindowRect(Editor()->m_hWnd, &after), GetWindowRect(List(), &list);
        EXPECT_TRUE(after.right >= before.right && after.right <= list.right);  // it grows to fit, within the list
        c.end();
        PumpPending();
        EXPECT_EQ(Editor(), nullptr);
        EXPECT_EQ(CellText(1, 4) + "|" + g_arScenes.GetAt(1)->szComment, c.comment + "|" + c.comment);  // all replaced
        EXPECT_EQ(Dlg().m_bModified, c.comment != "old");
        EXPECT_TRUE(IsWindow(Wnd()));  // the keys did not reach the dialog
    }
}
