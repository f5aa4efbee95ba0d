// A DV file (raw DIF, as a camcorder's tape is copied to disk) played as a
// tape: its recordings are the scenes, its frames' own time codes and
// recording dates are what the deck reports, and each scene's thumbnail is
// the small picture of its first good frame.
#pragma once

#include "Tape.h"
#include "dv/DvStream.h"

#include <mutex>

class DvTape : public Tape {
public:
    // Reads the file through once, noting where each frame lies and where
    // each recording begins.  False, with Error(), when it is not DV.
    bool Open(const std::string& path);
    const std::string& Error() const { return m_error; }

    // 525/60 tapes count 30 frames drop-frame (the module's standard 0);
    // 625/50 tapes 25 frames (standard 2).
    int FramesPerSecond() const override { return dv::TimeCodeRate(m_system); }
    int TvStandard() const override { return m_system == dv::System::Pal625 ? 2 : 0; }
    const char* CaptureExtension() const override { return ".dv"; }
    // A frame without a time code shows the last one before it.
    uint32_t TimeCodeOf(uint32_t frame) const override;
    uint32_t FrameOf(uint32_t timeCode, uint32_t from) const override;
    uint32_t ReadInPassing(uint32_t frame) override;
    bool Thumbnail(int scene, BITMAPINFOHEADER& header, std::vector<uint8_t>& bits) const override;
    // The frames' bytes as they are on tape: a raw DV file of its own.
    bool Capture(uint32_t first, uint32_t last, const std::string& path) const override;

private:
    std::string m_path, m_error;
    dv::System m_system = dv::System::Unknown;
    std::vector<uint64_t> m_offsets;    // where each frame begins in the file
    std::vector<uint32_t> m_timeCodes;  // each frame's time code
    std::vector<dv::Picture> m_pictures;  // per scene; width 0 when none decoded
    std::mutex m_headLock;              // the trick-play head, used by the quick scan's thread
    dv::Reader m_head;
};
