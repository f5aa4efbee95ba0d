// Scans, captures, tape moves and stops, driven through the dialog's own
// controls, with the host's requests checked byte for byte.
#include "ResourceIds.h"
#include "platform/ResourceLib.h"
#include "scenes/SceneStore.h"
#include "session/Session.h"
#include "support/DialogFixture.h"
#include "support/TestEnvironment.h"

#include <algorithm>
#include <cstring>

using namespace qvtest;

namespace {

class ScanControlTest : public DialogFixture {
protected:
    void SetUp() override
    {
        DialogFixture::SetUp();
        std::strcpy(g_session.szCaptureFolder, m_folder.c_str());
        std::strcpy(g_session.szCaptureName, "Tape.avi");
    }
    std::string m_folder = MakeTempDir("Capture");
};

bool AllZero(const std::vector<uint8_t>& bytes, size_t from, size_t n)
{
    return bytes.size() >= from + n && std::all_of(&bytes[from], &bytes[from] + n, [](uint8_t b) { return !b; });
}

} // namespace

TEST_F(ScanControlTest, ScanRequestPerMethod)
{
    struct Case {  // method 3: the host scans (and captures) within the request
        int method, quick, wantIndex, sendsIndex, sendsQuick;
    } cases[] = {
        {1, 0, 1, 1, 0}, {2, 0, 0, 0, 0},
        {1, 2, 1, 0, 2},  // a quick scan makes no index file
        {3, 2, 1, 0, 0},  // a scan with capture is never quick, also for the feed inside it
    };
    OpenDialog();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.method * 10 + c.quick);
        g_session.nScanMethodIndex = c.method;
        g_session.nQuickScanSpeed = c.quick;
        g_session.nWantIndexFile = c.wantIndex;
        g_session.nSaveToLibrary = c.method == 2 ? 1 : 0;
        int seenQuick = -1;
        Host().OnRequest(HOSTREQ_START_SCAN, [&](intptr_t) { seenQuick = g_session.nQuickScanSpeed; return 1; });
        Click(IDC_START_SCAN);
        const RecordedRequest* r = Host().Last(HOSTREQ_START_SCAN);
        ASSERT_TRUE(r && r->record.size() == 512u);
        ScanRequest req = Host().LastRecord<ScanRequest>(HOSTREQ_START_SCAN);
        EXPECT_EQ(std::vector<int>({req.nScanMethod, req.bSaveToLibrary, req.bWantIndexFile, req.nQuickScanSpeed}),
                  std::vector<int>({c.method, c.method == 2, c.sendsIndex, c.sendsQuick}));
        EXPECT_EQ(seenQuick, c.sendsQuick);
        EXPECT_EQ(g_session.nQuickScanSpeed, c.quick);  // the setting itself is kept
        EXPECT_EQ(std::string(req.szCaptureName) + "|" + req.szCaptureFolder, "Tape.avi|" + m_folder);
        EXPECT_EQ(req.nSceneCount, 0);  // every byte not named is zero:
        EXPECT_TRUE(AllZero(r->record, 16 + 9, 150 - 9) && AllZero(r->record, 426, 2) && AllZero(r->record, 432, 80));
        for (int id : {IDC_START_SCAN, IDC_CLOSE_PRESCAN, IDC_HELP_PRESCAN, IDC_OPEN_LIST, IDC_VIEW_MODE})
            EXPECT_EQ(Enabled(id), c.method == 3) << id;
        if (c.method != 3) PressKey(VK_ESCAPE);
    }
    g_session.nScanMethodIndex = 1;
    Host().Reset();  // a refused scan is stopped at once
    Host().OnRequest(HOSTREQ_START_SCAN, [](intptr_t) { return 0; });
    Click(IDC_START_SCAN);
    EXPECT_EQ(Host().Codes(), std::vector<int32_t>({HOSTREQ_START_SCAN, HOSTREQ_STOP_SCAN}));
    EXPECT_TRUE(Enabled(IDC_START_SCAN) && Enabled(IDC_CLOSE_PRESCAN));
}

TEST_F(ScanControlTest, ScenesBecomeRowsAndEscapeStops)
{
    OpenDialog();
    StartScan();
    SceneInfo orphan = MakeScene(Tc(0, 0, 1, 0), Tc(0, 0, 2, 0));
    qvSetSceneDataEnd(&orphan);  // an end with nothing begun is dropped
    SceneInfo begin = MakeScene(Tc(0, 0, 10, 0), 0);
    qvSetSceneDataBegin(&begin, nullptr, nullptr);
    // The begun scene is a row at once, open-ended and not yet counted.
    ASSERT_EQ(RowCount(), 1);
    EXPECT_EQ(CellText(0, 2) + "|" + CellText(0, 3), "In: 00:00:10:00\nOut: --:--:--:--\n(--:--:--:--)|2003/ 7/ 4\n 15:06:09");
    for (uint32_t out : {Tc(0, 0, 9, 0), Tc(0, 0, 12, 12), Tc(0, 0, 12, 12)}) {  // too early; right; twice
        SceneInfo end = MakeScene(Tc(0, 0, 10, 0), out);
        qvSetSceneDataEnd(&end);
    }
    EXPECT_EQ(qvGetCurrentSceneNumber(), 1);
    EXPECT_EQ(CellText(0, 2), "In: 00:00:10:00\nOut: 00:00:12:12\n(00:00:02:12)");
    FeedScene(Tc(0, 0, 13, 0), Tc(0, 0, 20, 0));
    PressKey(VK_ESCAPE);
    ASSERT_NE(Host().Last(HOSTREQ_STOP_SCAN), nullptr);
    EXPECT_EQ(Host().Last(HOSTREQ_STOP_SCAN)->arg, 2);  // the count itself, not an address
    EXPECT_EQ(Title().back(), '*');
    for (int id : {IDC_START_SCAN, IDC_SAVE_LIST, IDC_MARK_ALL, IDC_CLEAR_ALL, IDC_DELETE_SCENES, IDC_CLOSE_PRESCAN})
        EXPECT_TRUE(Enabled(id)) << id;
}

TEST_F(ScanControlTest, CaptureSendsTheMarkedScenesInTableOrder)
{
    OpenWithScenes(5);
    std::string tape(100, 'T');  // fills its field: no terminator follows
    SetWindowTextA(Item(IDC_TAPE_NAME), tape.c_str());
    for (int row : {3, 0, 2}) MarkRow(row);
    Click(IDC_CAPTURE);
    const RecordedRequest* r = Host().Last(HOSTREQ_CAPTURE_SCENES);
    ASSERT_TRUE(r && r->spans.size() == 3u);
    CaptureRequest req = Host().LastRecord<CaptureRequest>(HOSTREQ_CAPTURE_SCENES);
    EXPECT_EQ(req.nSpanCount, 3);
    EXPECT_EQ(std::string(req.szTapeName, sizeof req.szTapeName) + "|" + req.szCaptureName + "|" +
                  reinterpret_cast<const char*>(r->record.data() + 266), tape + "|Tape.avi|" + m_folder);
    const int rows[] = {0, 2, 3};
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(r->spans[i].dwTimeCodeIn == Tc(0, 0, 10 * rows[i], 0) &&
                    r->spans[i].dwPositionOut == Tc(0, 0, 10 * rows[i] + 5, 0) / 2) << i;
    EXPECT_TRUE(AllZero(r->record, 532, 84) && Enabled(IDC_START_SCAN));  // the answer 1: the capture has finished
    // The host reports each captured file against the marked scenes, in order.
    qvSetCapSceneFileName(1, "C:\\Tape 2.avi");
    EXPECT_EQ(CellText(2, 5), qv::LoadResString(IDS_CAPTURED_FILE_PREFIX) + "C:\\Tape 2.avi");
}

TEST_F(ScanControlTest, GoToUsesThePositionOrTheTimeCode)
{
    OpenWithScenes(1);  // positions are half the time codes
    SelectRow(0);
    // answer 0: the tape keeps moving until a stop
    struct Case { UINT command; int32_t request; uint32_t value; int32_t answer; } cases[] = {
        {ID_GOTO_SCENE_START, HOSTREQ_SEEK_POSITION, Tc(0, 0, 0, 0) / 2, 1},
        {ID_GOTO_SCENE_END, HOSTREQ_SEEK_POSITION, Tc(0, 0, 5, 0) / 2, 1},
        {ID_GOTO_SCENE_START, HOSTREQ_SEEK_TIMECODE, Tc(0, 0, 0, 0), 1},
        {ID_GOTO_SCENE_END, HOSTREQ_SEEK_TIMECODE, Tc(0, 0, 5, 0), 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.value);
        // The host's scene says whether the device knows positions.
        if (c.request == HOSTREQ_SEEK_TIMECODE) g_arScenes.GetAt(0)->dwPositionIn = QV_NO_POSITION;
        int stateInside = -1;
        Host().Reset();
        Host().OnRequest(c.request, [&](intptr_t) { stateInside = Dlg().m_nState; return c.answer; });
        SendMessageA(Wnd(), WM_COMMAND, c.command, 0);
        EXPECT_EQ(Host().Count(c.request), 1);
        EXPECT_EQ(Host().LastRecord<uint32_t>(c.request), c.value);
        EXPECT_EQ(stateInside, PS_SEEKING);
        EXPECT_EQ(Enabled(IDC_START_SCAN), c.answer != 0);
        if (!c.answer) PressKey(VK_ESCAPE);  // a stop ends the wait
        EXPECT_EQ(Dlg().m_nState, PS_IDLE);
        EXPECT_EQ(Dlg().m_nTimerId, 0u);  // and with it the title's position updates
    }
}

TEST_F(ScanControlTest, TitleShowsTheTapePositionWhileScanning)
{
    uint32_t position = Tc(0, 12, 34, 5);
    Host().OnRequest(HOSTREQ_GET_POSITION, [&](intptr_t arg) { return *reinterpret_cast<uint32_t*>(arg) = position, 1; });
    OpenDialog();
    StartScan();
    PumpFor(150);  // the status timer writes the title
    std::string state = qv::LoadResString(IDS_STATE_SCANNING) + qv::LoadResString(IDS_STATE_CLOSING);
    EXPECT_EQ(Title(), Dlg().m_strCaption + "  --  00:12:34:05 -- " + state);
    SetWindowTextA(Wnd(), "marker");  // an unchanged position leaves the title
    PumpFor(250);
    EXPECT_EQ(Title(), "marker");
    position = 0;  // no position: the state text alone
    PumpFor(150);
    EXPECT_EQ(Title(), Dlg().m_strCaption + " -- " + state);
    EXPECT_GT(Host().Count(HOSTREQ_GET_POSITION), 3);  // asked every 100 ms
    PressKey(VK_ESCAPE);
    EXPECT_EQ(Dlg().m_nTimerId, 0u);  // the stop ends the status timer
}
