#include "DvTape.h"

#include <algorithm>
#include <cstdio>

namespace {

// The date and time a camcorder recorded, with its day of the week; all zero
// when the frame carries no date.
SYSTEMTIME RecordedOf(const dv::FrameInfo& f)
{
    SYSTEMTIME st = {};
    if (!f.hasDate) return st;
    st.wYear = f.recorded.year;
    st.wMonth = f.recorded.month;
    st.wDay = f.recorded.day;
    if (f.hasTime) {
        st.wHour = f.recorded.hour;
        st.wMinute = f.recorded.minute;
        st.wSecond = f.recorded.second;
    }
    FILETIME ft;
    if (SystemTimeToFileTime(&st, &ft)) FileTimeToSystemTime(&ft, &st);
    return st;
}

} // namespace

bool DvTape::Open(const std::string& path)
{
    dv::Reader reader;
    if (!reader.Open(path.c_str())) {
        m_error = reader.Error();
        return false;
    }
    m_path = path;
    m_system = reader.StreamSystem();
    dv::RecordingFinder finder;
    dv::FrameInfo frame;
    uint32_t timeCode = 0;
    while (reader.Next(frame)) {
        finder.Add(frame);
        m_offsets.push_back(frame.offset);
        if (frame.hasTimeCode) timeCode = frame.PackedTimeCode();
        m_timeCodes.push_back(timeCode);
    }
    if (m_offsets.empty()) {
        m_error = path + " holds no whole DV frame.";
        return false;
    }
    m_length = static_cast<uint32_t>(m_offsets.size());
    m_head.Open(path.c_str());
    std::vector<uint8_t> bytes;
    for (const dv::Recording& r : finder.Recordings()) {
        TapeScene s = {};
        s.nFirstFrame = static_cast<uint32_t>(r.firstFrame);
        s.nLastFrame = static_cast<uint32_t>(r.lastFrame);
        s.dwTimeCodeIn = r.first.hasTimeCode ? r.first.PackedTimeCode() : m_timeCodes[s.nFirstFrame];
        s.dwTimeCodeOut = r.last.hasTimeCode ? r.last.PackedTimeCode() : m_timeCodes[s.nLastFrame];
        s.stRecorded = RecordedOf(r.first);
        m_scenes.push_back(s);
        dv::Picture picture;
        if (!reader.SeekTo(m_offsets[r.pictureFrame]) || !reader.Next(frame, &bytes) ||
            !dv::DecodePicture(bytes.data(), bytes.size(), picture))
            picture = dv::Picture{};
        m_pictures.push_back(std::move(picture));
    }
    return true;
}

uint32_t DvTape::TimeCodeOf(uint32_t frame) const
{
    return m_timeCodes[std::min<size_t>(frame, m_timeCodes.size() - 1)];
}

uint32_t DvTape::FrameOf(uint32_t timeCode, uint32_t from) const
{
    // Time codes may repeat on a tape (each recording restarting its count):
    // the nearest one ahead of the head is the one a deck would reach first.
    for (size_t i = from; i < m_timeCodes.size(); ++i)
        if (m_timeCodes[i] == timeCode) return static_cast<uint32_t>(i);
    for (size_t i = 0; i < from && i < m_timeCodes.size(); ++i)
        if (m_timeCodes[i] == timeCode) return static_cast<uint32_t>(i);
    return from;
}

uint32_t DvTape::ReadInPassing(uint32_t frame)
{
    std::lock_guard<std::mutex> hold(m_headLock);
    frame = std::min(frame, m_length - 1);
    dv::FrameInfo info;
    if (m_head.SeekTo(m_offsets[frame]) && m_head.Next(info) && info.hasTimeCode) return info.PackedTimeCode();
    return TimeCodeOf(frame);
}

bool DvTape::Thumbnail(int scene, BITMAPINFOHEADER& header, std::vector<uint8_t>& bits) const
{
    const dv::Picture& p = m_pictures[static_cast<size_t>(scene)];
    if (p.width == 0) return false;
    header = BITMAPINFOHEADER{};
    header.biSize = sizeof header;
    header.biWidth = p.width;
    header.biHeight = p.height;
    header.biPlanes = 1;
    header.biBitCount = 24;
    header.biCompression = BI_RGB;
    header.biSizeImage = static_cast<DWORD>(p.bits.size());
    bits = p.bits;
    return true;
}

bool DvTape::Capture(uint32_t first, uint32_t last, const std::string& path) const
{
    dv::Reader reader;
    if (first >= m_length || !reader.Open(m_path.c_str()) || !reader.SeekTo(m_offsets[first])) return false;
    std::FILE* out = std::fopen(path.c_str(), "wb");
    if (!out) return false;
    bool ok = true;
    dv::FrameInfo info;
    std::vector<uint8_t> bytes;
    for (uint32_t f = first; ok && f <= last && f < m_length; ++f)
        ok = reader.Next(info, &bytes) && std::fwrite(bytes.data(), 1, bytes.size(), out) == bytes.size();
    return std::fclose(out) == 0 && ok;
}
