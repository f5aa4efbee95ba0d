// Reading DV streams made by ffmpeg (tests/dv/make-tapes.sh), whole and
// damaged, from a file and from memory, and the packs a frame carries.
// What whole tapes say is compared with other tools in check_tools.py;
// damaged pictures are among the fuzz corpus verdicts.
#include "dv/DvStream.h"
#include "support/Portable.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <unistd.h>

namespace {

constexpr size_t P = 144000, N = 120000;  // bytes of a 625/50 and a 525/60 frame

std::vector<uint8_t> Frames(const char* tape, size_t frameBytes, size_t count)
{
    std::ifstream f(std::string(QV_DV_TAPES) + "/" + tape, std::ios::binary);
    std::vector<uint8_t> bytes(count * frameBytes);
    f.read(reinterpret_cast<char*>(bytes.data()), std::streamsize(bytes.size()));
    EXPECT_EQ(size_t(f.gcount()), bytes.size()) << "tests/dv/make-tapes.sh makes the tapes";
    return bytes;
}

// The frames a reader finds, as "offset:size", "!" after a damaged one,
// "n" after a 525/60 one.
std::string FramesRead(dv::Reader& reader)
{
    std::string seen;
    for (dv::FrameInfo f; reader.Next(f);)
        seen += std::to_string(f.offset) + ":" + std::to_string(f.size) + (f.damaged ? "!" : "") +
                (f.system == dv::System::Ntsc525 ? "n " : " ");
    return seen;
}

using Edit = std::function<void(std::vector<uint8_t>&)>;
Edit Insert(size_t at, std::vector<uint8_t> bytes)
{
    return [=](auto& t) { t.insert(t.begin() + std::ptrdiff_t(at), bytes.begin(), bytes.end()); };
}
Edit Cut(size_t from, size_t to)
{
    return [=](auto& t) { t.erase(t.begin() + std::ptrdiff_t(from), t.begin() + std::ptrdiff_t(to)); };
}
// Noise with the ID bytes of a header block in it.
std::vector<uint8_t> Noise()
{
    std::vector<uint8_t> n(333, 0x5A);
    for (size_t i = 0; i < n.size(); i += 80) n[i] = 0x1F, n[i + 1] = 0x07, n[i + 2] = 0x00;
    return n;
}

TEST(DvReader, FindsFramesThroughDamageAndRefusesWhatIsNotDv)
{
    struct Case {
        const char* name;
        Edit edit;           // on three whole 625/50 frames
        const char* frames;  // as FramesRead lists them, or the refusal
    } cases[] = {
        {"whole frames", Cut(0, 0), "0:144000 144000:144000 288000:144000 "},
        {"a block zeroed", [](auto& t) { std::fill_n(t.begin() + P + 80 * 700, 80, 0); },
         "0:144000 144000:144000! 288000:144000 "},
        {"a frame cut short", Cut(P + 50000, 2 * P), "0:144000 144000:50000! 194000:144000 "},
        {"a frame cut inside a block", Cut(P + 50037, 2 * P), "0:144000 144000:50037! 194037:144000 "},
        {"the last frame cut off", Cut(2 * P + 1000, 3 * P), "0:144000 144000:144000 288000:1000! "},
        {"noise between frames", Insert(P, Noise()), "0:144000 144333:144000 288333:144000 "},
        {"noise before the first frame", Insert(0, Noise()), "333:144000 144333:144000 288333:144000 "},
        {"a header block zeroed", [](auto& t) { std::fill_n(t.begin() + P, 80, 0); }, "0:144000 288000:144000 "},
        {"a 525/60 frame among 625/50 ones", Insert(P, Frames("ntsc.dv", N, 1)),
         "0:144000 144000:120000n 264000:144000 408000:144000 "},
        {"an empty file", Cut(0, 3 * P), "is not a DV stream: it is empty"},
        {"a text file", [](auto& t) { t.assign({'D', 'V', '\n'}); },
         "is not a DV stream: no DIF header block in its 3 bytes"},
        {"a frame after a megabyte of noise", Insert(0, std::vector<uint8_t>(1 << 20, 0xFF)),
         "is not a DV stream: no DIF header block in its first 1048576 bytes"},
    };
    const std::vector<uint8_t> tape = Frames("pal.dv", P, 3);
    const std::string path = std::filesystem::temp_directory_path() / ("qvdv-" + std::to_string(getpid()) + ".dv");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<uint8_t> bytes = tape;
        c.edit(bytes);
        ASSERT_TRUE(qvtest::WriteBytes(path, bytes));
        dv::Reader file, memory;
        bool refused = std::string(c.frames).find("not a DV") != std::string::npos;
        EXPECT_EQ(file.Open(path.c_str()), !refused);
        EXPECT_EQ(memory.OpenMemory(bytes.data(), bytes.size()), !refused);
        if (refused) {
            EXPECT_EQ(file.Error(), path + " " + c.frames);
            EXPECT_NE(memory.Error().find("is not a DV stream"), std::string::npos);
        } else {
            EXPECT_EQ(FramesRead(file), c.frames);
            EXPECT_EQ(FramesRead(memory), c.frames);
        }
    }
    std::filesystem::remove(path);
}

// Calls `patch` on each pack of `type` in the frame's subcode blocks (six
// packs 8 bytes apart), VAUX blocks (fifteen, 5 apart) and audio blocks (one).
void PatchPacks(std::vector<uint8_t>& frame, uint8_t type, const std::function<void(uint8_t*)>& patch)
{
    for (size_t b = 0; b < frame.size(); b += 80) {
        int section = frame[b] >> 5, step = section == 1 ? 8 : 5;
        int last = section == 1 ? 46 : section == 2 ? 73 : section == 3 ? 3 : 0;
        for (int p = section == 1 ? 6 : 3; p <= last; p += step)
            if (frame[b + p] == type) patch(&frame[b + p]);
    }
}

TEST(DvFrame, TellsTheRecordStartMarkAndLeavesOutWhatIsNotThere)
{
    struct Case {
        const char* name;
        uint8_t pack;
        std::function<void(uint8_t*)> patch;
        bool start, timeCode, date, time;
    } cases[] = {
        {"as ffmpeg writes it", 0x51, [](uint8_t*) {}, false, true, true, true},
        {"REC ST cleared: the record button was pressed", 0x51, [](uint8_t* p) { p[2] &= 0x7F; }, true, true, true, true},
        {"time code digits out of range", 0x13, [](uint8_t* p) { p[2] = 0x6A; }, false, false, true, true},
        {"no recording date", 0x62, [](uint8_t* p) { std::fill_n(p + 1, 4, 0xFF); }, false, true, false, true},
        {"month 13", 0x62, [](uint8_t* p) { p[3] = 0x13; }, false, true, false, true},
        {"no recording time", 0x63, [](uint8_t* p) { std::fill_n(p + 1, 4, 0xFF); }, false, true, true, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<uint8_t> frame = Frames("ntsc.dv", N, 1);
        PatchPacks(frame, c.pack, c.patch);
        dv::FrameInfo info = dv::ParseFrame(frame.data(), frame.size());
        EXPECT_EQ(std::vector<bool>({info.damaged, info.recordingStart, info.hasTimeCode, info.hasDate, info.hasTime}),
                  std::vector<bool>({false, c.start, c.timeCode, c.date, c.time}));
    }
}

} // namespace
