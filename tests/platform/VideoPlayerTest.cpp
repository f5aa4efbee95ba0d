// The video library plays a file only into a window; otherwise a preview
// keeps showing the thumbnail.
#include "platform/VideoPlayer.h"
#include "support/TestEnvironment.h"

#include <vfw.h>
#include <gtest/gtest.h>

#include <cstring>

TEST(VideoPlayer, PlaysOnlyWhatItCanShow)
{
    HWND window = CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 32, 32, nullptr, nullptr, nullptr, nullptr);
    VideoFileInfo info = {};
    std::strcpy(info.szPath, (qvtest::MakeTempDir("Video") + "\\clip.avi").c_str());
    AVISTREAMINFOA format = {streamtypeVIDEO, BI_RGB, 0, 0, 0, 0, 1, 25};
    BITMAPINFOHEADER header = {sizeof header, 4, 4, 1, 24, BI_RGB, 48};
    char bits[48] = {};
    PAVIFILE file;
    PAVISTREAM stream;
    AVIFileInit(), AVIFileOpenA(&file, info.szPath, OF_CREATE | OF_WRITE, nullptr);
    AVIFileCreateStreamA(file, &stream, &format);
    AVIStreamSetFormat(stream, 0, &header, sizeof header);
    AVIStreamWrite(stream, 0, 1, bits, sizeof bits, AVIIF_KEYFRAME, nullptr, nullptr);
    AVIStreamRelease(stream), AVIFileRelease(file), AVIFileExit();
    EXPECT_GT(qVideoGetFileInfo(&info), 0) << "the stream is there";
    for (HWND video : {window, HWND(nullptr)}) {
        EXPECT_EQ(qVideoPlayBegin(&info, video, window, 0), video ? 1 : 0);
        qVideoPlayEnd(&info, 0);
    }
    DestroyWindow(window);
}
