#include "scenes/TimeCode.h"

#include "platform/BoundedCopy.h"
#include "qvPreScan.h"

namespace qv {

const char kNoTimeText[] = "--:--:--:--";

int GetFrameRate(int nTvStandard)
{
    return nTvStandard == 2 ? 25 : 30;
}

void FramesToTime(int32_t nFrames, int nTvStandard, int& nHours, int& nMinutes, int& nSeconds, int& nFrameNo)
{
    int rate = GetFrameRate(nTvStandard);
    nFrameNo = nFrames % rate;
    int32_t total = nFrames / rate;
    nSeconds = total % 60;
    int32_t minutes = total / 60;
    nMinutes = minutes % 60;
    nHours = minutes / 60;
}

uint32_t FramesToTimeCode(int32_t nFrames, int nTvStandard)
{
    int h, m, s, f;
    FramesToTime(nFrames, nTvStandard, h, m, s, f);
    return ((((static_cast<uint32_t>(h) << 8) | static_cast<uint32_t>(m)) << 8 | static_cast<uint32_t>(s)) << 8) |
           static_cast<uint32_t>(f);
}

int32_t TimeCodeToFrames(uint32_t t, int nTvStandard)
{
    int32_t hours = static_cast<int32_t>((t >> 24) & 0xFF);
    int32_t minutes = static_cast<int32_t>((t >> 16) & 0xFF);
    int32_t seconds = static_cast<int32_t>((t >> 8) & 0xFF);
    int32_t frames = static_cast<int32_t>(t & 0xFF);
    int32_t totalMinutes = hours * 60 + minutes;
    int32_t n = frames + 1 + GetFrameRate(nTvStandard) * (totalMinutes * 60 + seconds);
    if (nTvStandard != 2) n -= 2 * (totalMinutes - totalMinutes / 10);
    return n;
}

namespace {

void FormatParts(int h, int m, int s, int f, int nTvStandard, bool bLongHours, char* out, size_t cb)
{
    const char* fmt;
    if (nTvStandard == 1)
        fmt = bLongHours ? "%02d:%02d:%02d.%02d" : "%01d:%02d:%02d.%02d";
    else
        fmt = bLongHours ? "%02d:%02d:%02d:%02d" : "%01d:%02d:%02d:%02d";
    FormatBounded(out, cb, fmt, h, m, s, f);
}

} // namespace

void FormatFrameCount(int32_t nFrames, int nTvStandard, bool bLongHours, char* out, size_t cb)
{
    if (nFrames < 0) {
        CopyBounded(out, cb, kNoTimeText);
        return;
    }
    int h, m, s, f;
    FramesToTime(nFrames, nTvStandard, h, m, s, f);
    FormatParts(h, m, s, f, nTvStandard, bLongHours, out, cb);
}

void FormatTimeCode(uint32_t t, int nTvStandard, bool bLongHours, char* out, size_t cb)
{
    if (IsNoTimeCode(t)) {
        CopyBounded(out, cb, kNoTimeText);
        return;
    }
    FormatParts(static_cast<int>((t >> 24) & 0xFF), static_cast<int>((t >> 16) & 0xFF),
                static_cast<int>((t >> 8) & 0xFF), static_cast<int>(t & 0xFF), nTvStandard, bLongHours, out, cb);
}

void FormatDuration(uint32_t dwIn, uint32_t dwOut, int nTvStandard, char* out, size_t cb)
{
    FormatFrameCount(TimeCodeToFrames(dwOut, nTvStandard) - TimeCodeToFrames(dwIn, nTvStandard), nTvStandard, true,
                     out, cb);
}

void FormatRecordedDate(const RecordedTime& st, bool bTwoLines, const char* unknownText, char* out, size_t cb)
{
    if (st.wYear == 0 && st.wMonth == 0 && st.wDay == 0) {
        CopyBounded(out, cb, unknownText ? unknownText : "");
        return;
    }
    FormatBounded(out, cb, bTwoLines ? "%4d/%2d/%2d\n %02d:%02d:%02d" : "%4d/%2d/%2d  %02d:%02d:%02d", st.wYear,
                  st.wMonth, st.wDay, st.wHour, st.wMinute, st.wSecond);
}

} // namespace qv
