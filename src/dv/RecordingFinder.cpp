// Finding the recordings of a tape: where the camcorder's record button was
// pressed, told by the frames' time codes, recording dates and record
// start marks.
#include "dv/DvStream.h"

namespace dv {

namespace {

// Seconds since 1 March of year 0 by the proleptic Gregorian calendar:
// enough to compare two recording times.
int64_t SecondsOf(const RecordedAt& t)
{
    int64_t y = t.year - (t.month <= 2 ? 1 : 0);
    int64_t m = t.month <= 2 ? t.month + 9 : t.month - 3;
    int64_t days = 365 * y + y / 4 - y / 100 + y / 400 + (153 * m + 2) / 5 + t.day - 1;
    return days * 86400 + t.hour * 3600 + t.minute * 60 + t.second;
}

// Frames counted from midnight, as the time code counts them; drop-frame
// time codes skip two frame numbers each minute but every tenth.
int64_t FramesOf(const FrameInfo& f)
{
    int64_t minutes = f.hours * 60 + f.minutes;
    int64_t n = (minutes * 60 + f.seconds) * TimeCodeRate(f.system) + f.frames;
    return f.dropFrame ? n - 2 * (minutes - minutes / 10) : n;
}

int64_t FramesPerDay(const FrameInfo& f)
{
    FrameInfo midnight = f;
    midnight.hours = 24, midnight.minutes = midnight.seconds = midnight.frames = 0;
    return FramesOf(midnight);
}

void TakeTimeCode(FrameInfo& to, const FrameInfo& from)
{
    to.hasTimeCode = true;
    to.dropFrame = from.dropFrame;
    to.hours = from.hours, to.minutes = from.minutes, to.seconds = from.seconds, to.frames = from.frames;
}

} // namespace

bool RecordingFinder::Breaks(const FrameInfo& info) const
{
    if (info.recordingStart) return true;
    if (info.hasDate && info.hasTime && m_lastDated.hasDate) {
        int64_t step = SecondsOf(info.recorded) - SecondsOf(m_lastDated.recorded);
        if (step < 0 || step >= 2) return true;
    }
    if (info.hasTimeCode && m_lastTimed.hasTimeCode) {
        // The time code runs on by one a frame, through midnight; frames
        // without one in between count too.
        if (info.system != m_lastTimed.system || info.dropFrame != m_lastTimed.dropFrame) return true;
        int64_t day = FramesPerDay(info);
        if (day == 0) return false;  // no system, no count to follow
        int64_t expected = (FramesOf(m_lastTimed) + static_cast<int64_t>(m_frames - m_lastTimedFrame)) % day;
        if (FramesOf(info) != expected) return true;
    }
    return false;
}

bool RecordingFinder::Add(const FrameInfo& info)
{
    bool begins = m_recordings.empty() || Breaks(info);
    uint64_t n = m_frames++;
    if (begins) {
        Recording r;
        r.firstFrame = r.lastFrame = r.pictureFrame = n;
        r.first = r.last = info;
        m_recordings.push_back(r);
        m_pictureFound = !info.damaged;
    } else {
        Recording& r = m_recordings.back();
        r.lastFrame = n;
        r.last = info;
        if (!info.hasTimeCode && r.first.hasTimeCode) TakeTimeCode(r.last, m_lastTimed);
        if (!r.first.hasTimeCode && info.hasTimeCode) TakeTimeCode(r.first, info);
        if (!r.first.hasDate && info.hasDate) {
            r.first.hasDate = true;
            r.first.recorded.year = info.recorded.year;
            r.first.recorded.month = info.recorded.month, r.first.recorded.day = info.recorded.day;
        }
        if (!r.first.hasTime && info.hasTime) {
            r.first.hasTime = true;
            r.first.recorded.hour = info.recorded.hour;
            r.first.recorded.minute = info.recorded.minute, r.first.recorded.second = info.recorded.second;
        }
        if (!m_pictureFound && !info.damaged) r.pictureFrame = n, m_pictureFound = true;
    }
    if (info.hasTimeCode) m_lastTimed = info, m_lastTimedFrame = n;
    if (info.hasDate && info.hasTime) m_lastDated = info;
    return begins;
}

} // namespace dv
