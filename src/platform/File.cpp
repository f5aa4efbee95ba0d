#include "platform/File.h"

namespace qv {

namespace {
// A scene list is written as three small blocks per scene; one system call
// for each would cost more than the copying, so they go out 64 KiB at a time.
// A larger buffer gains nothing more and costs its fresh pages at every save.
const uint32_t kWriteBuffer = 64u << 10;
} // namespace

bool File::Write(const void* p, uint32_t cb)
{
    if (!m_handle || m_writeFailed) return false;
    if (cb == 0) return true;
    const auto* bytes = static_cast<const uint8_t*>(p);
    if (m_buffer.size() + cb > kWriteBuffer && !Flush()) return false;
    if (cb >= kWriteBuffer) {
        if (WriteDirect(bytes, cb)) return true;
        m_writeFailed = true;
        return false;
    }
    if (m_buffer.capacity() < kWriteBuffer) m_buffer.reserve(kWriteBuffer);
    m_buffer.insert(m_buffer.end(), bytes, bytes + cb);
    return true;
}

bool File::Flush()
{
    if (!m_buffer.empty()) {
        if (!m_handle || !WriteDirect(m_buffer.data(), static_cast<uint32_t>(m_buffer.size()))) m_writeFailed = true;
        m_buffer.clear();
    }
    return !m_writeFailed;
}

} // namespace qv
