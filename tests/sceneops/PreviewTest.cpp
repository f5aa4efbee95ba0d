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
    Dlg().m_listScenes.SelectRange(1, FALSE, 0);
    ASSERT_TRUE(Enabled(IDC_PREVIEW));
    Click(IDC_PREVIEW);
    ASSERT_EQ(Dlg().m_nState, PS_FILE_PREVIEW);
    EXPECT_TRUE(Visible(IDC_PREVIEW_VIDEO));
    EXPECT_TRUE(Enabled(IDC_PREVIEW));
    EXPECT_FALSE(Enabled(IDC_START_SCAN));
    // The cell moved by the list's window corner, centred, then moved by (2, 2).
    RECT video, list, cell = {};
    GetWindowRect(Item(IDC_PREVIEW_VIDEO), &video);
    GetWindowRect(Item(IDC_SCENE_LIST), &list);
    Dlg().m_listScenes.GetCellRect(1, 1, LVIR_BOUNDS, cell);
    OffsetRect(&cell, list.left, list.top);
    EXPECT_EQ(video.left, (cell.left + cell.right) / 2 - 40 + 2);
    EXPECT_EQ(video.top, (cell.top + cell.bottom) / 2 - 30 + 2);
    EXPECT_TRUE(PumpUntil([&] { return Dlg().m_nState == PS_IDLE; }, 5000));  // the file's end
    EXPECT_FALSE(Visible(IDC_PREVIEW_VIDEO));
    EXPECT_TRUE(Enabled(IDC_START_SCAN));
    EXPECT_EQ(Host().Count(HOSTREQ_PLAY_SPAN), 0);
    Click(IDC_PREVIEW);  // again, and a second press stops it before its end
    ASSERT_EQ(Dlg().m_nState, PS_FILE_PREVIEW);
    Click(IDC_PREVIEW);
    EXPECT_EQ(Dlg().m_nState, PS_IDLE);
    EXPECT_FALSE(Visible(IDC_PREVIEW_VIDEO));
}

TEST_F(PreviewTest, TapePreviewStopsOnceFromInsideTheRequest)
{
    OpenWithScenes(2);
    Dlg().m_listScenes.SelectRange(1, FALSE, 0);
    SceneSpan played = {};
    int stopsInside = -1;
    Host().OnRequest(HOSTREQ_PLAY_SPAN, [&](intptr_t arg) {
        played = *reinterpret_cast<SceneSpan*>(arg);
        EXPECT_EQ(Dlg().m_nState, PS_TAPE_PREVIEW);
        SendMessageA(Item(IDC_PREVIEW), BM_CLICK, 0, 0);  // the user presses again meanwhile
        PumpPending();
        stopsInside = Host().Count(HOSTREQ_STOP_PLAY);
        return 1;
    });
    Click(IDC_PREVIEW);
    EXPECT_EQ(played.dwTimeCodeIn, Tc(0, 0, 10, 0));
    EXPECT_EQ(played.pNext, nullptr);
    EXPECT_EQ(stopsInside, 1);
    EXPECT_EQ(Host().Count(HOSTREQ_STOP_PLAY), 1);  // not again when request 4 returned
    EXPECT_EQ(Dlg().m_nState, PS_IDLE);
}

TEST_F(PreviewTest, TapePreviewEndsWhenTheSpanHasPlayed)
{
    OpenWithScenes(1);
    Dlg().m_listScenes.SelectRange(0, FALSE, 0);
    Click(IDC_PREVIEW);
    EXPECT_EQ(Host().Codes().back(), HOSTREQ_STOP_PLAY);
    EXPECT_EQ(Dlg().m_nState, PS_IDLE);
    EXPECT_EQ(Dlg().m_nTimerId, 0u);
}
