// The pre-scan dialog's life: what it looks like when it opens, the host's
// window commands, and the ways it ends.
#include "ResourceIds.h"
#include "platform/ResourceLib.h"
#include "session/Session.h"
#include "support/DialogFixture.h"

#include <commctrl.h>

using namespace qvtest;

using DialogLifeTest = DialogFixture;

TEST_F(DialogLifeTest, OpensReadyToScan)
{
    g_session.nScanMethodIndex = 3;
    // Nothing to capture yet, even before the host's loop runs the device check.
    ASSERT_NE(qvShowPreScanDlg(m_hostWindow), nullptr);
    EXPECT_FALSE(Enabled(IDC_CAPTURE));
    PumpPending();
    EXPECT_TRUE(IsWindowVisible(Wnd()) && GetWindow(Wnd(), GW_OWNER) == m_hostWindow);
    // The posted device check asked the host once.
    EXPECT_EQ(Host().Codes(), std::vector<int32_t>({HOSTREQ_GET_DEVICE_STATUS}));
    EXPECT_TRUE(Enabled(IDC_START_SCAN) && Enabled(IDC_OPEN_LIST));
    for (int id : {IDC_SAVE_LIST, IDC_DELETE_SCENES, IDC_MARK_ALL, IDC_CLEAR_ALL, IDC_CAPTURE, IDC_PREVIEW,
                   IDC_GOTO, IDC_MERGE_SCENES, IDC_SPLIT_SCENE})
        EXPECT_FALSE(Enabled(id)) << id;
    EXPECT_TRUE(Visible(IDC_MERGE_SCENES) && !Visible(IDC_SPLIT_SCENE) && !Visible(IDC_PREVIEW_VIDEO));
    EXPECT_EQ(SendMessageA(Item(IDC_TAPE_NAME), EM_GETLIMITTEXT, 0, 0), 100);  // what their fields hold
    EXPECT_EQ(SendMessageA(Item(IDC_TAPE_DESCRIPTION), EM_GETLIMITTEXT, 0, 0), 520);
    EXPECT_EQ(SendMessageA(Item(IDC_SCAN_METHOD), CB_GETCOUNT, 0, 0), 3);
    EXPECT_EQ(SendMessageA(Item(IDC_SCAN_METHOD), CB_GETCURSEL, 0, 0), 2);  // the setting's method
    std::string list = std::string(g_session.szSavePSFDir) + "\\" + qv::LoadResString(IDS_DEFAULT_LIST_NAME) + ".psf";
    EXPECT_EQ(Title(), Dlg().m_strCaption + " - " + list);
    // Each bitmap button takes the size of one of its picture's three frames.
    for (auto [id, bitmap] : {std::pair{IDC_VIEW_MODE, IDB_VIEW_THUMBNAILS}, {IDC_CAPTURE, IDB_CAPTURE},
                              {IDC_PREVIEW, IDB_PREVIEW_PLAY}, {IDC_GOTO, IDB_GOTO}, {IDC_MERGE_SCENES, IDB_MERGE},
                              {IDC_SPLIT_SCENE, IDB_SPLIT}}) {
        HBITMAP h = static_cast<HBITMAP>(LoadImageA(g_hModule, MAKEINTRESOURCEA(bitmap), IMAGE_BITMAP, 0, 0, 0));
        BITMAP bm = {};
        GetObjectA(h, sizeof bm, &bm);
        DeleteObject(h);
        RECT rc;
        GetWindowRect(Item(id), &rc);
        EXPECT_TRUE(bm.bmWidth > 0 && rc.right - rc.left == bm.bmWidth / 3 && rc.bottom - rc.top == bm.bmHeight) << id;
    }
    // A tool tip for every control that has a text.
    int texts = 0;
    char text[256];
    for (HWND c = GetWindow(Wnd(), GW_CHILD); c; c = GetWindow(c, GW_HWNDNEXT))
        texts += GetDlgCtrlID(c) > 0 && LoadStringA(g_hResInst, UINT(GetDlgCtrlID(c)), text, sizeof text) > 0;
    EXPECT_GE(texts, 19);
    EXPECT_EQ(SendMessageA(Dlg().m_toolTip, TTM_GETTOOLCOUNT, 0, 0), texts);
    HWND first = Wnd();  // a second show replaces the first dialog
    EXPECT_TRUE(qvShowPreScanDlg(m_hostWindow) == g_hPreScanWnd && !IsWindow(first));
}

TEST_F(DialogLifeTest, WaysToClose)
{
    enum How { kEscape, kCloseButton, kCaptionClose, kHostClose };
    // scanning: when the close comes; answer: to the save question, 0: none asked
    struct Case { const char* what; How how; bool scanning; int scenes, answer; bool closes; } cases[] = {
        {"Escape, idle, nothing scanned", kEscape, false, 0, 0, true},
        {"Escape while scanning only stops", kEscape, true, 1, 0, false},
        {"Close button, cancelled", kCloseButton, false, 1, IDCANCEL, false},
        {"caption close, not saved", kCaptionClose, false, 1, IDNO, true},
        {"caption close while scanning", kCaptionClose, true, 0, 0, true},
        {"host closes while scanning", kHostClose, true, 1, IDNO, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Host().Reset();
        OpenDialog();
        HWND h = Wnd();
        StartScan();  // scenes make the list modified
        for (int i = 0; i < c.scenes; ++i) FeedScene(Tc(0, 0, i, 0), Tc(0, 0, i, 5));
        if (!c.scanning) PressKey(VK_ESCAPE);
        ModalResponder responder;
        bool hadCancel = false;
        if (c.answer)
            responder.ExpectWindow("save question", [&](HWND box) {
                hadCancel = GetDlgItem(box, IDCANCEL) != nullptr;
                PostMessageA(box, WM_COMMAND, c.answer, 0);
                return MessageBoxTextOf(box) == qv::LoadResString(IDS_ASK_SAVE_CHANGES);
            });
        switch (c.how) {
        case kEscape: SetFocus(Item(IDC_TAPE_NAME)); PressKey(VK_ESCAPE); break;
        case kCloseButton: Click(IDC_CLOSE_PRESCAN); break;
        case kCaptionClose: SendMessageA(h, WM_SYSCOMMAND, SC_CLOSE, 0); break;
        case kHostClose: qvForceToStopPreScan(1); break;
        }
        responder.Verify();
        // Only the host's own close offers no Cancel: it cannot be refused.
        if (c.answer) EXPECT_EQ(hadCancel, c.how != kHostClose);
        EXPECT_EQ(IsWindow(h) != FALSE, !c.closes);
        std::vector<int32_t> codes = Host().Codes();  // a running scan is stopped before the host hears of the close
        if (c.closes && c.scanning) EXPECT_EQ(codes.at(codes.size() - 2), HOSTREQ_STOP_SCAN);
        EXPECT_EQ(Host().Count(HOSTREQ_DIALOG_CLOSED), c.closes ? 1 : 0);
        EXPECT_EQ(g_bForcedStop, 0);
        if (c.closes) FeedScene(Tc(0, 1, 0, 0), Tc(0, 1, 0, 5));  // a no-op once the window is gone
        EXPECT_EQ(qvGetCurrentSceneNumber(), c.closes ? 0 : c.scenes);
        EXPECT_EQ(SceneTableSize(), c.closes ? 0 : c.scenes);
        if (IsWindow(h)) Dlg().m_bModified = 0, qvForceToStopPreScan(1);
    }
}
