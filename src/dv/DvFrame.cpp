// One DV frame: whether its blocks sit where they belong, and what it tells
// about its recording through the packs of its subcode, VAUX and audio blocks.
#include "dv/DvLayout.h"

#include <algorithm>

namespace dv {

size_t FrameBytes(System system)
{
    switch (system) {
    case System::Ntsc525: return 10 * BLOCKS_PER_SEQUENCE * BLOCK_BYTES;
    case System::Pal625: return 12 * BLOCKS_PER_SEQUENCE * BLOCK_BYTES;
    default: return 0;
    }
}

int TimeCodeRate(System system)
{
    return system == System::Ntsc525 ? 30 : system == System::Pal625 ? 25 : 0;
}

uint32_t FrameInfo::PackedTimeCode() const
{
    return uint32_t(hours) << 24 | uint32_t(minutes) << 16 | uint32_t(seconds) << 8 | frames;
}

namespace layout {

bool IsFrameStart(const uint8_t* p, size_t available)
{
    // Recorders write the header block's reserved bit 4 of byte 0 as 1: a
    // block wiped to zeros is not taken for a header.
    if (available < START_BYTES || !(p[0] & 0x10)) return false;
    for (int i = 0; i < int(START_BYTES / BLOCK_BYTES); ++i)
        if (!InPlace(p + i * BLOCK_BYTES, 0, i)) return false;
    return true;
}

size_t BlocksInPlace(const uint8_t* frame, size_t size, System system)
{
    size_t blocks = std::min(size, FrameBytes(system)) / BLOCK_BYTES;
    for (size_t i = 0; i < blocks; ++i)
        if (!InPlace(frame + i * BLOCK_BYTES, int(i / BLOCKS_PER_SEQUENCE), int(i % BLOCKS_PER_SEQUENCE))) return i;
    return blocks;
}

} // namespace layout

namespace {

using namespace layout;

// Packs are five bytes: a type, then four bytes of data.  Values are
// binary-coded decimal with flag bits above the digits; a recorder fills a
// pack it has nothing for with 0xFF, which no digit check lets through.
int Bcd(uint8_t byte, uint8_t mask)
{
    byte &= mask;
    int units = byte & 0x0F, tens = byte >> 4;
    return units > 9 || tens > 9 ? -1 : tens * 10 + units;
}

enum PackType : uint8_t {
    TIME_CODE = 0x13,       // the tape's time code, as the deck's counter shows it
    AUDIO_CONTROL = 0x51,   // how the audio was recorded, with the record start mark
    RECORDING_DATE = 0x62,  // the camcorder's calendar date when it recorded the frame
    RECORDING_TIME = 0x63,  // the camcorder's clock when it recorded the frame
};

struct PackReader {
    FrameInfo& info;
    bool seenControl = false;

    void Read(const uint8_t* pack)
    {
        switch (pack[0]) {
        case TIME_CODE: {
            // Flags: colour frame (bit 7 of the frames) and, in 525/60,
            // drop-frame counting (bit 6): frame numbers 0 and 1 skipped at
            // each minute but every tenth, so that the count keeps up
            // with 29.97 frames a second.
            int f = Bcd(pack[1], 0x3F), s = Bcd(pack[2], 0x7F), m = Bcd(pack[3], 0x7F), h = Bcd(pack[4], 0x3F);
            int rate = info.system == System::Pal625 ? 25 : 30;
            if (info.hasTimeCode || f < 0 || s < 0 || m < 0 || h < 0 || f >= rate || s > 59 || m > 59 || h > 23) return;
            info.hasTimeCode = true;
            info.dropFrame = info.system == System::Ntsc525 && (pack[1] & 0x40);
            info.hours = uint8_t(h), info.minutes = uint8_t(m), info.seconds = uint8_t(s), info.frames = uint8_t(f);
            break;
        }
        case RECORDING_DATE: {
            // The first byte holds the time zone, which the date is already
            // in.  Two digits of the year: DV began in the 1990s.
            int d = Bcd(pack[2], 0x3F), mo = Bcd(pack[3], 0x1F), y = Bcd(pack[4], 0xFF);
            if (info.hasDate || d < 1 || d > 31 || mo < 1 || mo > 12 || y < 0) return;
            info.hasDate = true;
            info.recorded.year = uint16_t(y < 70 ? 2000 + y : 1900 + y);
            info.recorded.month = uint8_t(mo), info.recorded.day = uint8_t(d);
            break;
        }
        case RECORDING_TIME: {
            // The first byte may carry frames; camcorders leave it unset.
            int s = Bcd(pack[2], 0x7F), m = Bcd(pack[3], 0x7F), h = Bcd(pack[4], 0x3F);
            if (info.hasTime || s < 0 || m < 0 || h < 0 || s > 59 || m > 59 || h > 23) return;
            info.hasTime = true;
            info.recorded.hour = uint8_t(h), info.recorded.minute = uint8_t(m), info.recorded.second = uint8_t(s);
            break;
        }
        case AUDIO_CONTROL:
            // "REC ST", bit 7 of the second byte, is cleared on the frames
            // where the recorder started recording: the press of the
            // camcorder's record button.  The first pack found speaks for
            // the frame.
            if (!seenControl) info.recordingStart = !(pack[2] & 0x80);
            seenControl = true;
            break;
        default: break;
        }
    }
};

} // namespace

namespace layout {

FrameInfo Describe(const uint8_t* frame, size_t size, size_t blocksInPlace)
{
    FrameInfo info;
    info.size = static_cast<uint32_t>(size);
    info.system = SystemOf(frame);
    info.damaged = size != FrameBytes(info.system) || blocksInPlace * BLOCK_BYTES != size;

    // The subcode blocks hold six sync blocks each (two ID bytes, a
    // reserved byte, a pack); the VAUX blocks fifteen packs; each audio
    // block one pack before its samples.  Blocks out of place are skipped.
    static constexpr int PACK_BLOCKS[] = {1, 2, 3, 4, 5, 6, 22, 38, 54, 70, 86, 102, 118, 134};  // all but video
    PackReader packs{info};
    for (int seq = 0; seq < Sequences(info.system); ++seq) {
        for (int index : PACK_BLOCKS) {
            size_t at = (size_t(seq) * BLOCKS_PER_SEQUENCE + index) * BLOCK_BYTES;
            if (at + BLOCK_BYTES > size || !InPlace(frame + at, seq, index)) continue;
            const uint8_t* block = frame + at;
            switch (PlaceOf(index).section) {
            case SUBCODE:
                for (int j = 0; j < 6; ++j) packs.Read(block + 3 + 8 * j + 3);
                break;
            case VAUX:
                for (int j = 0; j < 15; ++j) packs.Read(block + 3 + 5 * j);
                break;
            default: packs.Read(block + 3); break;
            }
        }
    }
    return info;
}

} // namespace layout

FrameInfo ParseFrame(const uint8_t* frame, size_t size)
{
    if (!IsFrameStart(frame, size)) {
        FrameInfo info;
        info.size = static_cast<uint32_t>(size);
        info.damaged = true;
        return info;
    }
    return Describe(frame, size, BlocksInPlace(frame, size, SystemOf(frame)));
}

} // namespace dv
