// Raw DV (DIF) streams as a camcorder writes them to tape: frames, what each
// frame tells about its recording, and a small picture of it.
//
// Portable: no Windows headers.  The reference host's deck reads tapes with
// it, and the video player plays captured scenes through its picture decoder.
//
// A DV frame is a run of DIF sequences (10 for 525-line/60 Hz video, 12 for
// 625-line/50 Hz), each of 150 blocks of 80 bytes: a header block, two
// subcode blocks, three VAUX blocks and 144 audio and video blocks.  The
// header block says which of the two systems the tape was recorded in.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace dv {

enum { BLOCK_BYTES = 80, BLOCKS_PER_SEQUENCE = 150 };

enum class System : uint8_t {
    Unknown = 0,
    Ntsc525 = 1,  // 525 lines, 29.97 frames a second, 10 sequences a frame
    Pal625 = 2,   // 625 lines, 25 frames a second, 12 sequences a frame
};

// Bytes of one whole frame of the system (120,000 or 144,000); 0 for Unknown.
size_t FrameBytes(System system);
// Frames a second as time codes count them (30 or 25); 0 for Unknown.
int TimeCodeRate(System system);

// The recording date and time the camcorder wrote into a frame.
struct RecordedAt {
    uint16_t year = 0;
    uint8_t month = 0, day = 0, hour = 0, minute = 0, second = 0;
};

// What one frame tells.  Every field that the frame does not carry is
// flagged absent rather than guessed.
struct FrameInfo {
    System system = System::Unknown;
    uint64_t offset = 0;       // byte offset of the frame's header block in the stream
    uint32_t size = 0;         // bytes the frame occupies in the stream
    bool damaged = false;      // a block missing, out of place or cut short
    bool hasTimeCode = false;  // the tape's time code (subcode pack 0x13)
    bool dropFrame = false;    // 525/60 time code counted drop-frame
    uint8_t hours = 0, minutes = 0, seconds = 0, frames = 0;
    bool hasDate = false;      // recording date (pack 0x62, subcode or VAUX)
    bool hasTime = false;      // recording time of day (pack 0x63)
    RecordedAt recorded;
    bool recordingStart = false;  // the first frame after the camcorder's record button

    // The time code packed as the module's scene feed takes it:
    // hours << 24 | minutes << 16 | seconds << 8 | frames.
    uint32_t PackedTimeCode() const;
};

// Reads a DV stream frame by frame from a file.  A stream that does not start
// with DV is refused at Open with a message for the user; damage later on is
// reported on the frame and the reader resynchronises on the next header
// block.
class Reader {
public:
    Reader() = default;
    ~Reader();
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    bool Open(const char* path);
    // A stream already in memory (tests, fuzzing); the bytes must outlive the reader.
    bool OpenMemory(const uint8_t* data, size_t size);
    // Why Open failed, in a user's words ("... is not a DV stream ...").
    const std::string& Error() const { return m_error; }
    // The system of the stream's first frame.
    System StreamSystem() const { return m_system; }

    // The next frame: its description and, when `bytes` is given, its bytes.
    // False at the end of the stream.
    bool Next(FrameInfo& info, std::vector<uint8_t>* bytes = nullptr);
    // Moves to a byte offset a Next returned earlier (a frame's start).
    bool SeekTo(uint64_t offset);

private:
    void Close();
    // Bytes from the read position on, at least `want` unless the stream ends first.
    size_t Fill(size_t want);
    const uint8_t* Here() const { return (m_memory ? m_memory : m_buffer.data()) + m_start; }
    bool Start(const char* name);  // finds the first frame, or refuses the stream
    bool FindHeader();
    bool Refuse(const char* name, const char* why);

    std::FILE* m_file = nullptr;
    const uint8_t* m_memory = nullptr;
    std::vector<uint8_t> m_buffer;  // bytes read ahead from the file
    size_t m_start = 0, m_end = 0;  // the unread part of m_buffer, or of the memory
    uint64_t m_offset = 0;          // stream offset of m_buffer[0] (0 for memory)
    bool m_atEnd = false;           // the file has no more bytes to read
    System m_system = System::Unknown;
    std::string m_error;
};

// Describes one frame from its bytes (a whole frame, as Next returns it).
FrameInfo ParseFrame(const uint8_t* frame, size_t size);

// A scene of the tape: one recording, from the camcorder's record button to
// its pause.
struct Recording {
    uint64_t firstFrame = 0;   // frame numbers in the stream, counted from 0
    uint64_t lastFrame = 0;
    // The first frame; a time code or date it lacks is taken from the first
    // later frame of the recording that has one.
    FrameInfo first;
    FrameInfo last;            // the last frame (its time code: the last one seen)
    uint64_t pictureFrame = 0; // the first undamaged frame, for the thumbnail
};

// Finds recordings as tape logging tools do: a new one begins where the
// recording date and time jump by two seconds or more or go back, where the
// record-start flag is set, or where the time code jumps or goes back.
// Frames without a date or time code stay in the recording they follow.
class RecordingFinder {
public:
    // Takes the stream's next frame; true when it begins a new recording
    // (the first frame always does).
    bool Add(const FrameInfo& info);
    const std::vector<Recording>& Recordings() const { return m_recordings; }

private:
    bool Breaks(const FrameInfo& info) const;

    std::vector<Recording> m_recordings;
    uint64_t m_frames = 0;
    FrameInfo m_lastTimed;   // the last frame that had a time code
    FrameInfo m_lastDated;   // the last frame that had a date and time
    uint64_t m_lastTimedFrame = 0;
    bool m_pictureFound = false;  // the current recording has an undamaged frame
};

// A small colour picture of a frame from the DC coefficient of each 8x8
// block only (no full decode): 90x72 for 625/50, 90x60 for 525/60, as a
// bottom-up 24-bit DIB (rows of BGR, each padded to 4 bytes).
struct Picture {
    int width = 0, height = 0;
    std::vector<uint8_t> bits;
    size_t Stride() const { return (static_cast<size_t>(width) * 3 + 3) & ~static_cast<size_t>(3); }
};
bool DecodePicture(const uint8_t* frame, size_t size, Picture& out);

} // namespace dv
