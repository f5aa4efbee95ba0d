// The window layer: the dialog procedure's routing, notify results, modal
// and modeless life, the key filter in a host's own loop, and subclassing.
#include "platform/Dialog.h"
#include "support/Pump.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

using namespace qvtest;

namespace {

const UINT IDD_TEST_DIALOG = 100;
const int IDC_TEST_EDIT = 101;
const int IDC_TEST_BUTTON = 102;
const UINT WM_TEST_PRIVATE = WM_USER + 1;

class TestDialog : public CDialog {
public:
    TestDialog() : CDialog(IDD_TEST_DIALOG, nullptr) {}

    int initCount = 0, pressCount = 0, returnKeys = 0, refusals = 0;
    UINT lastCode = 0;
    std::string text = "initial";
    bool consumeReturn = false;
    bool initEndsWithOk = false;

    bool PreTranslateMessage(MSG* pMsg) override
    {
        if (pMsg->message == WM_KEYDOWN && pMsg->wParam == VK_RETURN) {
            ++returnKeys;
            if (consumeReturn) return true;
        }
        return CDialog::PreTranslateMessage(pMsg);
    }

protected:
    BOOL OnInitDialog() override
    {
        ++initCount;
        CDialog::OnInitDialog();
        if (initEndsWithOk) PostMessage(WM_COMMAND, IDOK);
        return TRUE;
    }
    bool OnCommand(UINT id, UINT code, HWND hCtl) override
    {
        if (id == IDC_TEST_BUTTON) {
            ++pressCount;
            lastCode = code;
            return true;
        }
        return CDialog::OnCommand(id, code, hCtl);
    }
    bool OnNotify(NMHDR* pHdr, LRESULT& result) override
    {
        if (pHdr->code == 0x7777) throw std::invalid_argument("handler failed");
        result = static_cast<LRESULT>(pHdr->code) * 2;
        return true;
    }
    bool OnMessage(UINT msg, WPARAM wp, LPARAM, INT_PTR& result) override
    {
        if (msg != WM_TEST_PRIVATE) return false;
        result = static_cast<INT_PTR>(wp) + 1;
        return true;
    }
    void DataToControls() override { SetItemText(IDC_TEST_EDIT, text.c_str()); }
    bool ControlsToData() override
    {
        std::string typed = GetItemText(IDC_TEST_EDIT);
        if (typed == "refuse") {
            ++refusals;
            SetItemText(IDC_TEST_EDIT, "accepted");
            PostMessage(WM_COMMAND, IDOK);  // the user corrects it and presses OK again
            return false;
        }
        text = typed;
        return true;
    }
};

class DialogTest : public testing::Test {
protected:
    void SetUp() override { CDialog::SetTemplateInstance(GetModuleHandleA(nullptr)); }
    void TearDown() override { CDialog::SetTemplateInstance(nullptr); }
};

} // namespace

TEST_F(DialogTest, ModelessDialogRoutesItsMessages)
{
    TestDialog dlg;
    ASSERT_TRUE(dlg.Create(IDD_TEST_DIALOG, nullptr));
    HWND h = dlg.m_hWnd;
    EXPECT_EQ(dlg.initCount, 1);
    EXPECT_EQ(GetWindowLongPtrA(h, DWLP_USER), reinterpret_cast<LONG_PTR>(&dlg));
    EXPECT_EQ(dlg.GetItemText(IDC_TEST_EDIT), "initial");  // data went into the controls

    SendMessageA(GetDlgItem(h, IDC_TEST_BUTTON), BM_CLICK, 0, 0);
    EXPECT_EQ(dlg.pressCount, 1);
    EXPECT_EQ(dlg.lastCode, static_cast<UINT>(BN_CLICKED));

    NMHDR hdr = {h, 1, 21};
    EXPECT_EQ(SendMessageA(h, WM_NOTIFY, 1, reinterpret_cast<LPARAM>(&hdr)), 42);
    EXPECT_EQ(SendMessageA(h, WM_TEST_PRIVATE, 41, 0), 42);

    // A handler's exception stays inside the dialog procedure.
    NMHDR bad = {h, 1, 0x7777};
    EXPECT_EQ(SendMessageA(h, WM_NOTIFY, 1, reinterpret_cast<LPARAM>(&bad)), 0);
    EXPECT_TRUE(IsWindow(h));

    EXPECT_TRUE(dlg.DestroyWindow());
    EXPECT_FALSE(IsWindow(h));
    EXPECT_EQ(dlg.m_hWnd, nullptr);
}

TEST_F(DialogTest, ModalDialogEndsWithItsResult)
{
    TestDialog dlg;
    dlg.initEndsWithOk = true;
    EXPECT_EQ(dlg.DoModal(), IDOK);
    EXPECT_EQ(dlg.text, "initial");
    EXPECT_EQ(dlg.m_hWnd, nullptr);
}

TEST_F(DialogTest, RefusedDataKeepsTheDialogOpen)
{
    TestDialog dlg;
    dlg.text = "refuse";
    dlg.initEndsWithOk = true;
    EXPECT_EQ(dlg.DoModal(), IDOK);
    EXPECT_EQ(dlg.refusals, 1);
    EXPECT_EQ(dlg.text, "accepted");
}

TEST_F(DialogTest, KeysReachPreTranslateInsideTheHostLoop)
{
    TestDialog dlg;
    ASSERT_TRUE(dlg.Create(IDD_TEST_DIALOG, nullptr));
    dlg.ShowWindow(SW_SHOW);
    HWND edit = dlg.GetDlgItem(IDC_TEST_EDIT);
    SetFocus(edit);
    SetWindowTextA(edit, "");

    // A plain host loop (GetMessage/Translate/Dispatch) with no dialog calls.
    dlg.consumeReturn = true;
    PostMessageA(edit, WM_KEYDOWN, VK_RETURN, 1);
    PostMessageA(edit, WM_KEYDOWN, 'A', 1);
    PumpPending();
    EXPECT_EQ(dlg.returnKeys, 1);
    char typed[8] = "";
    GetWindowTextA(edit, typed, sizeof typed);
    EXPECT_STREQ(typed, "a");  // other keys go their usual way
    EXPECT_EQ(dlg.initCount, 1);
    EXPECT_TRUE(IsWindow(dlg.m_hWnd));

    // Messages of other windows are not touched.
    HWND other = CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    PostMessageA(other, WM_KEYDOWN, VK_RETURN, 1);
    PumpPending();
    EXPECT_EQ(dlg.returnKeys, 1);
    DestroyWindow(other);
}

namespace {

class CountingEdit : public CWnd {
public:
    int chars = 0;
    bool destroyed = false;

protected:
    LRESULT WindowProc(UINT msg, WPARAM wp, LPARAM lp) override
    {
        if (msg == WM_CHAR) {
            ++chars;
            if (wp == 'X') throw std::invalid_argument("refused");
        }
        return Default(msg, wp, lp);
    }
    void PostNcDestroy() override { destroyed = true; }
};

} // namespace

TEST_F(DialogTest, SubclassedControlSeesItsMessagesUntilDestroyed)
{
    HWND edit = CreateWindowA("EDIT", "", WS_POPUP, 0, 0, 100, 20, nullptr, nullptr, nullptr, nullptr);
    CountingEdit wnd;
    ASSERT_TRUE(wnd.SubclassWindow(edit));
    EXPECT_EQ(CWnd::FromHandlePermanent(edit), &wnd);
    EXPECT_FALSE(CountingEdit().SubclassWindow(edit));  // one object per window

    SendMessageA(edit, WM_CHAR, 'q', 1);
    SendMessageA(edit, WM_CHAR, 'X', 1);  // throws inside; swallowed at the boundary
    EXPECT_EQ(wnd.chars, 2);
    char text[8] = "";
    GetWindowTextA(edit, text, sizeof text);
    EXPECT_STREQ(text, "q");  // the default processing still ran for 'q'

    DestroyWindow(edit);
    EXPECT_TRUE(wnd.destroyed);
    EXPECT_EQ(wnd.m_hWnd, nullptr);
    EXPECT_EQ(CWnd::FromHandlePermanent(edit), nullptr);
}

TEST_F(DialogTest, ForeignWindowsGetOneWrapperEach)
{
    HWND h = CreateWindowA("STATIC", "host", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    CWnd* a = CWnd::FromHandle(h);
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a, CWnd::FromHandle(h));
    EXPECT_EQ(a->GetWindowText(), "host");
    EXPECT_EQ(CWnd::FromHandle(nullptr), nullptr);
    DestroyWindow(h);
}
