// Previewing a scene: a captured AVI plays over the scene's thumbnail until it
// ends or the button is pressed again, without asking the host to play tape;
// a scene without a file the host plays from tape.
#include "ResourceIds.h"
#include "scenes/SceneStore.h"
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

TEST_F(PreviewTest, FilePlaysOverItsThumbnailElseTheHostPlaysTheTape)
{
    OpenWithScenes(3);
    std::strcpy(g_arScenes.GetAt(1)->szCaptureFile, "C:\\gone\\deleted.avi");  // missing: the scan file plays
    std::strcpy(g_arScenes.GetAt(1)->szSceneFile, WriteAvi(8).c_str());
    SelectRow(1);
    for (bool pressAgain : {false, true}) {
        SCOPED_TRACE(pressAgain ? "stopped by a second press" : "played to its end");
        if (pressAgain) Click(IDC_PREVIEW);
        else PressKey(VK_RETURN);  // Return in the list previews too, and does nothing else
        ASSERT_EQ(Dlg().m_nState, PS_FILE_PREVIEW);
        EXPECT_TRUE(Visible(IDC_PREVIEW_VIDEO) && Enabled(IDC_PREVIEW) && !Enabled(IDC_START_SCAN));
        SetFocus(Item(IDC_TAPE_NAME));  // moving to another control leaves it playing
        EXPECT_EQ(Dlg().m_nState, PS_FILE_PREVIEW);
        if (pressAgain) Click(IDC_PREVIEW);
        else EXPECT_TRUE(PumpUntil([&] { return Dlg().m_nState == PS_IDLE; }, 5000));
        EXPECT_EQ(Dlg().m_nState, PS_IDLE);
        EXPECT_TRUE(!Visible(IDC_PREVIEW_VIDEO) && Enabled(IDC_START_SCAN));
    }
    EXPECT_EQ(Host().Count(HOSTREQ_PLAY_SPAN), 0);
    // No file: the host plays the tape inside request 4, and one request 5 ends
    // it when the host returns, or when the user presses the button again inside.
    SelectRow(0);
    bool pressAgain = false;
    Host().OnRequest(HOSTREQ_PLAY_SPAN, [&](intptr_t) { if (pressAgain) Click(IDC_PREVIEW); return 1; });
    for (int stops : {1, 2}) {
        Click(IDC_PREVIEW), pressAgain = true;
        EXPECT_EQ(Host().Count(HOSTREQ_STOP_PLAY), stops);
    }
    EXPECT_TRUE(Dlg().m_nState == PS_IDLE && Host().LastRecord<SceneSpan>(HOSTREQ_PLAY_SPAN).dwTimeCodeOut == Tc(0, 0, 5, 0));
}
