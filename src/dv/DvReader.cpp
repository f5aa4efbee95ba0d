// Reading a DV stream frame by frame: buffering, finding each frame's
// header block, and picking up the thread again after damage.
#include "dv/DvLayout.h"

#include <algorithm>
#include <cstring>

namespace dv {

namespace {

using namespace layout;

// How far into a stream its first frame may start before it is refused
// (a tape's first frame may follow a little noise, never megabytes).
constexpr size_t LOOK_AHEAD = 1 << 20;
// The file is read in pieces of this size.
constexpr size_t CHUNK = 4 << 20;

bool Seek64(std::FILE* file, uint64_t offset)
{
#ifdef _WIN32
    return _fseeki64(file, static_cast<long long>(offset), SEEK_SET) == 0;
#else
    return fseeko(file, static_cast<off_t>(offset), SEEK_SET) == 0;
#endif
}

} // namespace

Reader::~Reader()
{
    Close();
}

void Reader::Close()
{
    if (m_file) std::fclose(m_file);
    m_file = nullptr;
    m_memory = nullptr;
    m_start = m_end = 0;
    m_offset = 0;
    m_atEnd = false;
    m_system = System::Unknown;
    m_error.clear();
}

bool Reader::Refuse(const char* name, const char* why)
{
    std::string error = std::string(name) + " " + why;
    Close();
    m_error = error;
    return false;
}

bool Reader::Open(const char* path)
{
    Close();
    m_file = std::fopen(path, "rb");
    if (!m_file) return Refuse(path, "cannot be opened");
    m_buffer.resize(CHUNK + FrameBytes(System::Pal625));
    return Start(path);
}

bool Reader::OpenMemory(const uint8_t* data, size_t size)
{
    Close();
    m_memory = data;
    m_end = size;
    return Start("The stream");
}

bool Reader::Start(const char* name)
{
    size_t available = Fill(LOOK_AHEAD), searched = std::min(available, LOOK_AHEAD);
    for (size_t i = 0; i + START_BYTES <= searched; ++i) {
        if (IsFrameStart(Here() + i, available - i)) {
            m_system = SystemOf(Here() + i);
            return true;
        }
    }
    if (available == 0) return Refuse(name, "is not a DV stream: it is empty");
    std::string why = "is not a DV stream: no DIF header block in its " +
                      std::string(searched < LOOK_AHEAD ? "" : "first ") + std::to_string(searched) + " bytes";
    return Refuse(name, why.c_str());
}

size_t Reader::Fill(size_t want)
{
    if (m_file && m_end - m_start < want && !m_atEnd) {
        // Keep the unread bytes, moved to the front, and read behind them.
        std::memmove(m_buffer.data(), m_buffer.data() + m_start, m_end - m_start);
        m_offset += m_start;
        m_end -= m_start;
        m_start = 0;
        if (m_buffer.size() < want) m_buffer.resize(want);
        while (m_end < want && !m_atEnd) {
            size_t got = std::fread(m_buffer.data() + m_end, 1, m_buffer.size() - m_end, m_file);
            m_end += got;
            if (got == 0) m_atEnd = true;
        }
    }
    return m_end - m_start;
}

bool Reader::FindHeader()
{
    for (;;) {
        size_t available = Fill(START_BYTES);
        if (available < START_BYTES) return false;
        const uint8_t* p = Here();
        size_t last = available - START_BYTES;
        for (size_t i = 0; i <= last; ++i) {
            if ((p[i] & 0xF0) == 0x10 && p[i + 2] == 0 && IsFrameStart(p + i, available - i)) {
                m_start += i;
                return true;
            }
        }
        // Noise: skip it, keeping a tail that may begin the next header.
        m_start += last + 1;
    }
}

bool Reader::Next(FrameInfo& info, std::vector<uint8_t>* bytes)
{
    if ((!m_file && !m_memory) || !FindHeader()) return false;
    size_t frameBytes = FrameBytes(SystemOf(Here()));
    // The frame and the start of the next one, to see where this one ends.
    size_t available = Fill(frameBytes + START_BYTES);
    const uint8_t* p = Here();
    size_t size = std::min(available, frameBytes);
    size_t inPlace = BlocksInPlace(p, size, SystemOf(p)) * BLOCK_BYTES;
    if (inPlace < size) {
        // A block out of place: the frame may have been cut short, with the
        // next frame's header block somewhere in what follows.
        // The last block in place may itself have been cut after its ID.
        for (size_t i = std::max<size_t>(inPlace, 2 * BLOCK_BYTES) - BLOCK_BYTES + 1; i < size; ++i) {
            if (IsFrameStart(p + i, available - i)) {
                size = i;
                break;
            }
        }
    }
    info = Describe(p, size, std::min(inPlace, size) / BLOCK_BYTES);
    info.offset = m_offset + m_start;
    if (bytes) bytes->assign(p, p + size);
    m_start += size;
    return true;
}

bool Reader::SeekTo(uint64_t offset)
{
    if (m_memory) {
        if (offset > m_end) return false;
        m_start = static_cast<size_t>(offset);
        return true;
    }
    if (!m_file || !Seek64(m_file, offset)) return false;
    m_offset = offset;
    m_start = m_end = 0;
    m_atEnd = false;
    return true;
}

} // namespace dv
