// The embedded synthetic tape: a few dozen scenes with distinct test
// pictures, recording dates and device positions, and the pictures
// themselves (thumbnails and captured frames).
#pragma once

#include <windows.h>

#include <cstdint>
#include <vector>

struct TapeScene {
    uint32_t nFirstFrame;   // device position of the first frame
    uint32_t nLastFrame;
    SYSTEMTIME stRecorded;
    int nPattern;           // which test picture
};

class SyntheticTape {
public:
    static const int kFramesPerSecond = 25;

    explicit SyntheticTape(int nScenes = 36, int nMinutes = 60);
    const std::vector<TapeScene>& Scenes() const { return m_scenes; }
    uint32_t LengthInFrames() const { return m_length; }

    // A packed time code of a frame position (25 frames per second).
    static uint32_t TimeCodeOf(uint32_t nFrame);
    // A frame position of a packed time code.
    static uint32_t FrameOf(uint32_t dwTimeCode);

    // Draws scene `i`'s picture, `nFrameInScene` frames into it, as a
    // bottom-up 24-bit DIB of the given size.
    static void RenderFrame(int nScene, int nPattern, int nFrameInScene, int width, int height,
                            BITMAPINFOHEADER& header, std::vector<uint8_t>& bits);

private:
    std::vector<TapeScene> m_scenes;
    uint32_t m_length = 0;
};
