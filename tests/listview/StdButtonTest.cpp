// The picture buttons: the frame that shows in each state, and the command
// posted when the mouse is released.
#include "ResourceIds.h"
#include "listview/StdButton.h"
#include "support/Pump.h"

#include <gtest/gtest.h>

using namespace qvtest;

namespace {

int g_commands, g_lastId;

LRESULT CALLBACK ParentProc(HWND h, UINT msg, WPARAM wp, LPARAM lp)
{
    if (msg == WM_COMMAND) return ++g_commands, g_lastId = LOWORD(wp), 0;
    if (msg == WM_DRAWITEM) {
        auto* dis = reinterpret_cast<DRAWITEMSTRUCT*>(lp);
        if (auto* button = static_cast<CStdButton*>(CWnd::FromHandlePermanent(dis->hwndItem))) button->DrawItem(*dis);
        return TRUE;
    }
    return DefWindowProcA(h, msg, wp, lp);
}

class StdButtonTest : public testing::Test {
protected:
    void SetUp() override
    {
        WNDCLASSA wc = {};
        wc.lpfnWndProc = ParentProc;
        wc.lpszClassName = "qvButtonTestParent";
        RegisterClassA(&wc);
        m_parent = CreateWindowA("qvButtonTestParent", "", WS_POPUP | WS_VISIBLE, 10, 10, 200, 100, nullptr,
                                 nullptr, nullptr, nullptr);
        HWND h = CreateWindowA("BUTTON", "", WS_CHILD | WS_VISIBLE | BS_OWNERDRAW, 5, 5, 40, 40, m_parent,
                               reinterpret_cast<HMENU>(12323), nullptr, nullptr);
        m_button.SubclassWindow(h);
        g_commands = 0;
    }
    void TearDown() override { DestroyWindow(m_parent); }
    COLORREF Pixel(int x, int y)
    {
        UpdateWindow(m_button.m_hWnd);
        HDC dc = GetDC(m_button.m_hWnd);
        COLORREF c = GetPixel(dc, x, y);
        ReleaseDC(m_button.m_hWnd, dc);
        return c;
    }
    COLORREF Corner() { return Pixel(1, 1); }  // the bevel: light raised, dark pressed
    HWND m_parent = nullptr;
    CStdButton m_button;
};

} // namespace

TEST_F(StdButtonTest, PressDragAndReleasePostTheCommand)
{
    ASSERT_TRUE(m_button.SetBitmap(IDB_MERGE));
    PumpPending();
    COLORREF normal = Corner();
    SendMessageA(m_button.m_hWnd, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
    EXPECT_EQ(GetCapture(), m_button.m_hWnd);
    for (POINT at : {POINT{150, 60}, POINT{6, 6}, POINT{150, 60}}) {  // pressed, dragged off, on, off
        COLORREF was = Corner();
        SendMessageA(m_button.m_hWnd, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(at.x, at.y));
        EXPECT_NE(was == normal, Corner() == normal) << at.x;  // off shows raised, on pressed
    }
    SendMessageA(m_button.m_hWnd, WM_LBUTTONUP, 0, MAKELPARAM(150, 60));
    EXPECT_EQ(g_commands, 0);  // posted, not sent
    PumpPending();
    EXPECT_EQ(g_commands, 1);  // released off the button: the command still goes
    EXPECT_EQ(g_lastId, 12323);
    EXPECT_NE(GetCapture(), m_button.m_hWnd);
}

TEST_F(StdButtonTest, DisabledShowsTheGreyFrameAndAMissingPictureNothing)
{
    ASSERT_TRUE(m_button.SetBitmap(IDB_CAPTURE));
    PumpPending();
    RECT rc;  // sized to its picture
    GetClientRect(m_button.m_hWnd, &rc);
    COLORREF before = Pixel(rc.right / 2, rc.bottom / 2);
    EnableWindow(m_button.m_hWnd, FALSE);
    COLORREF after = Pixel(rc.right / 2, rc.bottom / 2);
    EXPECT_NE(before, after);
    EXPECT_TRUE(GetRValue(after) == GetGValue(after) && GetGValue(after) == GetBValue(after));  // grey
    EXPECT_FALSE(m_button.SetBitmap(9999));
    EXPECT_FALSE(m_button.HasBitmap());
}
