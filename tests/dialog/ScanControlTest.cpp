// Scans, captures, tape moves and stops, driven through the dialog's own
// controls, with the host's requests checked byte for byte.
#include "ResourceIds.h"
#include "platform/ResourceLib.h"
#include "scenes/SceneStore.h"
#include "session/Session.h"
#include "support/DialogFixture.h"
#include "support/TestEnvironment.h"

#include <commctrl.h>
#include <cstring>
#include <thread>

using namespace qvtest;

namespace {

class ScanControlTest : public DialogFixture {
protected:
    void SetUp() override
    {
        DialogFixture::SetUp();
        m_folder = MakeTempDir("Capture");
        std::strcpy(g_session.szCaptureFolder, m_folder.c_str());
        std::strcpy(g_session.szCaptureName, "Tape.avi");
    }
    const ScanRequest& LastScan()
    {
        const RecordedRequest* r = Host().Last(HOSTREQ_START_SCAN);
        EXPECT_NE(r, nullptr);
        static ScanRequest req;
        std::memcpy(&req, r->record.data(), sizeof req);
        return req;
    }
    void MarkScenes(std::initializer_list<int> rows)
    {
        for (int r : rows) g_arScenes.GetAt(r)->bMarked = 1;
        Dlg().m_listScenes.m_nMarkedCount = static_cast<int>(rows.size());
        Dlg().SetCaptureEnabled(1);
    }
    std::string m_folder;
};

bool AllZero(const uint8_t* p, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        if (p[i]) return false;
    return true;
}

} // namespace

TEST_F(ScanControlTest, StartSendsTheScanRequest)
{
    g_session.nScanMethodIndex = 1;
    g_session.nWantIndexFile = 1;
    g_session.nSaveToLibrary = 1;
    OpenDialog();
    StartScan();
    const RecordedRequest* r = Host().Last(HOSTREQ_START_SCAN);
    ASSERT_NE(r, nullptr);
    ASSERT_EQ(r->record.size(), 512u);
    const ScanRequest& req = LastScan();
    EXPECT_EQ(req.nScanMethod, 1);
    EXPECT_EQ(req.bSaveToLibrary, 1);
    EXPECT_EQ(req.bWantIndexFile, 1);
    EXPECT_EQ(req.nQuickScanSpeed, 0);
    EXPECT_STREQ(req.szCaptureName, "Tape.avi");
    EXPECT_EQ(std::string(req.szCaptureFolder), m_folder);
    EXPECT_EQ(req.nSceneCount, 0);
    // Every byte not named is zero.
    const uint8_t* bytes = r->record.data();
    EXPECT_TRUE(AllZero(bytes + 16 + 9, 150 - 9));
    EXPECT_TRUE(AllZero(bytes + 426, 2));
    EXPECT_TRUE(AllZero(bytes + 432, 80));
    // Scanning: everything is disabled and the timer runs.
    EXPECT_EQ(Dlg().m_bBusy, 1);
    EXPECT_NE(Dlg().m_nTimerId, 0u);
    for (int id : {IDC_START_SCAN, IDC_CLOSE_PRESCAN, IDC_HELP_PRESCAN, IDC_OPEN_LIST, IDC_VIEW_MODE})
        EXPECT_FALSE(Enabled(id)) << id;
    EXPECT_EQ(GetFocus(), Item(IDC_START_SCAN) ? GetFocus() : nullptr);
}

TEST_F(ScanControlTest, QuickScanSendsNoIndexFileAndMethodThreeNeither)
{
    g_session.nQuickScanSpeed = 2;
    g_session.nWantIndexFile = 1;
    OpenDialog();
    StartScan();
    EXPECT_EQ(LastScan().bWantIndexFile, 0);
    EXPECT_EQ(LastScan().nQuickScanSpeed, 2);
    PressKey(VK_ESCAPE);

    g_session.nScanMethodIndex = 3;
    int32_t seenQuick = -1, seenIndex = -1;
    Host().OnRequest(HOSTREQ_START_SCAN, [&](intptr_t) {
        seenQuick = g_session.nQuickScanSpeed;  // the feed runs its normal path inside
        seenIndex = g_session.nWantIndexFile;
        return 1;
    });
    Click(IDC_START_SCAN);
    EXPECT_EQ(LastScan().nScanMethod, 3);
    EXPECT_EQ(LastScan().bWantIndexFile, 0);
    EXPECT_EQ(LastScan().nQuickScanSpeed, 0);
    EXPECT_EQ(seenQuick, 0);
    EXPECT_EQ(seenIndex, 0);
    EXPECT_EQ(g_session.nQuickScanSpeed, 2);  // restored afterwards
    EXPECT_EQ(g_session.nWantIndexFile, 1);
    EXPECT_EQ(Dlg().m_nState, PS_IDLE);
}

TEST_F(ScanControlTest, RefusedScanIsStoppedAtOnce)
{
    OpenDialog();
    Host().OnRequest(HOSTREQ_START_SCAN, [](intptr_t) { return 0; });
    Click(IDC_START_SCAN);
    EXPECT_EQ(Host().Codes(), std::vector<int32_t>({HOSTREQ_GET_DEVICE_STATUS, HOSTREQ_START_SCAN,
                                                     HOSTREQ_STOP_SCAN}));
    EXPECT_EQ(Dlg().m_nState, PS_IDLE);
    EXPECT_TRUE(Enabled(IDC_START_SCAN));
    EXPECT_TRUE(Enabled(IDC_CLOSE_PRESCAN));
}

TEST_F(ScanControlTest, DeclinedCaptureFolderSendsNothing)
{
    std::string missing = m_folder + "\\missing";
    std::strcpy(g_session.szCaptureFolder, missing.c_str());
    OpenDialog();
    ModalResponder responder;
    responder.ExpectMessageRes(IDS_ASK_CREATE_FOLDER, missing.c_str(), IDNO);
    Click(IDC_START_SCAN);
    responder.Verify();
    EXPECT_EQ(Host().Count(HOSTREQ_START_SCAN), 0);
    EXPECT_EQ(Dlg().m_nState, PS_IDLE);
}

TEST_F(ScanControlTest, ScenesBecomeRowsAndEscapeStops)
{
    OpenDialog();
    StartScan();
    Thumbnail thumb = MakeThumbnail(10, 200, 10);
    SceneInfo begin = MakeScene(Tc(0, 0, 10, 0), 0, static_cast<uint32_t>(thumb.bits.size()));
    qvSetSceneDataBegin(&begin, &thumb.header, thumb.bits.data());
    // The begun scene is a row at once, open-ended and not yet counted.
    ASSERT_EQ(RowCount(), 1);
    EXPECT_EQ(qvGetCurrentSceneNumber(), 0);
    EXPECT_EQ(CellText(0, 2), "In: 00:00:10:00\nOut: --:--:--:--\n(--:--:--:--)");
    EXPECT_EQ(CellText(0, 3), "2003/ 7/ 4\n 15:06:09");
    EXPECT_EQ(g_bHaveThumbnails, 1);
    SceneInfo end = MakeScene(Tc(0, 0, 10, 0), Tc(0, 0, 12, 12));
    qvSetSceneDataEnd(&end);
    EXPECT_EQ(qvGetCurrentSceneNumber(), 1);
    EXPECT_EQ(CellText(0, 2), "In: 00:00:10:00\nOut: 00:00:12:12\n(00:00:02:12)");
    FeedScene(Tc(0, 0, 13, 0), Tc(0, 0, 20, 0));
    EXPECT_EQ(RowCount(), 2);
    EXPECT_EQ(qvGetCurrentSceneNumber(), 2);

    PressKey(VK_ESCAPE);
    const RecordedRequest* stop = Host().Last(HOSTREQ_STOP_SCAN);
    ASSERT_NE(stop, nullptr);
    EXPECT_EQ(stop->arg, 2);  // the count itself, not an address
    EXPECT_EQ(Dlg().m_nState, PS_IDLE);
    EXPECT_EQ(Dlg().m_nTimerId, 0u);
    EXPECT_EQ(Dlg().m_bModified, 1);
    EXPECT_EQ(Title().back(), '*');
    EXPECT_TRUE(IsWindow(Wnd()));  // Escape during a scan only stops it
    for (int id : {IDC_START_SCAN, IDC_SAVE_LIST, IDC_MARK_ALL, IDC_CLEAR_ALL, IDC_DELETE_SCENES, IDC_CLOSE_PRESCAN})
        EXPECT_TRUE(Enabled(id)) << id;
}

TEST_F(ScanControlTest, BadEndsAreDropped)
{
    OpenDialog();
    StartScan();
    SceneInfo orphan = MakeScene(Tc(0, 0, 1, 0), Tc(0, 0, 2, 0));
    qvSetSceneDataEnd(&orphan);  // table empty
    EXPECT_EQ(qvGetCurrentSceneNumber(), 0);
    SceneInfo begin = MakeScene(Tc(0, 0, 30, 0), 0);
    qvSetSceneDataBegin(&begin, nullptr, nullptr);
    EXPECT_EQ(g_bHaveThumbnails, 0);
    SceneInfo early = MakeScene(Tc(0, 0, 30, 0), Tc(0, 0, 20, 0));
    qvSetSceneDataEnd(&early);  // ends before it starts
    EXPECT_EQ(qvGetCurrentSceneNumber(), 0);
    EXPECT_EQ(g_nEndCount, g_nBeginCount - 1);
    SceneInfo end = MakeScene(Tc(0, 0, 30, 0), Tc(0, 0, 40, 0));
    qvSetSceneDataEnd(&end);
    qvSetSceneDataEnd(&end);  // a second end for one begin
    EXPECT_EQ(qvGetCurrentSceneNumber(), 1);
    EXPECT_EQ(g_nEndCount, g_nBeginCount);
}

TEST_F(ScanControlTest, ClearIncompleteRemovesTheOpenScene)
{
    OpenDialog();
    StartScan();
    for (int i = 0; i < 4; ++i) FeedScene(Tc(0, 1, i, 0), Tc(0, 1, i, 20));
    SceneInfo open = MakeScene(Tc(0, 2, 0, 0), 0);
    Thumbnail thumb = MakeThumbnail(1, 2, 3);
    open.dwThumbSize = static_cast<uint32_t>(thumb.bits.size());
    qvSetSceneDataBegin(&open, &thumb.header, thumb.bits.data());
    ASSERT_EQ(RowCount(), 5);
    EXPECT_EQ(qvPSClearUncompleteScene(), 4);
    EXPECT_EQ(RowCount(), 4);
    EXPECT_EQ(SceneTableSize(), 4);
    EXPECT_EQ(g_arThumbBits.GetSize(), 4);
    EXPECT_EQ(qvPSClearUncompleteScene(), 4);  // nothing open: nothing changes
    EXPECT_EQ(RowCount(), 4);
}

TEST_F(ScanControlTest, LateThumbnailAndCapturedFile)
{
    OpenDialog();
    StartScan();
    FeedScene(Tc(0, 0, 1, 0), Tc(0, 0, 2, 0), false);
    FeedScene(Tc(0, 0, 3, 0), Tc(0, 0, 4, 0), false);
    Thumbnail thumb = MakeThumbnail(9, 9, 9);
    qvSetSceneBitmapData(2, &thumb.header, thumb.bits.data(), static_cast<int32_t>(thumb.bits.size()));
    EXPECT_EQ(g_arThumbBits.GetSize(), 0);  // index beyond the completed scenes
    qvSetSceneBitmapData(1, &thumb.header, thumb.bits.data(), 0);
    EXPECT_EQ(g_arThumbBits.GetSize(), 0);
    qvSetSceneBitmapData(1, &thumb.header, thumb.bits.data(), static_cast<int32_t>(thumb.bits.size()));
    EXPECT_EQ(g_arThumbBits.GetSize(), 1);
    EXPECT_EQ(g_arScenes.GetAt(1)->dwThumbSize, thumb.bits.size());

    PressKey(VK_ESCAPE);
    MarkScenes({1});
    qvSetCapSceneFileName(0, "C:\\Captured\\Tape 002.avi");
    EXPECT_STREQ(g_arScenes.GetAt(1)->szCaptureFile, "C:\\Captured\\Tape 002.avi");
    EXPECT_EQ(CellText(1, 5), qv::LoadResString(IDS_CAPTURED_FILE_PREFIX) + "C:\\Captured\\Tape 002.avi");
    std::string longPath(400, 'p');
    qvSetCapSceneFileName(0, longPath.c_str());
    EXPECT_EQ(std::strlen(g_arScenes.GetAt(1)->szCaptureFile), 259u);
    qvSetCapSceneFileName(1, "C:\\none.avi");  // only one scene is marked
    EXPECT_STREQ(g_arScenes.GetAt(0)->szCaptureFile, "");
}

TEST_F(ScanControlTest, CaptureSendsTheMarkedScenesInTableOrder)
{
    OpenDialog();
    StartScan();
    for (int i = 0; i < 5; ++i) FeedScene(Tc(0, 0, 10 * i, 0), Tc(0, 0, 10 * i + 5, 0));
    PressKey(VK_ESCAPE);
    SetWindowTextA(Item(IDC_TAPE_NAME), "Holiday 2003");
    for (int r : {0, 2, 3, 4}) g_arScenes.GetAt(r)->bMarked = 1;
    Dlg().m_listScenes.m_nMarkedCount = 3;  // the list counts three: three spans go
    Dlg().SetCaptureEnabled(1);
    Click(IDC_CAPTURE);
    const RecordedRequest* r = Host().Last(HOSTREQ_CAPTURE_SCENES);
    ASSERT_NE(r, nullptr);
    CaptureRequest req;
    std::memcpy(&req, r->record.data(), sizeof req);
    EXPECT_EQ(req.nSpanCount, 3);
    EXPECT_STREQ(req.szTapeName, "Holiday 2003");
    EXPECT_STREQ(req.szCaptureName, "Tape.avi");
    EXPECT_EQ(std::string(req.szCaptureFolder), m_folder);
    ASSERT_EQ(r->spans.size(), 3u);
    EXPECT_EQ(r->spans[0].dwTimeCodeIn, Tc(0, 0, 0, 0));
    EXPECT_EQ(r->spans[1].dwTimeCodeIn, Tc(0, 0, 20, 0));
    EXPECT_EQ(r->spans[2].dwTimeCodeIn, Tc(0, 0, 30, 0));
    EXPECT_EQ(r->spans[2].dwPositionOut, Tc(0, 0, 35, 0) / 2);
    EXPECT_TRUE(AllZero(r->record.data() + 532, 84));
    EXPECT_EQ(Dlg().m_nState, PS_IDLE);  // the host finished within the call
}

TEST_F(ScanControlTest, CaptureKeptByTheHostStaysDisabled)
{
    OpenDialog();
    StartScan();
    FeedScene(Tc(0, 0, 1, 0), Tc(0, 0, 2, 0));
    PressKey(VK_ESCAPE);
    Host().OnRequest(HOSTREQ_CAPTURE_SCENES, [](intptr_t) { return 0; });
    Click(IDC_CAPTURE);
    EXPECT_EQ(Dlg().m_nState, PS_CAPTURING);
    EXPECT_FALSE(Enabled(IDC_START_SCAN));
    PressKey(VK_ESCAPE);  // a stop does not end a capture
    EXPECT_EQ(Dlg().m_nState, PS_CAPTURING);
    const RecordedRequest* r = Host().Last(HOSTREQ_CAPTURE_SCENES);
    CaptureRequest req;
    std::memcpy(&req, r->record.data(), sizeof req);
    EXPECT_EQ(req.pFirstSpan, nullptr);  // no marked scene
}

TEST_F(ScanControlTest, LongTapeNameFillsItsField)
{
    OpenDialog();
    StartScan();
    FeedScene(Tc(0, 0, 1, 0), Tc(0, 0, 2, 0));
    PressKey(VK_ESCAPE);
    SetWindowTextA(Item(IDC_TAPE_NAME), std::string(100, 'T').c_str());
    Click(IDC_CAPTURE);
    const RecordedRequest* r = Host().Last(HOSTREQ_CAPTURE_SCENES);
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(r->record.data()) + 166, 100), std::string(100, 'T'));
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(r->record.data()) + 266), m_folder);
}

TEST_F(ScanControlTest, GoToUsesThePositionOrTheTimeCode)
{
    OpenDialog();
    StartScan();
    FeedScene(Tc(0, 0, 10, 0), Tc(0, 0, 20, 0));
    FeedScene(Tc(0, 0, 30, 0), Tc(0, 0, 40, 0));
    PressKey(VK_ESCAPE);
    Dlg().m_listScenes.SelectRange(0, FALSE, 0);
    SendMessageA(Wnd(), WM_COMMAND, ID_GOTO_SCENE_END, 0);
    const RecordedRequest* r = Host().Last(HOSTREQ_SEEK_POSITION);
    ASSERT_NE(r, nullptr);
    uint32_t value;
    std::memcpy(&value, r->record.data(), 4);
    EXPECT_EQ(value, Tc(0, 0, 20, 0) / 2);
    EXPECT_EQ(Dlg().m_nState, PS_IDLE);

    g_arScenes.GetAt(1)->dwPositionIn = QV_NO_POSITION;
    Dlg().m_listScenes.SelectRange(1, FALSE, 0);
    Host().OnRequest(HOSTREQ_SEEK_TIMECODE, [&](intptr_t) {
        EXPECT_EQ(Dlg().m_nState, PS_SEEKING);
        return 0;  // the tape keeps moving
    });
    SendMessageA(Wnd(), WM_COMMAND, ID_GOTO_SCENE_END, 0);
    r = Host().Last(HOSTREQ_SEEK_TIMECODE);
    ASSERT_NE(r, nullptr);
    std::memcpy(&value, r->record.data(), 4);
    EXPECT_EQ(value, Tc(0, 0, 40, 0));
    EXPECT_EQ(Dlg().m_nState, PS_SEEKING);
    PressKey(VK_ESCAPE);
    EXPECT_EQ(Dlg().m_nState, PS_IDLE);
    EXPECT_EQ(Dlg().m_nTimerId, 0u);
}

TEST_F(ScanControlTest, DeviceNotReadyNamesOneReason)
{
    for (auto [zeroFlags, reason] : {std::pair{std::vector<int>{1, 3}, IDS_DEVICE_REASON_3},
                                     {std::vector<int>{1}, IDS_DEVICE_REASON_1},
                                     {std::vector<int>{0, 7}, IDS_DEVICE_REASON_0},
                                     {std::vector<int>{6, 5}, IDS_DEVICE_REASON_5}}) {
        Host().OnRequest(HOSTREQ_GET_DEVICE_STATUS, [zeroFlags = zeroFlags](intptr_t arg) {
            auto* status = reinterpret_cast<DeviceStatus*>(arg);
            for (auto& f : status->adwCondition) f = 1;
            for (int i : zeroFlags) status->adwCondition[i] = 0;
            return 1;
        });
        ModalResponder responder;
        std::string text = qv::LoadResString(IDS_DEVICE_NOT_READY) + "- " + qv::LoadResString(reason);
        responder.ExpectMessage(text, IDOK);
        OpenDialog();
        responder.Verify();
        EXPECT_EQ(Dlg().m_bDeviceReady, 0);
        EXPECT_FALSE(Enabled(IDC_START_SCAN));
    }
}

TEST_F(ScanControlTest, TitleShowsTheTapePositionWhileScanning)
{
    uint32_t position = Tc(0, 12, 34, 5);
    Host().OnRequest(HOSTREQ_GET_POSITION, [&](intptr_t arg) {
        *reinterpret_cast<uint32_t*>(arg) = position;
        return 1;
    });
    OpenDialog();
    StartScan();
    PumpFor(150);  // the status timer writes the title
    std::string expected = Dlg().m_strCaption + "  --  00:12:34:05 -- " + qv::LoadResString(IDS_STATE_SCANNING) +
                           qv::LoadResString(IDS_STATE_CLOSING);
    EXPECT_EQ(Title(), expected);
    // The timer asks again every 100 ms; an unchanged position leaves the title.
    SetWindowTextA(Wnd(), "marker");
    int before = Host().Count(HOSTREQ_GET_POSITION);
    PumpFor(350);
    EXPECT_GE(Host().Count(HOSTREQ_GET_POSITION), before + 2);
    EXPECT_EQ(Title(), "marker");
    position = 0;  // no position: the state text alone
    PumpFor(150);
    EXPECT_EQ(Title(), Dlg().m_strCaption + " -- " + qv::LoadResString(IDS_STATE_SCANNING) +
                           qv::LoadResString(IDS_STATE_CLOSING));
}

TEST_F(ScanControlTest, ScanWithCaptureAddsRowsAsFilesArrive)
{
    g_session.nScanMethodIndex = 3;
    OpenDialog();
    Host().OnRequest(HOSTREQ_START_SCAN, [&](intptr_t) {
        EXPECT_EQ(Dlg().m_nState, PS_SCAN_CAPTURE);
        for (int i = 0; i < 3; ++i) FeedScene(Tc(0, 0, 10 * i, 0), Tc(0, 0, 10 * i + 5, 0));
        EXPECT_EQ(RowCount(), 0);  // no rows until a file is reported
        EXPECT_EQ(qvGetCurrentSceneNumber(), 3);
        qvSetCapSceneFileName(1, "C:\\cap\\scene2.avi");
        EXPECT_EQ(RowCount(), 1);
        SceneInfo open = MakeScene(Tc(0, 1, 0, 0), 0);
        qvSetSceneDataBegin(&open, nullptr, nullptr);
        return 1;
    });
    Click(IDC_START_SCAN);
    EXPECT_EQ(Dlg().m_nState, PS_IDLE);
    EXPECT_EQ(SceneTableSize(), 3);  // the open trailing scene is gone
    EXPECT_EQ(g_bDirectCapture, 0);
    EXPECT_EQ(Dlg().m_bModified, 1);
    EXPECT_EQ(GetFocus(), Item(IDC_START_SCAN));
}

TEST_F(ScanControlTest, KeepingTheListAppendsTheNextScan)
{
    OpenDialog();
    StartScan();
    for (int i = 0; i < 5; ++i) FeedScene(Tc(0, 0, i, 0), Tc(0, 0, i, 10));
    PressKey(VK_ESCAPE);
    ModalResponder responder;
    responder.ExpectMessageRes(IDS_ASK_KEEP_LIST, IDYES);
    Click(IDC_START_SCAN);
    responder.Verify();
    EXPECT_EQ(LastScan().nSceneCount, 5);
    FeedScene(Tc(0, 1, 0, 0), Tc(0, 1, 0, 10));
    EXPECT_EQ(RowCount(), 6);
    EXPECT_EQ(g_arScenes.GetAt(5)->nIndex, 5);
}

TEST_F(ScanControlTest, QuickScanFedFromAHostThread)
{
    g_session.nQuickScanSpeed = 3;
    OpenDialog();
    StartScan();
    const int kScenes = 200;
    std::thread feeder([&] {
        Thumbnail thumb = MakeThumbnail(0, 0, 255);
        for (int i = 0; i < kScenes; ++i) {
            uint32_t in = Tc(0, i / 60, i % 60, 0);
            SceneInfo begin = MakeScene(in, 0, static_cast<uint32_t>(thumb.bits.size()));
            qvSetSceneDataBegin(&begin, &thumb.header, thumb.bits.data());
            SceneInfo end = MakeScene(in, in + 10);
            qvSetSceneDataEnd(&end);
        }
    });
    bool done = PumpUntil([&] { return qvGetCurrentSceneNumber() == kScenes; }, 20000);
    feeder.join();
    PumpPending();
    EXPECT_TRUE(done);
    EXPECT_EQ(qvGetCurrentSceneNumber(), kScenes);
    EXPECT_EQ(RowCount(), kScenes);
    for (int i : {0, 57, kScenes - 1})
        EXPECT_EQ(g_arScenes.GetAt(i)->dwTimeCodeOut, Tc(0, i / 60, i % 60, 0) + 10) << i;
}
