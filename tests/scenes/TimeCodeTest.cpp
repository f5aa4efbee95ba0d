// Time codes and frame counts as the scene list shows them, per TV standard
// (0 and 1: 30 frames with drop-frame counting, 1 with a dot before the
// frames; 2: 25 frames), and recorded dates.
#include "scenes/TimeCode.h"

#include "qvPreScan.h"
#include "support/Portable.h"

#include <gtest/gtest.h>

#include <string>

using namespace qv;
using qvtest::Tc;

TEST(TimeCode, FramesAndTimeCodesPerStandard)
{
    struct Row { int tv; int32_t frames; uint32_t tc; } rows[] = {
        {0, 1800, Tc(0, 1, 0, 0)}, {2, 1800, Tc(0, 1, 12, 0)}, {2, 0, 0}, {2, 25 * 3661 + 7, Tc(1, 1, 1, 7)},
        {1, 30 * 3600 * 30, Tc(30, 0, 0, 0)}};  // hours are not limited to a day
    for (const Row& r : rows) EXPECT_EQ(FramesToTimeCode(r.frames, r.tv), r.tc) << r.tv << " " << r.frames;
    // Back to counts: 30 frames drop two numbers each minute but every tenth.
    struct Back { uint32_t tc; int tv; int32_t frames; } back[] = {
        {Tc(0, 0, 59, 29), 0, 1800}, {Tc(0, 1, 0, 2), 0, 1801}, {Tc(0, 10, 0, 0), 0, 17983},
        {Tc(0, 10, 0, 0), 1, 17983}, {Tc(0, 1, 0, 0), 2, 1501}};
    for (const Back& b : back) EXPECT_EQ(TimeCodeToFrames(b.tc, b.tv), b.frames) << std::hex << b.tc << " " << b.tv;
}

TEST(TimeCode, TextsPerStandardAndDates)
{
    struct Row { uint32_t tc; int32_t frames; int tv; bool longHours; const char* text; } rows[] = {
        {Tc(0, 12, 5, 3), 0, 0, true, "00:12:05:03"}, {Tc(0, 12, 5, 3), 0, 1, true, "00:12:05.03"},
        {Tc(0, 12, 5, 3), 0, 2, true, "00:12:05:03"}, {Tc(3, 1, 2, 3), 0, 0, false, "3:01:02:03"},
        {Tc(12, 1, 2, 3), 0, 0, false, "12:01:02:03"}, {Tc(0, 99, 70, 40), 0, 2, true, "00:99:70:40"},  // as they stand
        {0x80000000u, 0, 0, true, "--:--:--:--"}, {0xFF123456u, 0, 2, true, "--:--:--:--"},          // no time code
        {0x7F000000u, 0, 2, true, "127:00:00:00"},
        // Frame counts (no time code given).
        {0, 90061, 2, true, "01:00:02:11"}, {0, 108061, 1, false, "1:00:02.01"}, {0, -1, 0, true, "--:--:--:--"}};
    for (const Row& r : rows) {
        char out[TIME_TEXT_SIZE];
        if (r.frames) FormatFrameCount(r.frames, r.tv, r.longHours, out, sizeof out);
        else FormatTimeCode(r.tc, r.tv, r.longHours, out, sizeof out);
        EXPECT_STREQ(out, r.text) << std::hex << r.tc << std::dec << " " << r.frames;
    }
    char out[TIME_TEXT_SIZE];
    FormatDuration(Tc(0, 0, 59, 29), Tc(0, 1, 0, 2), 0, out, sizeof out);
    EXPECT_STREQ(out, "00:00:00:01");

    // The recorded date: compact, on two lines, or none.
    const RecordedTime july = {2003, 7, 5, 4, 15, 6, 9, 500}, timeOnly = {0, 0, 3, 0, 12, 30, 15, 0};
    struct Date { RecordedTime st; bool twoLines; const char* text; } dates[] = {
        {july, false, "2003/ 7/ 4  15:06:09"}, {july, true, "2003/ 7/ 4\n 15:06:09"},
        {{1999, 12, 0, 31, 0, 0, 5, 0}, false, "1999/12/31  00:00:05"}, {{2001, 0, 0, 0, 0, 0, 0, 0}, false, "2001/ 0/ 0  00:00:00"},
        {timeOnly, false, "No date"}, {timeOnly, true, "No date"}};
    char date[DATE_TEXT_SIZE];
    for (const Date& d : dates) {
        FormatRecordedDate(d.st, d.twoLines, "No date", date, sizeof date);
        EXPECT_STREQ(date, d.text);
    }
}
