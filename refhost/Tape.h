// What the virtual deck plays: a tape of scenes.  The embedded synthetic tape
// and a DV file are both tapes; the deck moves over frame positions and asks
// the tape for what a real deck would read off it.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

struct TapeScene {
    uint32_t nFirstFrame;     // device positions: frame numbers from the tape's start
    uint32_t nLastFrame;
    uint32_t dwTimeCodeIn;    // packed hh<<24|mm<<16|ss<<8|ff, as the frames carry them
    uint32_t dwTimeCodeOut;
    SYSTEMTIME stRecorded;    // all zero when the camcorder recorded no date
};

class Tape {
public:
    virtual ~Tape() = default;

    const std::vector<TapeScene>& Scenes() const { return m_scenes; }
    uint32_t LengthInFrames() const { return m_length; }
    // The scene holding a frame, or the next one after a gap; Scenes().size() past the last.
    int SceneAt(uint32_t frame) const;

    // Frames a second of play, and the TV standard the module is told
    // (0 = 30 frames drop-frame, 2 = 25 frames).
    virtual int FramesPerSecond() const = 0;
    virtual int TvStandard() const = 0;
    // What a capture of this tape writes: ".avi" or ".dv".
    virtual const char* CaptureExtension() const = 0;

    // The time code the tape carries at a frame position.
    virtual uint32_t TimeCodeOf(uint32_t frame) const = 0;
    // The frame carrying a time code: the first at or after `from`, else the
    // first from the start; `from` itself when no frame carries it.
    virtual uint32_t FrameOf(uint32_t timeCode, uint32_t from) const = 0;
    // Reads the frame at a position as the head passes it in trick play
    // (the deck's quick scan); the time code read there.
    virtual uint32_t ReadInPassing(uint32_t frame) { return TimeCodeOf(frame); }

    // A scene's thumbnail as a 24-bit DIB; false when it has none.
    virtual bool Thumbnail(int scene, BITMAPINFOHEADER& header, std::vector<uint8_t>& bits) const = 0;
    // Writes frames `first`..`last` of the tape into a file.
    virtual bool Capture(uint32_t first, uint32_t last, const std::string& path) const = 0;

protected:
    std::vector<TapeScene> m_scenes;
    uint32_t m_length = 0;
};
