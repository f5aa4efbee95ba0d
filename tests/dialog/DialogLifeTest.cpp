// The pre-scan dialog's life: what it looks like when it opens, its keys,
// its system commands, and how it ends.
#include "ResourceIds.h"
#include "platform/ResourceLib.h"
#include "session/Session.h"
#include "support/DialogFixture.h"

#include <commctrl.h>

using namespace qvtest;

namespace {

class DialogLifeTest : public DialogFixture {};

std::string DefaultListPath()
{
    return std::string(g_session.szSavePSFDir) + "\\" + qv::LoadResString(IDS_DEFAULT_LIST_NAME) + ".psf";
}

} // namespace

TEST_F(DialogLifeTest, OpensReadyToScan)
{
    OpenDialog();
    EXPECT_TRUE(IsWindowVisible(Wnd()));
    EXPECT_EQ(GetWindow(Wnd(), GW_OWNER), m_hostWindow);
    // The posted device check asked the host once.
    EXPECT_EQ(Host().Codes(), std::vector<int32_t>({HOSTREQ_GET_DEVICE_STATUS}));
    EXPECT_TRUE(Enabled(IDC_START_SCAN));
    EXPECT_TRUE(Enabled(IDC_OPEN_LIST));
    for (int id : {IDC_SAVE_LIST, IDC_DELETE_SCENES, IDC_MARK_ALL, IDC_CLEAR_ALL, IDC_CAPTURE, IDC_PREVIEW,
                   IDC_GOTO, IDC_MERGE_SCENES, IDC_SPLIT_SCENE})
        EXPECT_FALSE(Enabled(id)) << id;
    EXPECT_TRUE(Visible(IDC_MERGE_SCENES));
    EXPECT_FALSE(Visible(IDC_SPLIT_SCENE));
    EXPECT_FALSE(Visible(IDC_PREVIEW_VIDEO));
    EXPECT_EQ(std::string(g_session.szSceneListFile), DefaultListPath());
    EXPECT_EQ(Title(), Dlg().m_strCaption + " - " + DefaultListPath());
    EXPECT_EQ(qvGetCurrentSceneNumber(), 0);
}

TEST_F(DialogLifeTest, ScanMethodListFollowsTheSetting)
{
    for (auto [setting, item] : {std::pair{3, 2}, {1, 0}}) {
        g_session.nScanMethodIndex = setting;
        OpenDialog();
        HWND combo = Item(IDC_SCAN_METHOD);
        EXPECT_EQ(SendMessageA(combo, CB_GETCOUNT, 0, 0), 3);
        EXPECT_EQ(SendMessageA(combo, CB_GETCURSEL, 0, 0), item) << setting;
    }
}

TEST_F(DialogLifeTest, TapeFieldsHaveTheirLimits)
{
    OpenDialog();
    EXPECT_EQ(SendMessageA(Item(IDC_TAPE_NAME), EM_GETLIMITTEXT, 0, 0), 100);
    EXPECT_EQ(SendMessageA(Item(IDC_TAPE_DESCRIPTION), EM_GETLIMITTEXT, 0, 0), 520);
    SetFocus(Item(IDC_TAPE_NAME));
    for (int i = 0; i < 101; ++i) SendMessageA(Item(IDC_TAPE_NAME), WM_CHAR, 'n', 1);
    EXPECT_EQ(GetWindowTextLengthA(Item(IDC_TAPE_NAME)), 100);
}

TEST_F(DialogLifeTest, ListColumnsForTheThumbnailView)
{
    OpenDialog();
    HWND list = Item(IDC_SCENE_LIST);
    HWND header = reinterpret_cast<HWND>(SendMessageA(list, LVM_GETHEADER, 0, 0));
    EXPECT_EQ(SendMessageA(header, HDM_GETITEMCOUNT, 0, 0), 6);
    EXPECT_EQ(SendMessageA(list, LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0),
              LVS_EX_FULLROWSELECT | LVS_EX_HEADERDRAGDROP | LVS_EX_SUBITEMIMAGES | LVS_EX_GRIDLINES);
    char text[100] = "";
    HDITEMA item = {};
    item.mask = HDI_TEXT | HDI_FORMAT;
    item.pszText = text;
    item.cchTextMax = sizeof text;
    SendMessageA(header, HDM_GETITEMA, 4, reinterpret_cast<LPARAM>(&item));
    EXPECT_EQ(std::string(text), qv::LoadResString(IDS_COL_COMMENT));
    EXPECT_TRUE(item.fmt & HDF_CENTER);
    // Column 5 takes what the others leave of the list's width.
    RECT client;
    GetClientRect(list, &client);
    int total = 0;
    for (int c = 0; c < 6; ++c) total += static_cast<int>(SendMessageA(list, LVM_GETCOLUMNWIDTH, c, 0));
    EXPECT_EQ(total, client.right);
    EXPECT_GE(SendMessageA(list, LVM_GETCOLUMNWIDTH, 1, 0), 84);
}

TEST_F(DialogLifeTest, ToolTipsForEveryControlWithAText)
{
    OpenDialog();
    HWND tip = Dlg().m_toolTip;
    ASSERT_NE(tip, nullptr);
    int expected = 0;
    for (HWND c = GetWindow(Wnd(), GW_CHILD); c; c = GetWindow(c, GW_HWNDNEXT)) {
        char text[256];
        int id = GetDlgCtrlID(c);
        if (id > 0 && LoadStringA(g_hResInst, static_cast<UINT>(id), text, sizeof text) > 0) ++expected;
    }
    EXPECT_GE(expected, 19);
    EXPECT_EQ(SendMessageA(tip, TTM_GETTOOLCOUNT, 0, 0), expected);
}

TEST_F(DialogLifeTest, SecondShowReplacesTheFirst)
{
    OpenDialog();
    HWND first = Wnd();
    CPreScanDlg* firstObject = g_session.pDialog;
    HWND second = qvShowPreScanDlg(m_hostWindow);
    ASSERT_NE(second, nullptr);
    EXPECT_FALSE(IsWindow(first));
    EXPECT_NE(g_session.pDialog, nullptr);
    EXPECT_EQ(second, g_hPreScanWnd);
    (void)firstObject;
}

TEST_F(DialogLifeTest, MinimiseAndRestoreFromTheHost)
{
    OpenDialog();
    qvMinimizePreScanDlg();
    EXPECT_TRUE(IsIconic(Wnd()));
    qvRestorePreScanDlg();
    EXPECT_FALSE(IsIconic(Wnd()));
    Dlg().SendSysCommand(SC_MAXIMIZE);  // anything else is ignored
    EXPECT_FALSE(IsZoomed(Wnd()));
}

TEST_F(DialogLifeTest, EscapeWhileIdleClosesAndTellsTheHost)
{
    OpenDialog();
    HWND h = Wnd();
    SetFocus(Item(IDC_TAPE_NAME));
    PressKey(VK_ESCAPE);
    EXPECT_FALSE(IsWindow(h));
    EXPECT_EQ(g_hPreScanWnd, nullptr);
    EXPECT_EQ(Host().Count(HOSTREQ_DIALOG_CLOSED), 1);
    EXPECT_EQ(g_bStopScan, 0);
    EXPECT_EQ(qvGetCurrentSceneNumber(), 0);
    // The feed is a no-op once the window is gone.
    SceneInfo s = MakeScene(Tc(0, 0, 1, 0), 0);
    qvSetSceneDataBegin(&s, nullptr, nullptr);
    EXPECT_EQ(SceneTableSize(), 0);
}

TEST_F(DialogLifeTest, ModifiedListAsksBeforeClosing)
{
    OpenDialog();
    StartScan();
    FeedScene(Tc(0, 0, 1, 0), Tc(0, 0, 5, 0));
    PressKey(VK_ESCAPE);  // stops the scan
    ASSERT_EQ(Dlg().m_nState, PS_IDLE);
    ASSERT_EQ(Dlg().m_bModified, 1);
    {
        ModalResponder responder;
        responder.ExpectMessageRes(IDS_ASK_SAVE_CHANGES, IDCANCEL);
        Click(IDC_CLOSE_PRESCAN);
        responder.Verify();
    }
    EXPECT_TRUE(IsWindow(Wnd()));  // cancelled: nothing changed
    EXPECT_EQ(qvGetCurrentSceneNumber(), 1);
    {
        ModalResponder responder;
        responder.ExpectMessageRes(IDS_ASK_SAVE_CHANGES, IDNO);
        SendMessageA(Wnd(), WM_SYSCOMMAND, SC_CLOSE, 0);
        responder.Verify();
    }
    EXPECT_EQ(g_hPreScanWnd, nullptr);
    EXPECT_EQ(SceneTableSize(), 0);
    EXPECT_EQ(Host().Count(HOSTREQ_DIALOG_CLOSED), 1);
}

TEST_F(DialogLifeTest, HostForcedCloseOffersNoCancel)
{
    OpenDialog();
    StartScan();
    FeedScene(Tc(0, 0, 1, 0), Tc(0, 0, 5, 0));
    bool hadCancel = true;
    ModalResponder responder;
    responder.ExpectWindow("save question without Cancel", [&](HWND box) {
        hadCancel = GetDlgItem(box, IDCANCEL) != nullptr;
        PostMessageA(box, WM_COMMAND, IDNO, 0);
        return MessageBoxTextOf(box) == qv::LoadResString(IDS_ASK_SAVE_CHANGES);
    });
    qvForceToStopPreScan(1);
    responder.Verify();
    EXPECT_FALSE(hadCancel);
    EXPECT_EQ(g_bForcedStop, 0);
    // The scan was stopped first (request 2), then the host told (request 9).
    std::vector<int32_t> codes = Host().Codes();
    ASSERT_GE(codes.size(), 2u);
    EXPECT_EQ(codes[codes.size() - 2], HOSTREQ_STOP_SCAN);
    EXPECT_EQ(codes.back(), HOSTREQ_DIALOG_CLOSED);
    EXPECT_EQ(g_hPreScanWnd, nullptr);
}

TEST_F(DialogLifeTest, CaptionCloseWhileScanningStopsFirst)
{
    OpenDialog();
    StartScan();
    SendMessageA(Wnd(), WM_SYSCOMMAND, SC_CLOSE, 0);  // nothing scanned: no question
    std::vector<int32_t> codes = Host().Codes();
    ASSERT_GE(codes.size(), 2u);
    EXPECT_EQ(codes[codes.size() - 2], HOSTREQ_STOP_SCAN);
    EXPECT_EQ(codes.back(), HOSTREQ_DIALOG_CLOSED);
}
