// The window layer: the dialog procedure's routing and the answers it
// hands back, modeless life, and subclassed controls.  Modal life is the
// options dialog's; the key filter in a host's own loop is the scene list's
// comment editor's (Return and Escape go through it).
#include "platform/Dialog.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

enum : UINT { IDD_TEST_DIALOG = 100, IDC_TEST_EDIT = 101, WM_TEST_PRIVATE = WM_USER + 1, NM_TEST_FAILS = 0x7777 };

class TestDialog : public CDialog {
public:
    TestDialog() : CDialog(IDD_TEST_DIALOG, nullptr) {}

protected:
    bool OnNotify(NMHDR* pHdr, LRESULT& result) override
    {
        if (pHdr->code == NM_TEST_FAILS) throw std::invalid_argument("handler failed");
        result = static_cast<LRESULT>(pHdr->code) * 2;
        return true;
    }
    bool OnMessage(UINT msg, WPARAM wp, LPARAM, INT_PTR& result) override
    {
        result = INT_PTR(wp) + 1;
        return msg == WM_TEST_PRIVATE;
    }
    void DataToControls() override { SetItemText(IDC_TEST_EDIT, "initial"); }
};

} // namespace

TEST(Dialog, ModelessDialogRoutesItsMessages)
{
    CDialog::SetTemplateInstance(GetModuleHandleA(nullptr));  // the template is this test's own
    TestDialog dlg;
    ASSERT_TRUE(dlg.Create(IDD_TEST_DIALOG, nullptr));
    HWND h = dlg.m_hWnd;
    EXPECT_EQ(dlg.GetItemText(IDC_TEST_EDIT), "initial");  // data went into the controls
    // What each handler answers reaches the sender; a handler's exception
    // stays inside the dialog procedure.
    NMHDR notify = {h, 1, 21}, failing = {h, 1, NM_TEST_FAILS};
    struct Row { UINT msg; WPARAM wp; NMHDR* hdr; LRESULT result; } rows[] = {
        {WM_NOTIFY, 1, &notify, 42}, {WM_TEST_PRIVATE, 41, nullptr, 42}, {WM_NOTIFY, 1, &failing, 0}};
    for (const Row& r : rows)
        EXPECT_EQ(SendMessageA(h, r.msg, r.wp, reinterpret_cast<LPARAM>(r.hdr)), r.result) << r.msg << " " << r.wp;
    EXPECT_TRUE(dlg.DestroyWindow() && !IsWindow(h) && !dlg.m_hWnd);
}

TEST(Wnd, SubclassedControlIsFoundUntilDestroyed)
{
    HWND edit = CreateWindowA("EDIT", "", WS_POPUP, 0, 0, 100, 20, nullptr, nullptr, nullptr, nullptr);
    CWnd wnd;
    ASSERT_TRUE(wnd.SubclassWindow(edit));
    EXPECT_FALSE(CWnd().SubclassWindow(edit));  // one object per window
    SendMessageA(edit, WM_CHAR, 'q', 1);
    EXPECT_TRUE(CWnd::FromHandlePermanent(edit) == &wnd && wnd.GetWindowText() == "q");  // default processing ran
    DestroyWindow(edit);
    EXPECT_TRUE(wnd.m_hWnd == nullptr && CWnd::FromHandlePermanent(edit) == nullptr);
}
