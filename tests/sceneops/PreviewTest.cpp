// Previewing a scene: a captured AVI plays over the scene's thumbnail until
// it ends; a scene without files plays from tape, and a second press inside
// the host's request stops it with exactly one request 5.
#include "ResourceIds.h"
#include "scenes/SceneStore.h"
#include "session/Session.h"
#include "support/DialogFixture.h"
#include "support/TestEnvironment.h"

#include <vfw.h>

#include <cstring>

using namespace qvtest;

namespace {

// A short, playable AVI of one colour.
std::string WriteAvi(int frames)
{
    std::string path = MakeTempDir("Avi") + "\\scene.avi";
    AVIFileInit();
    PAVIFILE file = nullptr;
    AVIFileOpenA(&file, path.c_str(), OF_CREATE | OF_WRITE, nullptr);
    AVISTREAMINFOA info = {};
    info.fccType = streamtypeVIDEO;
    info.dwScale = 1;
    info.dwRate = 25;
    SetRect(&info.rcFrame, 0, 0, 80, 60);
    PAVISTREAM stream = nullptr;
    AVIFileCreateStreamA(file, &stream, &info);
    Thumbnail t = MakeThumbnail(0, 200, 0);
    AVIStreamSetFormat(stream, 0, &t.header, sizeof t.header);
    for (int f = 0; f < frames; ++f)
        AVIStreamWrite(stream, f, 1, t.bits.data(), static_cast<LONG>(t.bits.size()), AVIIF_KEYFRAME, nullptr, nullptr);
    AVIStreamRelease(stream);
    AVIFileRelease(file);
    AVIFileExit();
    return path;
}

class PreviewTest : public DialogFixture {};

} // namespace

TEST_F(PreviewTest, CapturedFilePlaysOverItsThumbnailUntilItEnds)
{
    OpenWithScenes(3);
    std::strcpy(g_arScenes.GetAt(1)->szCaptureFile, "C:\\gone\\deleted.avi");  // missing: the scan file plays
    std::strcpy(g_arScenes.GetAt(1)->szSceneFile, WriteAvi(8).c_str());
    SelectRow(1);
    for (bool pressAgain : {false, true}) {
        SCOPED_TRACE(pressAgain ? "stopped by a second press" : "played to its end");
        Click(IDC_PREVIEW);
        ASSERT_EQ(Dlg().m_nState, PS_FILE_PREVIEW);
        EXPECT_TRUE(Visible(IDC_PREVIEW_VIDEO) && Enabled(IDC_PREVIEW) && !Enabled(IDC_START_SCAN));
        // Centred on the thumbnail's cell in screen terms, then moved by (2, 2).
        RECT video, list, cell = {};
        GetWindowRect(Item(IDC_PREVIEW_VIDEO), &video);
        GetWindowRect(Item(IDC_SCENE_LIST), &list);
        Dlg().m_listScenes.GetCellRect(1, 1, LVIR_BOUNDS, cell);
        EXPECT_EQ(video.left, list.left + (cell.left + cell.right) / 2 - 40 + 2);
        EXPECT_EQ(video.top, list.top + (cell.top + cell.bottom) / 2 - 30 + 2);
        if (pressAgain) Click(IDC_PREVIEW);
        else EXPECT_TRUE(PumpUntil([&] { return Dlg().m_nState == PS_IDLE; }, 5000));
        EXPECT_EQ(Dlg().m_nState, PS_IDLE);
        EXPECT_TRUE(!Visible(IDC_PREVIEW_VIDEO) && Enabled(IDC_START_SCAN));
    }
    EXPECT_EQ(Host().Count(HOSTREQ_PLAY_SPAN), 0);
}

// A scene without files plays from tape; it stops with exactly one request,
// also when the user presses again while the host is still playing it.
TEST_F(PreviewTest, TapePreviewStopsOnce)
{
    for (bool pressAgain : {false, true}) {
        SCOPED_TRACE(pressAgain ? "pressed again inside the request" : "played to its end");
        OpenWithScenes(2);
        SelectRow(1);
        SceneSpan played = {};
        Host().OnRequest(HOSTREQ_PLAY_SPAN, [&](intptr_t arg) {
            played = *reinterpret_cast<SceneSpan*>(arg);
            EXPECT_EQ(Dlg().m_nState, PS_TAPE_PREVIEW);
            if (pressAgain) SendMessageA(Item(IDC_PREVIEW), BM_CLICK, 0, 0), PumpPending();
            EXPECT_EQ(Host().Count(HOSTREQ_STOP_PLAY), pressAgain ? 1 : 0);
            return 1;
        });
        Click(IDC_PREVIEW);
        EXPECT_EQ(played.dwTimeCodeIn, Tc(0, 0, 10, 0));
        EXPECT_EQ(played.pNext, nullptr);
        EXPECT_EQ(Host().Count(HOSTREQ_STOP_PLAY), 1);
        EXPECT_EQ(Host().Codes().back(), HOSTREQ_STOP_PLAY);
        EXPECT_EQ(Dlg().m_nState, PS_IDLE);
        EXPECT_EQ(Dlg().m_nTimerId, 0u);
        TearDown();
        SetUp();
    }
}
