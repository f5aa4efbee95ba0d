#include "SyntheticTape.h"

#include "AviWriter.h"

#include <cmath>
#include <cstdio>
#include <cstring>

SyntheticTape::SyntheticTape(int nScenes, int nMinutes)
{
    m_length = static_cast<uint32_t>(nMinutes) * 60 * kFramesPerSecond;
    uint32_t slot = m_length / static_cast<uint32_t>(nScenes);
    for (int i = 0; i < nScenes; ++i) {
        TapeScene s = {};
        // Scenes of varying length with a short gap between them.
        uint32_t start = static_cast<uint32_t>(i) * slot + 12;
        uint32_t length = slot / 2 + (static_cast<uint32_t>(i * 7919) % (slot / 2 - 25));
        s.nFirstFrame = start;
        s.nLastFrame = start + length;
        s.stRecorded.wYear = 2003;
        s.stRecorded.wMonth = static_cast<WORD>(7 + i / 12);
        s.stRecorded.wDay = static_cast<WORD>(4 + (i % 12));
        s.stRecorded.wHour = static_cast<WORD>(9 + i % 10);
        s.stRecorded.wMinute = static_cast<WORD>((i * 13) % 60);
        s.stRecorded.wSecond = static_cast<WORD>((i * 29) % 60);
        s.dwTimeCodeIn = TimeCodeOf(s.nFirstFrame);
        s.dwTimeCodeOut = TimeCodeOf(s.nLastFrame);
        m_scenes.push_back(s);
    }
    // One scene from a camcorder whose clock was never set.
    if (nScenes > 5) m_scenes[5].stRecorded = SYSTEMTIME{};
}

uint32_t SyntheticTape::TimeCodeOf(uint32_t n) const
{
    uint32_t f = n % kFramesPerSecond, total = n / kFramesPerSecond;
    uint32_t s = total % 60, m = (total / 60) % 60, h = total / 3600;
    return (h << 24) | (m << 16) | (s << 8) | f;
}

uint32_t SyntheticTape::FrameOf(uint32_t t, uint32_t) const
{
    uint32_t h = t >> 24, m = (t >> 16) & 0xFF, s = (t >> 8) & 0xFF, f = t & 0xFF;
    return ((h * 60 + m) * 60 + s) * kFramesPerSecond + f;
}

bool SyntheticTape::Thumbnail(int scene, BITMAPINFOHEADER& header, std::vector<uint8_t>& bits) const
{
    RenderFrame(scene, scene % 4, 0, 80, 60, header, bits);
    return true;
}

bool SyntheticTape::Capture(uint32_t first, uint32_t, const std::string& path) const
{
    int scene = SceneAt(first);
    return scene < static_cast<int>(m_scenes.size()) && WriteSceneAvi(path, scene, scene % 4, 2);
}

int Tape::SceneAt(uint32_t frame) const
{
    for (size_t i = 0; i < m_scenes.size(); ++i)
        if (m_scenes[i].nLastFrame >= frame) return static_cast<int>(i);
    return static_cast<int>(m_scenes.size());
}

namespace {

COLORREF Hue(double h, double light)
{
    double r = 0.5 + 0.5 * std::cos(6.2832 * (h + 0.0));
    double g = 0.5 + 0.5 * std::cos(6.2832 * (h + 0.33));
    double b = 0.5 + 0.5 * std::cos(6.2832 * (h + 0.67));
    return RGB(static_cast<int>(255 * (light + (1 - light) * r) * 0.9),
               static_cast<int>(255 * (light + (1 - light) * g) * 0.9),
               static_cast<int>(255 * (light + (1 - light) * b) * 0.9));
}

} // namespace

void SyntheticTape::RenderFrame(int nScene, int nPattern, int nFrameInScene, int width, int height,
                                BITMAPINFOHEADER& header, std::vector<uint8_t>& bits)
{
    std::memset(&header, 0, sizeof header);
    header.biSize = sizeof header;
    header.biWidth = width;
    header.biHeight = height;
    header.biPlanes = 1;
    header.biBitCount = 24;
    header.biCompression = BI_RGB;
    int stride = (width * 3 + 3) & ~3;
    header.biSizeImage = static_cast<DWORD>(stride * height);

    BITMAPINFO bi = {};
    bi.bmiHeader = header;
    void* pixels = nullptr;
    HDC dc = CreateCompatibleDC(nullptr);
    HBITMAP dib = CreateDIBSection(dc, &bi, DIB_RGB_COLORS, &pixels, nullptr, 0);
    HGDIOBJ old = SelectObject(dc, dib);
    double hue = nScene * 0.137;
    RECT all = {0, 0, width, height};
    HBRUSH sky = CreateSolidBrush(Hue(hue, 0.45));
    FillRect(dc, &all, sky);
    DeleteObject(sky);

    HBRUSH ink = CreateSolidBrush(Hue(hue + 0.5, 0.1));
    HGDIOBJ oldBrush = SelectObject(dc, ink);
    HGDIOBJ oldPen = SelectObject(dc, GetStockObject(NULL_PEN));
    int shift = (nFrameInScene * 2) % width;
    switch (nPattern) {
    case 0:  // colour bars
        for (int i = 0; i < 6; ++i) {
            RECT bar = {i * width / 6, height / 2, (i + 1) * width / 6, height};
            HBRUSH b = CreateSolidBrush(Hue(hue + i / 6.0, 0.2));
            FillRect(dc, &bar, b);
            DeleteObject(b);
        }
        break;
    case 1:  // a sun over a hill
        Ellipse(dc, width / 8 + shift / 4, height / 10, width / 8 + width / 3 + shift / 4, height / 10 + width / 3);
        Rectangle(dc, 0, height * 2 / 3, width + 1, height + 1);
        break;
    case 2:  // checker board
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 6; ++x)
                if ((x + y) % 2) Rectangle(dc, x * width / 6, y * height / 4, (x + 1) * width / 6, (y + 1) * height / 4);
        break;
    default:  // diagonal stripes
        for (int i = -height; i < width; i += width / 5) {
            POINT p[4] = {{i + shift, 0}, {i + shift + width / 10, 0}, {i + shift + width / 10 - height, height},
                          {i + shift - height, height}};
            Polygon(dc, p, 4);
        }
        break;
    }
    SelectObject(dc, oldPen);
    SelectObject(dc, oldBrush);
    DeleteObject(ink);

    // The scene's number, large, so every thumbnail is recognisable.
    char label[8];
    std::snprintf(label, sizeof label, "%d", nScene + 1);
    LOGFONTA lf = {};
    lf.lfHeight = -height / 2;
    lf.lfWeight = FW_BOLD;
    std::strcpy(lf.lfFaceName, "Tahoma");
    HFONT font = CreateFontIndirectA(&lf);
    HGDIOBJ oldFont = SelectObject(dc, font);
    SetBkMode(dc, TRANSPARENT);
    RECT shadow = {2, 2, width + 2, height + 2};
    SetTextColor(dc, RGB(0, 0, 0));
    DrawTextA(dc, label, -1, &shadow, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
    SetTextColor(dc, RGB(255, 255, 255));
    DrawTextA(dc, label, -1, &all, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
    SelectObject(dc, oldFont);
    DeleteObject(font);

    GdiFlush();
    bits.assign(static_cast<const uint8_t*>(pixels), static_cast<const uint8_t*>(pixels) + stride * height);
    SelectObject(dc, old);
    DeleteObject(dib);
    DeleteDC(dc);
}
