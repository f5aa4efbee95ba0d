// The scene list as the user meets it: rows and their texts, clicks and
// Shift ranges, marks toggled in the check box, the header's rules, the
// comment editor, and what is drawn (read back pixel by pixel).
#include "ResourceIds.h"
#include "listview/CommentEdit.h"
#include "platform/ResourceLib.h"
#include "scenes/SceneStore.h"
#include "session/Session.h"
#include "support/DialogFixture.h"

#include <commctrl.h>
#include <cstring>

using namespace qvtest;

namespace {

class SceneListTest : public DialogFixture {
protected:
    // Opens the dialog with `n` scanned scenes and the scan stopped.
    void OpenWithScenes(int n)
    {
        OpenDialog();
        StartScan();
        for (int i = 0; i < n; ++i) FeedScene(Tc(0, 0, 10 * i, 0), Tc(0, 0, 10 * i + 5, 0));
        PressKey(VK_ESCAPE);
        ASSERT_EQ(Dlg().m_nState, PS_IDLE);
    }
    HWND List() { return Item(IDC_SCENE_LIST); }
    RECT Cell(int row, int column)
    {
        RECT rc = {};
        Dlg().m_listScenes.GetCellRect(row, column, LVIR_BOUNDS, rc);
        return rc;
    }
    POINT Center(const RECT& rc) { return {(rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2}; }
    void ClickAt(POINT pt, bool shift = false, UINT msg = WM_LBUTTONDOWN)
    {
        BYTE keys[256];
        GetKeyboardState(keys);
        keys[VK_SHIFT] = shift ? 0x80 : 0;
        SetKeyboardState(keys);
        SendMessageA(List(), msg, MK_LBUTTON | (shift ? MK_SHIFT : 0), MAKELPARAM(pt.x, pt.y));
        SendMessageA(List(), WM_LBUTTONUP, shift ? MK_SHIFT : 0, MAKELPARAM(pt.x, pt.y));
        keys[VK_SHIFT] = 0;
        SetKeyboardState(keys);
        PumpPending();
    }
    void ClickRow(int row, bool shift = false) { ClickAt(Center(Cell(row, 2)), shift); }
    COLORREF PixelAt(POINT pt)
    {
        RedrawWindow(List(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        HDC dc = GetDC(List());
        COLORREF c = GetPixel(dc, pt.x, pt.y);
        ReleaseDC(List(), dc);
        return c;
    }
    LRESULT HeaderChange(UINT code, int column, int width)
    {
        HWND header = reinterpret_cast<HWND>(SendMessageA(List(), LVM_GETHEADER, 0, 0));
        HDITEMA item = {};
        item.mask = HDI_WIDTH;
        item.cxy = width;
        NMHEADERA nm = {};
        nm.hdr.hwndFrom = header;
        nm.hdr.idFrom = static_cast<UINT_PTR>(GetDlgCtrlID(header));
        nm.hdr.code = code;
        nm.iItem = column;
        nm.pitem = &item;
        return SendMessageA(List(), WM_NOTIFY, nm.hdr.idFrom, reinterpret_cast<LPARAM>(&nm));
    }
    CInCommentEdit* Editor() { return Dlg().m_listScenes.m_pCommentEdit; }
    void OpenEditor(int row)
    {
        ClickRow(row);
        ClickAt(Center(Cell(row, 4)), false, WM_LBUTTONDBLCLK);
    }
    void TypeIntoEditor(const std::string& text)
    {
        for (char ch : text) SendMessageA(Editor()->m_hWnd, WM_CHAR, static_cast<unsigned char>(ch), 1);
    }
};

} // namespace

TEST_F(SceneListTest, FilesColumnShowsFilesWithAnExtension)
{
    OpenWithScenes(4);
    std::string captured = qv::LoadResString(IDS_CAPTURED_FILE_PREFIX);
    std::string scanned = qv::LoadResString(IDS_SCENE_FILE_PREFIX);
    std::strcpy(g_arScenes.GetAt(0)->szCaptureFile, "C:\\cap\\a.avi");
    std::strcpy(g_arScenes.GetAt(0)->szSceneFile, "C:\\scan\\a.dv");
    std::strcpy(g_arScenes.GetAt(1)->szCaptureFile, "  C:\\cap\\b.avi  ");
    std::strcpy(g_arScenes.GetAt(2)->szCaptureFile, "C:\\cap\\noextension");
    std::strcpy(g_arScenes.GetAt(2)->szSceneFile, "C:\\scan\\c.dv");
    for (int i = 0; i < 4; ++i) Dlg().m_listScenes.SetSceneRow(i, i, FALSE, FALSE);
    EXPECT_EQ(CellText(0, 5), captured + "C:\\cap\\a.avi\r\n" + scanned + "C:\\scan\\a.dv");
    EXPECT_EQ(CellText(1, 5), captured + "C:\\cap\\b.avi");
    EXPECT_STREQ(g_arScenes.GetAt(1)->szCaptureFile, "C:\\cap\\b.avi");  // trimmed in place
    EXPECT_EQ(CellText(2, 5), scanned + "C:\\scan\\c.dv");
    EXPECT_EQ(CellText(3, 5), "");
    g_arScenes.GetAt(3)->stRecorded = {};
    Dlg().m_listScenes.SetSceneRow(3, 3, FALSE, FALSE);
    EXPECT_EQ(CellText(3, 3), qv::LoadResString(IDS_UNKNOWN_DATE));
}

TEST_F(SceneListTest, CommentColumnCapsAt160PixelsForGood)
{
    OpenWithScenes(2);
    std::strcpy(g_arScenes.GetAt(0)->szComment, std::string(120, 'W').c_str());
    Dlg().m_listScenes.SetSceneRow(0, 0, FALSE, FALSE);
    EXPECT_EQ(SendMessageA(List(), LVM_GETCOLUMNWIDTH, 4, 0), 160);
    EXPECT_EQ(g_bCommentColumnCapped, 1);
    std::strcpy(g_arScenes.GetAt(0)->szComment, "short");
    Dlg().m_listScenes.SetSceneRow(0, 0, FALSE, FALSE);
    EXPECT_EQ(SendMessageA(List(), LVM_GETCOLUMNWIDTH, 4, 0), 160);
}

TEST_F(SceneListTest, ClicksSelectRowsAndShiftClicksRanges)
{
    OpenWithScenes(6);
    ClickRow(3);
    int first, last;
    EXPECT_FALSE(Dlg().m_listScenes.GetSelRange(first, last));
    EXPECT_EQ(first, 3);
    EXPECT_EQ(last, 3);
    EXPECT_TRUE(Enabled(IDC_PREVIEW));
    EXPECT_TRUE(Enabled(IDC_GOTO));
    ClickRow(1, true);  // Shift+click above the anchor
    EXPECT_TRUE(Dlg().m_listScenes.GetSelRange(first, last));
    EXPECT_EQ(first, 1);
    EXPECT_EQ(last, 3);
    EXPECT_EQ(SendMessageA(List(), LVM_GETSELECTEDCOUNT, 0, 0), 3);
    EXPECT_TRUE(Enabled(IDC_MERGE_SCENES));
    EXPECT_FALSE(Enabled(IDC_PREVIEW));
    ClickRow(3, true);  // Shift+click on the anchor: that row alone
    EXPECT_FALSE(Dlg().m_listScenes.GetSelRange(first, last));
    EXPECT_EQ(first, 3);
    EXPECT_EQ(last, 3);
}

TEST_F(SceneListTest, ClicksOutsideRowsAndRightClicksChangeNothing)
{
    OpenWithScenes(2);
    ClickRow(1);
    RECT client;
    GetClientRect(List(), &client);
    ClickAt({(client.left + client.right) / 2, client.bottom - 3});
    int first, last;
    Dlg().m_listScenes.GetSelRange(first, last);
    EXPECT_EQ(first, 1);
    POINT pt = Center(Cell(0, 2));
    SendMessageA(List(), WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(pt.x, pt.y));
    Dlg().m_listScenes.GetSelRange(first, last);
    EXPECT_EQ(first, 1);
}

TEST_F(SceneListTest, ClickInTheCheckBoxTogglesTheMark)
{
    OpenWithScenes(3);
    POINT box = Center(Cell(1, 0));
    ClickAt(box);
    EXPECT_EQ(g_arScenes.GetAt(1)->bMarked, 1);
    EXPECT_EQ(Dlg().m_listScenes.m_nMarkedCount, 1);
    EXPECT_TRUE(Enabled(IDC_CAPTURE));
    PixelAt(box);  // a later repaint does not toggle it again
    EXPECT_EQ(g_arScenes.GetAt(1)->bMarked, 1);
    EXPECT_EQ(PixelAt(box), RGB(0, 0, 0));  // the tick
    ClickAt(box);
    EXPECT_EQ(g_arScenes.GetAt(1)->bMarked, 0);
    EXPECT_EQ(Dlg().m_listScenes.m_nMarkedCount, 0);
    EXPECT_FALSE(Enabled(IDC_CAPTURE));
    EXPECT_EQ(PixelAt(box), RGB(255, 255, 255));  // an empty box
    RECT cell = Cell(1, 0);
    ClickAt({cell.left + 1, cell.top + 2});  // column 0, outside the box
    EXPECT_EQ(g_arScenes.GetAt(1)->bMarked, 0);
}

TEST_F(SceneListTest, StrangeMarkValuesAreDrawnAndKeptUnmarked)
{
    OpenWithScenes(1);
    g_arScenes.GetAt(0)->bMarked = 7;
    EXPECT_EQ(PixelAt(Center(Cell(0, 0))), RGB(255, 255, 255));
    EXPECT_EQ(g_arScenes.GetAt(0)->bMarked, 0);
}

TEST_F(SceneListTest, ThumbnailIsDrawnAt80By60InItsCell)
{
    OpenDialog();
    StartScan();
    Thumbnail thumb = MakeThumbnail(0, 0, 255, 40, 30);  // a smaller source is scaled up
    SceneInfo begin = MakeScene(Tc(0, 0, 1, 0), 0, static_cast<uint32_t>(thumb.bits.size()));
    qvSetSceneDataBegin(&begin, &thumb.header, thumb.bits.data());
    SceneInfo end = MakeScene(Tc(0, 0, 1, 0), Tc(0, 0, 2, 0));
    qvSetSceneDataEnd(&end);
    PressKey(VK_ESCAPE);
    Dlg().m_listScenes.ClearSelection();
    RECT cell = Cell(0, 1);
    POINT c = Center(cell);
    EXPECT_EQ(PixelAt(c), RGB(0, 0, 255));
    EXPECT_EQ(PixelAt({c.x - 39, c.y - 29}), RGB(0, 0, 255));
    EXPECT_EQ(PixelAt({c.x + 39, c.y + 29}), RGB(0, 0, 255));
    if (c.x - 41 > cell.left) {
        EXPECT_NE(PixelAt({c.x - 41, c.y}), RGB(0, 0, 255));  // exactly 80 wide
    }
    g_bHaveThumbnails = 0;  // while the last scene had none, none is drawn
    EXPECT_NE(PixelAt(c), RGB(0, 0, 255));
}

TEST_F(SceneListTest, SelectedRowIsHighlightedAcrossItsCells)
{
    OpenWithScenes(2);
    ClickRow(0);
    RECT date = Cell(0, 5);
    EXPECT_EQ(PixelAt({date.right - 3, date.bottom - 3}), GetSysColor(COLOR_HIGHLIGHT));
    RECT mark = Cell(0, 0);
    EXPECT_EQ(PixelAt({mark.left + 2, mark.bottom - 3}), GetSysColor(COLOR_HIGHLIGHT));  // the mark cell too
    RECT other = Cell(1, 5);
    EXPECT_EQ(PixelAt({other.right - 3, other.bottom - 3}), RGB(255, 255, 255));
}

TEST_F(SceneListTest, EmptyListShowsItsMessageOnWhite)
{
    OpenDialog();
    RECT client;
    GetClientRect(List(), &client);
    EXPECT_EQ(RowCount(), 0);
    EXPECT_EQ(PixelAt({client.right - 4, client.bottom - 4}), RGB(255, 255, 255));
}

TEST_F(SceneListTest, HeaderKeepsItsRules)
{
    OpenWithScenes(1);
    EXPECT_EQ(HeaderChange(HDN_BEGINTRACKA, 0, 50), TRUE);  // the mark column stays
    EXPECT_EQ(HeaderChange(HDN_DIVIDERDBLCLICKW, 0, 50), TRUE);
    EXPECT_EQ(HeaderChange(HDN_ITEMCHANGINGA, 1, 80), TRUE);  // the thumbnail needs 81
    EXPECT_EQ(HeaderChange(HDN_ITEMCHANGINGA, 1, 81), FALSE);
    EXPECT_EQ(HeaderChange(HDN_ITEMCHANGINGW, 3, 15), TRUE);  // no column of 15 or less
    EXPECT_EQ(HeaderChange(HDN_ITEMCHANGINGW, 3, 16), FALSE);
    EXPECT_EQ(HeaderChange(HDN_TRACKA, 2, 4), TRUE);
}

TEST_F(SceneListTest, ScrollingWaitsWhileBusy)
{
    OpenWithScenes(12);
    Dlg().m_nState = PS_SCANNING;  // vertical scrolling still follows the scan
    int top = static_cast<int>(SendMessageA(List(), LVM_GETTOPINDEX, 0, 0));
    ASSERT_GT(top, 0);  // the scan left the list at its last row
    SendMessageA(List(), WM_VSCROLL, SB_LINEUP, 0);
    EXPECT_EQ(SendMessageA(List(), LVM_GETTOPINDEX, 0, 0), top - 1);
    Dlg().m_nState = PS_SEEKING;
    SendMessageA(List(), WM_VSCROLL, SB_LINEUP, 0);
    EXPECT_EQ(SendMessageA(List(), LVM_GETTOPINDEX, 0, 0), top - 1);
    Dlg().m_nState = PS_IDLE;
}

TEST_F(SceneListTest, CommentEditorKeepsOnReturnAndDiscardsOnEscape)
{
    OpenWithScenes(3);
    std::strcpy(g_arScenes.GetAt(1)->szComment, "old");
    Dlg().m_listScenes.SetSceneRow(1, 1, FALSE, FALSE);
    Dlg().m_bModified = 0;
    OpenEditor(1);
    ASSERT_NE(Editor(), nullptr);
    EXPECT_EQ(GetDlgCtrlID(Editor()->m_hWnd), IDC_COMMENT_EDIT);
    EXPECT_EQ(GetFocus(), Editor()->m_hWnd);
    DWORD selStart = 0, selEnd = 0;
    SendMessageA(Editor()->m_hWnd, EM_GETSEL, reinterpret_cast<WPARAM>(&selStart), reinterpret_cast<LPARAM>(&selEnd));
    EXPECT_EQ(selStart, 0u);
    EXPECT_EQ(selEnd, 3u);  // the whole comment selected
    TypeIntoEditor("Beach at sunset");
    PostMessageA(Editor()->m_hWnd, WM_KEYDOWN, VK_RETURN, 1);  // through the dialog's key filter
    PumpPending();
    EXPECT_EQ(Editor(), nullptr);
    EXPECT_STREQ(g_arScenes.GetAt(1)->szComment, "Beach at sunset");
    EXPECT_EQ(CellText(1, 4), "Beach at sunset");
    EXPECT_EQ(Dlg().m_bModified, 1);
    EXPECT_TRUE(IsWindow(Wnd()));  // Return did not reach the dialog

    OpenEditor(1);
    TypeIntoEditor("lost");
    PostMessageA(Editor()->m_hWnd, WM_KEYDOWN, VK_ESCAPE, 1);
    PumpPending();
    EXPECT_EQ(Editor(), nullptr);
    EXPECT_STREQ(g_arScenes.GetAt(1)->szComment, "Beach at sunset");
    EXPECT_TRUE(IsWindow(Wnd()));  // Escape did not close the dialog
}

TEST_F(SceneListTest, CommentEditorGrowsAndNeverHoldsMoreThanTheField)
{
    OpenWithScenes(2);
    OpenEditor(0);
    ASSERT_NE(Editor(), nullptr);
    RECT before;
    GetWindowRect(Editor()->m_hWnd, &before);
    TypeIntoEditor(std::string(600, 'x'));
    RECT after;
    GetWindowRect(Editor()->m_hWnd, &after);
    EXPECT_GT(after.right - after.left, before.right - before.left);
    EXPECT_GE(after.bottom - after.top, before.bottom - before.top);
    RECT list;
    GetWindowRect(List(), &list);
    EXPECT_LE(after.right, list.right);
    EXPECT_EQ(GetWindowTextLengthA(Editor()->m_hWnd), CInCommentEdit::kMaxChars);
    SendMessageA(Editor()->m_hWnd, EM_SETSEL, 0, -1);
    SendMessageA(Editor()->m_hWnd, WM_CHAR, 'y', 1);  // deleting text never shrinks it
    RECT shrunk;
    GetWindowRect(Editor()->m_hWnd, &shrunk);
    EXPECT_EQ(shrunk.right - shrunk.left, after.right - after.left);
    SetFocus(List());  // focus elsewhere keeps the text
    PumpPending();
    EXPECT_EQ(Editor(), nullptr);
    EXPECT_STREQ(g_arScenes.GetAt(0)->szComment, "y");
}

TEST_F(SceneListTest, ScrollEndsTheEditKeepingItsText)
{
    OpenWithScenes(8);
    OpenEditor(0);
    ASSERT_NE(Editor(), nullptr);
    TypeIntoEditor("kept");
    SendMessageA(List(), WM_VSCROLL, SB_LINEDOWN, 0);
    EXPECT_EQ(Editor(), nullptr);
    EXPECT_STREQ(g_arScenes.GetAt(0)->szComment, "kept");
}

TEST_F(SceneListTest, DoubleClickElsewhereOrWhileBusyOpensNothing)
{
    OpenWithScenes(2);
    ClickAt(Center(Cell(0, 3)), false, WM_LBUTTONDBLCLK);
    EXPECT_EQ(Editor(), nullptr);
    Dlg().m_nState = PS_SCANNING;
    ClickAt(Center(Cell(0, 4)), false, WM_LBUTTONDBLCLK);
    EXPECT_EQ(Editor(), nullptr);
    Dlg().m_nState = PS_IDLE;
}
