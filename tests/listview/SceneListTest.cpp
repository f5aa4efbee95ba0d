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
#include <functional>

using namespace qvtest;

namespace {

class SceneListTest : public DialogFixture {
protected:
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
    int Selected(int& first, int& last) { return Dlg().m_listScenes.GetSelRange(first, last); }
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
    std::string captured = qv::LoadResString(IDS_CAPTURED_FILE_PREFIX);
    std::string scanned = qv::LoadResString(IDS_SCENE_FILE_PREFIX);
    struct Case {
        const char *capture, *scene;
        std::string shown;
    } cases[] = {
        {"C:\\cap\\a.avi", "C:\\scan\\a.dv", captured + "C:\\cap\\a.avi\r\n" + scanned + "C:\\scan\\a.dv"},
        {"  C:\\cap\\b.avi  ", "", captured + "C:\\cap\\b.avi"},
        {"C:\\cap\\noextension", "C:\\scan\\c.dv", scanned + "C:\\scan\\c.dv"},
        {"", "", ""},
    };
    OpenWithScenes(4);
    for (int i = 0; i < 4; ++i) {
        std::strcpy(g_arScenes.GetAt(i)->szCaptureFile, cases[i].capture);
        std::strcpy(g_arScenes.GetAt(i)->szSceneFile, cases[i].scene);
        Dlg().m_listScenes.SetSceneRow(i, i, FALSE, FALSE);
        EXPECT_EQ(CellText(i, 5), cases[i].shown) << i;
    }
    EXPECT_STREQ(g_arScenes.GetAt(1)->szCaptureFile, "C:\\cap\\b.avi");  // trimmed in place
    g_arScenes.GetAt(3)->stRecorded = {};
    Dlg().m_listScenes.SetSceneRow(3, 3, FALSE, FALSE);
    EXPECT_EQ(CellText(3, 3), qv::LoadResString(IDS_UNKNOWN_DATE));
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
        ClickRow(1);
        for (int click : c.clicks) {
            RECT client;
            GetClientRect(List(), &client);
            POINT pt = Center(Cell(0, 2));
            if (click == kBelowRows) ClickAt({pt.x, client.bottom - 3});
            else if (click == kRight) SendMessageA(List(), WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(pt.x, pt.y));
            else ClickRow(click < 0 ? -click - 1 : click, click < 0);
        }
        int first, last;
        EXPECT_EQ(Selected(first, last), c.first != c.last);
        EXPECT_EQ(first, c.first);
        EXPECT_EQ(last, c.last);
        EXPECT_EQ(SendMessageA(List(), LVM_GETSELECTEDCOUNT, 0, 0), c.last - c.first + 1);
        EXPECT_EQ(Enabled(IDC_MERGE_SCENES), c.first != c.last);
        EXPECT_EQ(Enabled(IDC_PREVIEW), c.first == c.last);
        EXPECT_EQ(Enabled(IDC_GOTO), c.first == c.last);
    }
}

TEST_F(SceneListTest, ClickInTheCheckBoxTogglesTheMark)
{
    OpenWithScenes(3);
    POINT box = Center(Cell(1, 0));
    for (int marked : {1, 0}) {
        ClickAt(box);
        EXPECT_EQ(PixelAt(box), marked ? RGB(0, 0, 0) : RGB(255, 255, 255));  // a tick or an empty box
        EXPECT_EQ(g_arScenes.GetAt(1)->bMarked, marked);  // the repaint did not toggle it again
        EXPECT_EQ(Dlg().m_listScenes.m_nMarkedCount, marked);
        EXPECT_EQ(Enabled(IDC_CAPTURE), marked == 1);
    }
    ClickAt({Cell(1, 0).left + 1, Cell(1, 0).top + 2});  // column 0, outside the box
    EXPECT_EQ(g_arScenes.GetAt(1)->bMarked, 0);
    g_arScenes.GetAt(2)->bMarked = 7;  // from a damaged list file
    EXPECT_EQ(PixelAt(Center(Cell(2, 0))), RGB(255, 255, 255));
    EXPECT_EQ(g_arScenes.GetAt(2)->bMarked, 0);
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
    ClickRow(0);
    const COLORREF blue = RGB(0, 0, 255), highlight = GetSysColor(COLOR_HIGHLIGHT);
    POINT c = Center(Cell(1, 1));
    for (POINT p : {c, POINT{c.x - 39, c.y - 29}, POINT{c.x + 39, c.y + 29}}) EXPECT_EQ(PixelAt(p), blue);
    if (c.x - 41 > Cell(1, 1).left) EXPECT_NE(PixelAt({c.x - 41, c.y}), blue);  // exactly 80 wide
    EXPECT_NE(PixelAt(Center(Cell(1, 2))), blue);  // in its own column only
    EXPECT_EQ(PixelAt({Cell(0, 5).right - 3, Cell(0, 5).bottom - 3}), highlight);
    EXPECT_EQ(PixelAt({Cell(0, 0).left + 2, Cell(0, 0).bottom - 3}), highlight);  // the mark cell too
    EXPECT_EQ(PixelAt({Cell(1, 5).right - 3, Cell(1, 5).bottom - 3}), RGB(255, 255, 255));
    g_bHaveThumbnails = 0;  // while the last scene had none, none is drawn
    EXPECT_NE(PixelAt(c), blue);
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
    std::strcpy(g_arScenes.GetAt(0)->szComment, std::string(120, 'W').c_str());
    Dlg().m_listScenes.SetSceneRow(0, 0, FALSE, FALSE);
    std::strcpy(g_arScenes.GetAt(0)->szComment, "short");  // once narrowed to 160, it stays so
    Dlg().m_listScenes.SetSceneRow(0, 0, FALSE, FALSE);
    EXPECT_EQ(SendMessageA(List(), LVM_GETCOLUMNWIDTH, 4, 0), 160);
}

// Every way an edit ends, and what becomes of the text typed.
TEST_F(SceneListTest, CommentEditorEndsKeepingOrDiscarding)
{
    const std::string kLong(600, 'x');
    struct Case {
        const char* what;
        std::function<void()> end;
        std::string typed, comment;
    } cases[] = {
        {"Return keeps", [&] { PostMessageA(Editor()->m_hWnd, WM_KEYDOWN, VK_RETURN, 1); }, "Beach", "Beach"},
        {"Escape discards", [&] { PostMessageA(Editor()->m_hWnd, WM_KEYDOWN, VK_ESCAPE, 1); }, "Beach", "old"},
        {"focus elsewhere keeps, up to the field's size", [&] { SetFocus(List()); }, kLong, kLong.substr(0, 519)},
        {"a scroll keeps", [&] { SendMessageA(List(), WM_VSCROLL, SB_LINEDOWN, 0); }, "Beach", "Beach"},
    };
    OpenWithScenes(8);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        std::strcpy(g_arScenes.GetAt(1)->szComment, "old");
        Dlg().m_listScenes.SetSceneRow(1, 1, FALSE, FALSE);
        SendMessageA(List(), LVM_ENSUREVISIBLE, 0, FALSE);
        Dlg().m_bModified = 0;
        OpenEditor(1);
        ASSERT_NE(Editor(), nullptr);
        EXPECT_EQ(GetFocus(), Editor()->m_hWnd);
        DWORD selStart = 1, selEnd = 0;
        SendMessageA(Editor()->m_hWnd, EM_GETSEL, reinterpret_cast<WPARAM>(&selStart), reinterpret_cast<LPARAM>(&selEnd));
        EXPECT_EQ(selStart * 10 + selEnd, 3u);  // the whole comment selected, so typing replaces it
        RECT before, after, list;
        GetWindowRect(Editor()->m_hWnd, &before);
        TypeIntoEditor(c.typed);
        GetWindowRect(Editor()->m_hWnd, &after);
        GetWindowRect(List(), &list);
        EXPECT_GE(after.right - after.left, before.right - before.left);  // it grows to fit, within the list
        EXPECT_LE(after.right, list.right);
        c.end();
        PumpPending();
        EXPECT_EQ(Editor(), nullptr);
        EXPECT_EQ(g_arScenes.GetAt(1)->szComment, c.comment);
        EXPECT_EQ(CellText(1, 4), c.comment);
        EXPECT_EQ(Dlg().m_bModified, c.comment != "old");
        EXPECT_TRUE(IsWindow(Wnd()));  // the keys did not reach the dialog
    }
    ClickAt(Center(Cell(0, 3)), false, WM_LBUTTONDBLCLK);  // other columns have no editor
    EXPECT_EQ(Editor(), nullptr);
    Dlg().m_nState = PS_SCANNING;  // nor has the list while busy
    ClickAt(Center(Cell(0, 4)), false, WM_LBUTTONDBLCLK);
    EXPECT_EQ(Editor(), nullptr);
    Dlg().m_nState = PS_IDLE;
}
