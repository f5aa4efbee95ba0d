#include "scenes/TimeCode.h"

#include "qvPreScan.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

using namespace qv;

namespace {

uint32_t Tc(int h, int m, int s, int f)
{
    return (uint32_t(h) << 24) | (uint32_t(m) << 16) | (uint32_t(s) << 8) | uint32_t(f);
}

std::string TimeText(uint32_t t, int tv, bool longHours = true)
{
    char out[TIME_TEXT_SIZE];
    FormatTimeCode(t, tv, longHours, out, sizeof out);
    return out;
}

std::string CountText(int32_t n, int tv, bool longHours = true)
{
    char out[TIME_TEXT_SIZE];
    FormatFrameCount(n, tv, longHours, out, sizeof out);
    return out;
}

std::string DateText(RecordedTime st, bool twoLines)
{
    char out[DATE_TEXT_SIZE];
    FormatRecordedDate(st, twoLines, "No date", out, sizeof out);
    return out;
}

} // namespace

TEST(TimeCode, FrameRateFollowsTheStandard)
{
    EXPECT_EQ(GetFrameRate(2), 25);
    EXPECT_EQ(GetFrameRate(0), 30);
    EXPECT_EQ(GetFrameRate(1), 30);
}

TEST(TimeCode, FramesSplitIntoHoursMinutesSecondsFrames)
{
    int h, m, s, f;
    FramesToTime(90061, 2, h, m, s, f);
    EXPECT_EQ(h, 1); EXPECT_EQ(m, 0); EXPECT_EQ(s, 2); EXPECT_EQ(f, 11);
    EXPECT_EQ(CountText(90061, 2), "01:00:02:11");
    // Hours are not limited to a day.
    FramesToTime(30 * 3600 * 30, 0, h, m, s, f);
    EXPECT_EQ(h, 30);
}

TEST(TimeCode, FrameCountsPackIntoTimeCodes)
{
    EXPECT_EQ(FramesToTimeCode(1800, 0), Tc(0, 1, 0, 0));
    EXPECT_EQ(FramesToTimeCode(1800, 2), Tc(0, 1, 12, 0));
    EXPECT_EQ(FramesToTimeCode(0, 2), 0u);
    EXPECT_EQ(FramesToTimeCode(25 * 3661 + 7, 2), Tc(1, 1, 1, 7));
}

TEST(TimeCode, DropFrameCountingAt30Frames)
{
    EXPECT_EQ(TimeCodeToFrames(Tc(0, 0, 59, 29), 0), 1800);
    EXPECT_EQ(TimeCodeToFrames(Tc(0, 1, 0, 2), 0), 1801);
    EXPECT_EQ(TimeCodeToFrames(Tc(0, 10, 0, 0), 0), 17983);
    EXPECT_EQ(TimeCodeToFrames(Tc(0, 10, 0, 0), 1), 17983);
    // 25 frames: nothing is dropped.
    EXPECT_EQ(TimeCodeToFrames(Tc(0, 1, 0, 0), 2), 1501);
}

TEST(TimeCode, TextsForEachStandard)
{
    EXPECT_EQ(TimeText(Tc(0, 12, 5, 3), 1), "00:12:05.03");
    EXPECT_EQ(TimeText(Tc(0, 12, 5, 3), 0), "00:12:05:03");
    EXPECT_EQ(TimeText(Tc(0, 12, 5, 3), 2), "00:12:05:03");
    EXPECT_EQ(TimeText(Tc(3, 1, 2, 3), 0, false), "3:01:02:03");
    EXPECT_EQ(TimeText(Tc(12, 1, 2, 3), 0, false), "12:01:02:03");
    EXPECT_EQ(CountText(108061, 1, false), "1:00:02.01");
    // The bytes are shown as they stand, even when out of range.
    EXPECT_EQ(TimeText(Tc(0, 99, 70, 40), 2), "00:99:70:40");
}

TEST(TimeCode, NoTimeCodeShowsDashes)
{
    EXPECT_EQ(TimeText(0x80000000u, 0), "--:--:--:--");
    EXPECT_EQ(TimeText(0xFF123456u, 2), "--:--:--:--");
    EXPECT_EQ(TimeText(0x7F000000u, 2), "127:00:00:00");
    EXPECT_EQ(CountText(-1, 0), "--:--:--:--");
}

TEST(TimeCode, DurationIsTheDifferenceOfCounts)
{
    char out[TIME_TEXT_SIZE];
    FormatDuration(Tc(0, 0, 59, 29), Tc(0, 1, 0, 2), 0, out, sizeof out);
    EXPECT_STREQ(out, "00:00:00:01");
    FormatDuration(Tc(0, 0, 10, 0), Tc(0, 0, 12, 12), 2, out, sizeof out);
    EXPECT_STREQ(out, "00:00:02:12");
}

TEST(TimeCode, TextNeverOverrunsASmallBuffer)
{
    char out[6];
    std::memset(out, 'x', sizeof out);
    FormatTimeCode(Tc(1, 2, 3, 4), 0, true, out, sizeof out);
    EXPECT_STREQ(out, "01:02");
    FormatFrameCount(-1, 0, true, out, sizeof out);
    EXPECT_STREQ(out, "--:--");
}

TEST(RecordedDate, CompactAndTwoLineForms)
{
    RecordedTime st = {2003, 7, 5, 4, 15, 6, 9, 500};
    EXPECT_EQ(DateText(st, false), "2003/ 7/ 4  15:06:09");
    EXPECT_EQ(DateText(st, true), "2003/ 7/ 4\n 15:06:09");
    RecordedTime dec = {1999, 12, 0, 31, 0, 0, 5, 0};
    EXPECT_EQ(DateText(dec, false), "1999/12/31  00:00:05");
}

TEST(RecordedDate, NoDateWhateverTheTime)
{
    RecordedTime st = {0, 0, 3, 0, 12, 30, 15, 0};
    EXPECT_EQ(DateText(st, false), "No date");
    EXPECT_EQ(DateText(st, true), "No date");
    RecordedTime yearOnly = {2001, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(DateText(yearOnly, false), "2001/ 0/ 0  00:00:00");
}
