#include "AviWriter.h"

#include "SyntheticTape.h"

#include <windows.h>
#include <vfw.h>

#include <vector>

bool WriteSceneAvi(const std::string& path, int nScene, int nPattern, int seconds)
{
    const int width = 160, height = 120, fps = SyntheticTape::kFramesPerSecond;
    DeleteFileA(path.c_str());
    AVIFileInit();
    PAVIFILE file = nullptr;
    bool ok = AVIFileOpenA(&file, path.c_str(), OF_CREATE | OF_WRITE, nullptr) == 0;
    PAVISTREAM stream = nullptr;
    if (ok) {
        AVISTREAMINFOA info = {};
        info.fccType = streamtypeVIDEO;
        info.fccHandler = mmioFOURCC('D', 'I', 'B', ' ');
        info.dwScale = 1;
        info.dwRate = fps;
        info.dwSuggestedBufferSize = static_cast<DWORD>(((width * 3 + 3) & ~3) * height);
        SetRect(&info.rcFrame, 0, 0, width, height);
        ok = AVIFileCreateStreamA(file, &stream, &info) == 0;
    }
    BITMAPINFOHEADER header;
    std::vector<uint8_t> bits;
    for (int f = 0; ok && f < seconds * fps; ++f) {
        SyntheticTape::RenderFrame(nScene, nPattern, f, width, height, header, bits);
        if (f == 0) ok = AVIStreamSetFormat(stream, 0, &header, sizeof header) == 0;
        if (ok)
            ok = AVIStreamWrite(stream, f, 1, bits.data(), static_cast<LONG>(bits.size()), AVIIF_KEYFRAME, nullptr,
                                nullptr) == 0;
    }
    if (stream) AVIStreamRelease(stream);
    if (file) AVIFileRelease(file);
    AVIFileExit();
    return ok;
}
