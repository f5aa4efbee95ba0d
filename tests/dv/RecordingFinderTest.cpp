// Where recordings begin, told from what each frame says, and what a
// recording reports when some of its frames say little.
#include "dv/DvStream.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

// A frame from words: a time code "00:00:59:24" (";" before the frames for
// drop-frame, which makes it 525/60), a date "2004-05-01", a time of day
// "10:00:00", "S" for the record start mark, "D" for damage.
dv::FrameInfo Frame(const std::string& words)
{
    dv::FrameInfo f;
    f.dropFrame = words.find(';') != std::string::npos;
    f.system = f.dropFrame ? dv::System::Ntsc525 : dv::System::Pal625;
    f.recordingStart = words.find('S') != std::string::npos;
    f.damaged = words.find('D') != std::string::npos;
    std::istringstream in(words);
    for (std::string w; in >> w;) {
        int a, b, c, d;
        if (std::sscanf(w.c_str(), "%d-%d-%d", &a, &b, &c) == 3)
            f.hasDate = true, f.recorded.year = a, f.recorded.month = b, f.recorded.day = c;
        else if (std::sscanf(w.c_str(), "%d:%d:%d%*c%d", &a, &b, &c, &d) == 4)
            f.hasTimeCode = true, f.hours = a, f.minutes = b, f.seconds = c, f.frames = d;
        else if (std::sscanf(w.c_str(), "%d:%d:%d", &a, &b, &c) == 3)
            f.hasTime = true, f.recorded.hour = a, f.recorded.minute = b, f.recorded.second = c;
    }
    return f;
}

TEST(RecordingFinder, BeginsARecordingWhereTheTapeBreaks)
{
    struct Case {
        const char* name;
        std::vector<const char*> frames;
        std::vector<uint64_t> firstFrames;
    } cases[] = {
        {"time code and clock running on", {"00:00:00:24 2004-05-01 10:00:00", "00:00:01:00 2004-05-01 10:00:01"}, {0}},
        {"time code jumps a frame", {"00:00:00:00", "00:00:00:02"}, {0, 1}},
        {"time code goes back", {"00:00:00:05", "00:00:00:04"}, {0, 1}},
        {"time code stands still", {"00:00:00:05", "00:00:00:05"}, {0, 1}},
        {"time code through midnight", {"23:59:59:24", "00:00:00:00"}, {0}},
        {"drop-frame count skips 00 and 01 at a minute", {"00:00:59;29", "00:01:00;02"}, {0}},
        {"but not at every tenth minute", {"00:09:59;29", "00:10:00;02"}, {0, 1}},
        {"drop-frame through midnight", {"23:59:59;29", "00:00:00;00"}, {0}},
        {"frames without a time code in between", {"00:00:00:00", "", "D", "00:00:00:03"}, {0}},
        {"clock jumps two seconds", {"2004-05-01 10:00:00", "2004-05-01 10:00:02"}, {0, 1}},
        {"clock goes back", {"2004-05-01 10:00:00", "2004-05-01 09:59:59"}, {0, 1}},
        {"clock runs into the next day", {"2004-12-31 23:59:59", "2005-01-01 00:00:00"}, {0}},
        {"a date without a time of day", {"2004-05-01 10:00:00", "2004-05-09", "2004-05-01 10:00:01"}, {0}},
        {"record start mark", {"00:00:00:00 S", "00:00:00:01 S", "00:00:00:02"}, {0, 1}},
        {"frames that say nothing", {"", "D", ""}, {0}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        dv::RecordingFinder finder;
        std::vector<uint64_t> begun;
        for (size_t i = 0; i < c.frames.size(); ++i)
            if (finder.Add(Frame(c.frames[i]))) begun.push_back(i);
        EXPECT_EQ(begun, c.firstFrames);
    }
}

TEST(RecordingFinder, FillsInWhatTheFirstAndLastFramesLack)
{
    dv::RecordingFinder finder;
    for (const char* f : {"00:10:00:00 2004-05-01 10:00:00", "S D", "12:00:00 D", "00:10:00:03 2004-05-01 D",
                          "00:10:00:04", ""})
        finder.Add(Frame(f));
    ASSERT_EQ(finder.Recordings().size(), 2u);
    const dv::Recording& r = finder.Recordings()[1];
    const dv::RecordedAt& t = r.first.recorded;
    char seen[96];
    std::snprintf(seen, sizeof seen, "%d-%d in %08x %04d%02d%02d %02d%02d%02d out %08x picture %d", int(r.firstFrame),
                  int(r.lastFrame), r.first.PackedTimeCode(), t.year, t.month, t.day, t.hour, t.minute, t.second,
                  r.last.PackedTimeCode(), int(r.pictureFrame));
    EXPECT_STREQ(seen, "1-5 in 000a0003 20040501 120000 out 000a0004 picture 4");
}

} // namespace
