// The window layer: the dialog procedure's routing and the answers it
// hands back, modal and modeless life, the key filter inside a host's own
// message loop, and subclassed controls.
#include "platform/Dialog.h"
#include "support/Pump.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

using namespace qvtest;

namespace {

const UINT IDD_TEST_DIALOG = 100, WM_TEST_PRIVATE = WM_USER + 1, NM_TEST_FAILS = 0x7777;
const int IDC_TEST_EDIT = 101, IDC_TEST_BUTTON = 102;

class TestDialog : public CDialog {
public:
    TestDialog() : CDialog(IDD_TEST_DIALOG, nullptr) {}

    int presses = 0, returnKeys = 0, refusals = 0;
    std::string text = "initial";
    const char* userTypes = nullptr;  // what the user types as soon as the dialog shows
    UINT userPresses = 0;             // and the button the user then presses

    bool PreTranslateMessage(MSG* pMsg) override
    {
        returnKeys += pMsg->message == WM_KEYDOWN && pMsg->wParam == VK_RETURN;
        if (pMsg->message == WM_KEYDOWN && pMsg->wParam == VK_RETURN) return true;  // taken here
        return CDialog::PreTranslateMessage(pMsg);
    }

protected:
    BOOL OnInitDialog() override
    {
        CDialog::OnInitDialog();
        if (userTypes) SetItemText(IDC_TEST_EDIT, userTypes);
        if (userPresses) PostMessage(WM_COMMAND, userPresses);
        return TRUE;
    }
    bool OnCommand(UINT id, UINT code, HWND hCtl) override
    {
        presses += id == IDC_TEST_BUTTON && code == BN_CLICKED;
        if (id == IDC_TEST_BUTTON) return true;
        return CDialog::OnCommand(id, code, hCtl);
    }
    bool OnNotify(NMHDR* pHdr, LRESULT& result) override
    {
        if (pHdr->code == NM_TEST_FAILS) throw std::invalid_argument("handler failed");
        result = static_cast<LRESULT>(pHdr->code) * 2;
        return true;
    }
    bool OnMessage(UINT msg, WPARAM wp, LPARAM, INT_PTR& result) override
    {
        result = static_cast<INT_PTR>(wp) + 1;
        return msg == WM_TEST_PRIVATE;
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

class CountingEdit : public CWnd {
public:
    int chars = 0;
    bool destroyed = false;

protected:
    LRESULT WindowProc(UINT msg, WPARAM wp, LPARAM lp) override
    {
        chars += msg == WM_CHAR;
        if (msg == WM_CHAR && wp == 'X') throw std::invalid_argument("refused");
        return Default(msg, wp, lp);
    }
    void PostNcDestroy() override { destroyed = true; }
};

} // namespace

TEST_F(DialogTest, ModelessDialogRoutesItsMessages)
{
    TestDialog dlg;
    ASSERT_TRUE(dlg.Create(IDD_TEST_DIALOG, nullptr));
    HWND h = dlg.m_hWnd;
    EXPECT_EQ(dlg.GetItemText(IDC_TEST_EDIT), "initial");  // data went into the controls
    SendMessageA(GetDlgItem(h, IDC_TEST_BUTTON), BM_CLICK, 0, 0);
    EXPECT_EQ(dlg.presses, 1);
    // What each handler answers reaches the sender; a handler's exception
    // stays inside the dialog procedure.
    NMHDR notify = {h, 1, 21}, failing = {h, 1, NM_TEST_FAILS};
    struct Row { UINT msg; WPARAM wp; NMHDR* hdr; LRESULT result; } rows[] = {
        {WM_NOTIFY, 1, &notify, 42}, {WM_TEST_PRIVATE, 41, nullptr, 42}, {WM_NOTIFY, 1, &failing, 0}};
    for (const Row& r : rows)
        EXPECT_EQ(SendMessageA(h, r.msg, r.wp, reinterpret_cast<LPARAM>(r.hdr)), r.result) << r.msg << " " << r.wp;
    EXPECT_TRUE(dlg.DestroyWindow());
    EXPECT_FALSE(IsWindow(h));
    EXPECT_EQ(dlg.m_hWnd, nullptr);
}

TEST_F(DialogTest, ModalDialogEndsWithTheUsersAnswer)
{
    struct Row { const char* typed; UINT button; int refusals; const char* kept; } rows[] = {
        {"typed", IDOK, 0, "typed"}, {"typed", IDCANCEL, 0, "initial"},
        {"refuse", IDOK, 1, "accepted"}};  // refused: open until the user corrects it
    for (const Row& r : rows) {
        SCOPED_TRACE(r.typed);
        TestDialog dlg;
        dlg.userTypes = r.typed;
        dlg.userPresses = r.button;
        EXPECT_EQ(dlg.DoModal(), INT_PTR(r.button));
        EXPECT_EQ(dlg.refusals, r.refusals);
        EXPECT_EQ(dlg.text, r.kept);
        EXPECT_EQ(dlg.m_hWnd, nullptr);
    }
}

TEST_F(DialogTest, KeysReachPreTranslateInsideTheHostLoop)
{
    TestDialog dlg;
    ASSERT_TRUE(dlg.Create(IDD_TEST_DIALOG, nullptr));
    dlg.ShowWindow(SW_SHOW);
    HWND edit = dlg.GetDlgItem(IDC_TEST_EDIT), other = CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 9, 9, 0, 0, 0, 0);
    SetFocus(edit);
    SetWindowTextA(edit, "");
    // A plain host loop (GetMessage/Translate/Dispatch) with no dialog calls;
    // other keys go their usual way, and other windows' keys are not looked at.
    PostMessageA(edit, WM_KEYDOWN, VK_RETURN, 1);
    PostMessageA(edit, WM_KEYDOWN, 'A', 1);
    PostMessageA(other, WM_KEYDOWN, VK_RETURN, 1);
    PumpPending();
    EXPECT_EQ(dlg.returnKeys, 1);
    EXPECT_EQ(dlg.GetItemText(IDC_TEST_EDIT), "a");
    DestroyWindow(other);
}

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
    EXPECT_EQ(CWnd::FromHandle(edit)->GetWindowText(), "q");  // the default processing still ran
    DestroyWindow(edit);
    EXPECT_TRUE(wnd.destroyed);
    EXPECT_EQ(wnd.m_hWnd, nullptr);
    EXPECT_EQ(CWnd::FromHandlePermanent(edit), nullptr);
    // A window no object owns gets one lasting wrapper.
    HWND h = CreateWindowA("STATIC", "host", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    EXPECT_TRUE(CWnd::FromHandle(h) == CWnd::FromHandle(h) && CWnd::FromHandle(h)->GetWindowText() == "host");
    EXPECT_EQ(CWnd::FromHandle(nullptr), nullptr);
    DestroyWindow(h);
}
