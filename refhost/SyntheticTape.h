// The embedded synthetic tape: a few dozen scenes with distinct test
// pictures, recording dates and device positions, and the pictures
// themselves (thumbnails and captured frames).
#pragma once

#include "Tape.h"

class SyntheticTape : public Tape {
public:
    static const int kFramesPerSecond = 25;

    explicit SyntheticTape(int nScenes = 36, int nMinutes = 60);

    int FramesPerSecond() const override { return kFramesPerSecond; }
    int TvStandard() const override { return 2; }
    const char* CaptureExtension() const override { return ".avi"; }
    // Time codes run from 00:00:00:00 at the tape's start, 25 frames a second.
    uint32_t TimeCodeOf(uint32_t nFrame) const override;
    uint32_t FrameOf(uint32_t dwTimeCode, uint32_t from) const override;
    // Each scene's test picture at 80x60, numbered.
    bool Thumbnail(int scene, BITMAPINFOHEADER& header, std::vector<uint8_t>& bits) const override;
    // Two seconds of the picture of the scene holding `first`, as an AVI.
    bool Capture(uint32_t first, uint32_t last, const std::string& path) const override;

    // Draws scene `i`'s picture, `nFrameInScene` frames into it, as a
    // bottom-up 24-bit DIB of the given size.
    static void RenderFrame(int nScene, int nPattern, int nFrameInScene, int width, int height,
                            BITMAPINFOHEADER& header, std::vector<uint8_t>& bits);
};
