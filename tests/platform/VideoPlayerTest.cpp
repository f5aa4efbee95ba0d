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
    struct Row { DWORD compression; HWND video; int ready; } rows[] = {{BI_RGB, window, 1}, {BI_RGB, nullptr, 0}};
    for (const Row& r : rows) {
        VideoFileInfo info = {};
        std::strcpy(info.szPath, (qvtest::MakeTempDir("Video") + "\\clip.avi").c_str());
        AVISTREAMINFOA format = {streamtypeVIDEO, r.compression, 0, 0, 0, 0, 1, 25};
        BITMAPINFOHEADER header = {sizeof header, 4, 4, 1, 24, r.compression, 48};
        char bits[48] = {};
        PAVIFILE file;
        PAVISTREAM stream;
        AVIFileInit(), AVIFileOpenA(&file, info.szPath, OF_CREATE | OF_WRITE, nullptr);
        AVIFileCreateStreamA(file, &stream, &format);
        AVIStreamSetFormat(stream, 0, &header, sizeof header);
        AVIStreamWrite(stream, 0, 1, bits, sizeof bits, AVIIF_KEYFRAME, nullptr, nullptr);
        AVIStreamRelease(stream), AVIFileRelease(file), AVIFileExit();
        EXPECT_GT(qVideoGetFileInfo(&info), 0) << "the stream is there";
        EXPECT_EQ(qVideoPlayBegin(&info, r.video, window, 0), r.ready) << r.compression << " " << r.video;
        qVideoPlayEnd(&info, 0);
    }
    DestroyWindow(window);
}
