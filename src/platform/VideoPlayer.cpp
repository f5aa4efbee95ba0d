#include "platform/VideoPlayer.h"

#include "dv/DvStream.h"
#include "platform/BoundedCopy.h"

#include <vfw.h>

#include <cstring>
#include <memory>

VideoFileInfo g_videoFileInfo;

namespace {

const UINT kVideoNotifyId = 34438;
const UINT kVideoEnded = 4884;

struct Playback {
    PAVIFILE file = nullptr;
    PAVISTREAM stream = nullptr;
    PGETFRAME frames = nullptr;
    HDRAWDIB drawDib = nullptr;
    HWND video = nullptr;
    HWND notify = nullptr;
    UINT_PTR timer = 0;
    LONG next = 0;
    LONG end = 0;
    // A raw DV file (a scene captured from a DV tape) plays as its frames'
    // small pictures, decoded from each block's average colour only.
    std::unique_ptr<dv::Reader> dv;
    UINT frameMs = 40;
} g_play;

bool IsDvFile(const char* path)
{
    const char* dot = std::strrchr(path, '.');
    return dot && (lstrcmpiA(dot, ".dv") == 0 || lstrcmpiA(dot, ".dif") == 0);
}

void Draw(BITMAPINFOHEADER* header, const void* bits)
{
    if (!IsWindow(g_play.video)) return;
    RECT rc;
    GetClientRect(g_play.video, &rc);
    HDC dc = GetDC(g_play.video);
    DrawDibDraw(g_play.drawDib, dc, 0, 0, rc.right, rc.bottom, header, const_cast<void*>(bits), 0, 0,
                header->biWidth, header->biHeight < 0 ? -header->biHeight : header->biHeight, 0);
    ReleaseDC(g_play.video, dc);
}

// Shows the next frame; false at the end of the file.
bool ShowNext()
{
    if (g_play.dv) {
        dv::FrameInfo info;
        std::vector<uint8_t> bytes;
        dv::Picture picture;
        if (!g_play.dv->Next(info, &bytes)) return false;
        if (!dv::DecodePicture(bytes.data(), bytes.size(), picture)) return true;  // a damaged frame is skipped
        BITMAPINFOHEADER header = {sizeof header, picture.width, picture.height, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
        Draw(&header, picture.bits.data());
        return true;
    }
    if (g_play.next >= g_play.end) return false;
    auto* header = static_cast<BITMAPINFOHEADER*>(AVIStreamGetFrame(g_play.frames, g_play.next++));
    if (header) Draw(header, reinterpret_cast<uint8_t*>(header) + header->biSize + header->biClrUsed * sizeof(RGBQUAD));
    return true;
}

void StopTimer()
{
    if (g_play.timer) KillTimer(nullptr, g_play.timer);
    g_play.timer = 0;
}

VOID CALLBACK OnTick(HWND, UINT, UINT_PTR, DWORD)
{
    if (!g_play.frames && !g_play.dv) return;
    if (!ShowNext()) {
        StopTimer();
        PostMessageA(g_play.notify, WM_COMMAND, MAKEWPARAM(kVideoNotifyId, kVideoEnded), 0);
    }
}

void Release()
{
    StopTimer();
    if (g_play.frames) AVIStreamGetFrameClose(g_play.frames);
    if (g_play.stream) AVIStreamRelease(g_play.stream);
    if (g_play.file) AVIFileRelease(g_play.file);
    if (g_play.drawDib) DrawDibClose(g_play.drawDib);
    if (g_play.file || g_play.stream) AVIFileExit();
    g_play = Playback{};
}

bool OpenVideo(const char* path, PAVIFILE& file, PAVISTREAM& stream)
{
    AVIFileInit();
    file = nullptr;
    stream = nullptr;
    if (AVIFileOpenA(&file, path, OF_READ | OF_SHARE_DENY_NONE, nullptr) != 0) file = nullptr;
    if (file && AVIFileGetStream(file, &stream, streamtypeVIDEO, 0) != 0) stream = nullptr;
    if (stream) return true;
    if (file) AVIFileRelease(file);
    AVIFileExit();
    return false;
}

} // namespace

int qVideoGetFileInfo(VideoFileInfo* pInfo)
{
    if (!pInfo) return -1;
    pInfo->szPath[sizeof pInfo->szPath - 1] = 0;
    if (IsDvFile(pInfo->szPath)) {
        dv::Reader reader;
        dv::FrameInfo first;
        return reader.Open(pInfo->szPath) && reader.Next(first) ? 1 : 0;
    }
    PAVIFILE file;
    PAVISTREAM stream;
    if (!OpenVideo(pInfo->szPath, file, stream)) return 0;
    LONG frames = AVIStreamLength(stream);
    std::memcpy(pInfo->abPlayer, &frames, sizeof frames);
    AVIStreamRelease(stream);
    AVIFileRelease(file);
    AVIFileExit();
    return frames > 0 ? 1 : 0;
}

int qVideoPlayBegin(VideoFileInfo* pInfo, HWND hVideo, HWND hNotify, int)
{
    Release();
    if (!pInfo || !IsWindow(hVideo)) return 0;
    if (IsDvFile(pInfo->szPath)) {
        g_play.dv = std::make_unique<dv::Reader>();
        if (!g_play.dv->Open(pInfo->szPath)) g_play.dv.reset();
        else g_play.frameMs = 1000 / dv::TimeCodeRate(g_play.dv->StreamSystem());
    } else if (OpenVideo(pInfo->szPath, g_play.file, g_play.stream)) {
        g_play.frames = AVIStreamGetFrameOpen(g_play.stream, nullptr);
        AVISTREAMINFOA info = {};
        AVIStreamInfoA(g_play.stream, &info, sizeof info);
        if (info.dwRate && info.dwScale) g_play.frameMs = static_cast<UINT>(1000.0 * info.dwScale / info.dwRate);
        g_play.next = AVIStreamStart(g_play.stream);
        g_play.end = g_play.next + AVIStreamLength(g_play.stream);
    }
    g_play.drawDib = DrawDibOpen();
    if ((!g_play.frames && !g_play.dv) || !g_play.drawDib) {
        Release();
        return 0;
    }
    g_play.video = hVideo;
    g_play.notify = hNotify;
    return 1;
}

int qVideoPlayAction(VideoFileInfo*, int nAction, int, int, int, int)
{
    if (nAction == 2) {
        StopTimer();
        return 0;
    }
    if (nAction != 1 || (!g_play.frames && !g_play.dv)) return -1;
    ShowNext();
    g_play.timer = SetTimer(nullptr, 0, g_play.frameMs ? g_play.frameMs : 40, &OnTick);
    return g_play.timer ? 0 : -1;
}

void qVideoPlayEnd(VideoFileInfo*, int)
{
    Release();
}

void qVideoFreeFileInfo(VideoFileInfo* pInfo)
{
    // The block's own part only: a playback that began keeps its file open.
    if (pInfo) std::memset(pInfo->abPlayer, 0, sizeof pInfo->abPlayer);
}
