// Every export driven as a careless or hostile host might drive it — null
// pointers, negative and huge indices, texts without a terminating NUL,
// thumbnail sizes that lie — in every situation the module can be in: before
// a session, with no dialog, while scanning, inside each long request, after
// the dialog closed and after the session ended.  Nothing may crash, no
// field the host hands over may be written past its end (guard bytes on both
// sides), and afterwards the dialog still scans as before.
#include "ResourceIds.h"
#include "scenes/SceneStore.h"
#include "session/Session.h"
#include "support/DialogFixture.h"

#include <climits>
#include <cstring>

using namespace qvtest;

namespace {

// A host-side buffer of `N` bytes with guard bytes on both sides.
template <size_t N> struct GuardedField {
    uint8_t before[32];
    char field[N];
    uint8_t after[32];
    GuardedField()
    {
        std::memset(before, 0xA5, sizeof before);
        std::memset(field, 'g', N);
        std::memset(after, 0x5A, sizeof after);
    }
    bool Intact() const
    {
        for (uint8_t b : before)
            if (b != 0xA5) return false;
        for (uint8_t b : after)
            if (b != 0x5A) return false;
        return true;
    }
};

// A scene whose file name fills all 260 bytes without a NUL.
SceneInfo UnterminatedScene(uint32_t tcIn, uint32_t tcOut)
{
    SceneInfo s = MakeScene(tcIn, tcOut);
    std::memset(s.szSceneFile, 'U', sizeof s.szSceneFile);
    return s;
}

// Every export, with the arguments a host should never pass.  Returns false
// when a buffer handed to the module was written past its end.
bool CallEveryExportBadly()
{
    bool intact = true;
    PreScanInitInfo none;
    std::memset(&none, 0, sizeof none);
    if (!HasSession()) qvPreScanInit(nullptr);  // a session in progress is left alone

    GuardedField<QV_MAX_PATH> folder, index;
    qvGetLibFolderFromPreScan(nullptr);
    qvGetLibFolderFromPreScan(folder.field);
    qvGetPreScanIndexFileName(nullptr);
    qvGetPreScanIndexFileName(index.field);
    intact = intact && folder.Intact() && index.Intact();
    if (folder.field[0] != 'g' && std::strlen(folder.field) >= QV_MAX_PATH) intact = false;

    qvSetSceneDataBegin(nullptr, nullptr, nullptr);
    qvSetSceneDataEnd(nullptr);
    qvSetSceneBitmapData(0, nullptr, nullptr, 0);
    qvSetCapSceneFileName(0, nullptr);
    Thumbnail thumb = MakeThumbnail(1, 2, 3);
    int32_t bytes = static_cast<int32_t>(thumb.bits.size());
    std::string longPath(600, 'p');
    for (int32_t n : {-1, INT_MIN, INT_MAX, 32767, 32768, 1 << 20}) {
        qvSetSceneBitmapData(n, &thumb.header, thumb.bits.data(), bytes);
        qvSetSceneBitmapData(n, &thumb.header, thumb.bits.data(), -bytes);
        qvSetCapSceneFileName(n, "C:\\Captures\\x.avi");
        qvSetCapSceneFileName(n, longPath.c_str());
    }
    qvPSClearUncompleteScene();
    qvGetCurrentSceneNumber();
    return intact;
}

// The scene feed as a lying host drives it: unterminated names, a thumbnail
// size near 4 GiB with a real 80x60 picture, a header that describes more
// pixels than were given.
void FeedLies(int scene)
{
    Thumbnail thumb = MakeThumbnail(9, 9, 9);
    uint32_t in = Tc(0, 5, scene, 0);
    SceneInfo huge = UnterminatedScene(in, 0);
    huge.dwThumbSize = 0xFFFFFFF0u;
    qvSetSceneDataBegin(&huge, &thumb.header, thumb.bits.data());
    SceneInfo end = UnterminatedScene(in, in + 10);
    qvSetSceneDataEnd(&end);
}

class HostileHostTest : public DialogFixture {
protected:
    // Runs the bad calls and checks the dialog is still whole.
    void Attack(const char* where)
    {
        SCOPED_TRACE(where);
        EXPECT_TRUE(CallEveryExportBadly());
        if (HasDialog()) {
            // A scan with capture shows a scene once its file is reported.
            EXPECT_LE(RowCount(), SceneTableSize());
            EXPECT_LE(qvGetCurrentSceneNumber(), SceneTableSize());
        }
    }
    void ExpectScansAgain()
    {
        PumpPending();
        if (Dlg().m_nState != PS_IDLE) PressKey(VK_ESCAPE);
        Host().OnRequest(HOSTREQ_START_SCAN, [](intptr_t) { return 1; });
        int before = qvGetCurrentSceneNumber();
        Host().OnRequest(HOSTREQ_DIALOG_CLOSED, [](intptr_t) { return 1; });
        ModalResponder keep;
        if (before > 0) keep.ExpectMessageRes(IDS_ASK_KEEP_LIST, IDYES);
        Click(IDC_START_SCAN);
        ASSERT_EQ(Dlg().m_nState, PS_SCANNING);
        before = qvGetCurrentSceneNumber();  // what the new scan keeps
        FeedScene(Tc(1, 0, 0, 0), Tc(1, 0, 0, 20));
        EXPECT_EQ(qvGetCurrentSceneNumber(), before + 1);
        EXPECT_EQ(RowCount(), before + 1);
        PressKey(VK_ESCAPE);
    }
};

} // namespace

TEST(HostileHostNoSession, EveryExportIsHarmlessBeforeAndAfterASession)
{
    EXPECT_EQ(qvPreScanInit(nullptr), 0);
    EXPECT_TRUE(CallEveryExportBadly());
    EXPECT_EQ(qvShowPreScanDlg(nullptr), nullptr);  // no session: no dialog
    qvMinimizePreScanDlg();
    qvRestorePreScanDlg();
    qvForceToStopPreScan(1);
    EXPECT_EQ(qvPreScanUnInit(), 1);
    EXPECT_EQ(qvPreScanUnInit(), 1);  // twice is fine
    EXPECT_TRUE(CallEveryExportBadly());
}

TEST_F(HostileHostTest, SessionWithoutADialog)
{
    Attack("session, no dialog");
    FeedLies(0);
    qvMinimizePreScanDlg();
    qvForceToStopPreScan(1);
    EXPECT_EQ(qvGetCurrentSceneNumber(), 0);
}

TEST_F(HostileHostTest, WhileScanningAndAfterTheDialogClosed)
{
    OpenDialog();
    StartScan();
    FeedScene(Tc(0, 0, 1, 0), Tc(0, 0, 2, 0));
    Attack("scanning");
    FeedLies(1);
    EXPECT_EQ(qvGetCurrentSceneNumber(), 2);
    // The lying scene's name was cut inside its field; its pixels were taken
    // only as far as the header describes them.
    SceneRecord* lied = g_arScenes.GetAt(1);
    EXPECT_EQ(std::strlen(lied->szSceneFile), 259u);
    EXPECT_EQ(lied->dwThumbSize, 80u * 3 * 60);
    UpdateWindow(Item(IDC_SCENE_LIST));  // its thumbnail draws
    ExpectScansAgain();

    Dlg().m_bModified = 0;
    qvForceToStopPreScan(1);
    EXPECT_FALSE(HasDialog() && Dlg().IsWindow());
    Attack("after the dialog closed");
    FeedLies(2);
}

TEST_F(HostileHostTest, InsideEachLongRequest)
{
    OpenDialog();
    StartScan();
    for (int i = 0; i < 3; ++i) FeedScene(Tc(0, 0, 10 * i, 0), Tc(0, 0, 10 * i + 5, 0));
    PressKey(VK_ESCAPE);
    std::vector<int32_t> attackedIn;
    auto attackInside = [&](int32_t code) {
        Host().OnRequest(code, [&, code](intptr_t) {
            attackedIn.push_back(code);
            Attack("inside a request");
            return 1;
        });
    };
    for (int32_t code : {HOSTREQ_CAPTURE_SCENES, HOSTREQ_PLAY_SPAN, HOSTREQ_SEEK_TIMECODE, HOSTREQ_SEEK_POSITION})
        attackInside(code);

    g_arScenes.GetAt(0)->bMarked = 1;
    Dlg().m_listScenes.m_nMarkedCount = 1;
    Dlg().SetCaptureEnabled(1);
    Click(IDC_CAPTURE);  // request 3
    Dlg().m_listScenes.SelectRange(1, FALSE, 0);
    Click(IDC_PREVIEW);  // request 4
    SendMessageA(Wnd(), WM_COMMAND, ID_GOTO_SCENE_END, 0);  // request 12 (the scene has a position)
    g_arScenes.GetAt(1)->dwPositionIn = QV_NO_POSITION;
    SendMessageA(Wnd(), WM_COMMAND, ID_GOTO_SCENE_END, 0);  // request 6
    PumpPending();

    // Request 1 with method 3: the host scans (and feeds) inside the request.
    g_session.nScanMethodIndex = 3;
    Host().OnRequest(HOSTREQ_START_SCAN, [&](intptr_t) {
        attackedIn.push_back(HOSTREQ_START_SCAN);
        int first = qvGetCurrentSceneNumber();
        FeedScene(Tc(0, 2, 0, 0), Tc(0, 2, 0, 10));
        Attack("inside a scan with capture");
        FeedLies(3);
        // The host reports each captured file; the rows appear with them.
        for (int n = first; n < qvGetCurrentSceneNumber(); ++n) qvSetCapSceneFileName(n, "C:\\Captures\\cap.avi");
        return 1;
    });
    ModalResponder keep;
    keep.ExpectMessageRes(IDS_ASK_KEEP_LIST, IDYES);
    Click(IDC_START_SCAN);
    PumpPending();
    std::vector<int32_t> expected = {HOSTREQ_CAPTURE_SCENES, HOSTREQ_PLAY_SPAN, HOSTREQ_SEEK_POSITION,
                                     HOSTREQ_SEEK_TIMECODE, HOSTREQ_START_SCAN};
    EXPECT_EQ(attackedIn, expected);
    if (Dlg().m_nState != PS_IDLE) PressKey(VK_ESCAPE);
    g_session.nScanMethodIndex = 0;
    ExpectScansAgain();
}
