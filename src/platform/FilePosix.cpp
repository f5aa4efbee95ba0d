#include "platform/File.h"

#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qv {

namespace {
int Fd(void* h) { return static_cast<int>(reinterpret_cast<intptr_t>(h)) - 1; }
void* Handle(int fd) { return reinterpret_cast<void*>(static_cast<intptr_t>(fd + 1)); }
} // namespace

bool File::OpenRead(const char* path)
{
    Close();
    int fd = ::open(path, O_RDONLY);
    if (fd < 0) return false;
    struct stat st = {};
    fstat(fd, &st);
    m_handle = Handle(fd);
    m_size = st.st_size;
    m_pos = 0;
    return true;
}

bool File::Create(const char* path)
{
    Close();
    int fd = ::open(path, O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd < 0) return false;
    m_handle = Handle(fd);
    m_size = m_pos = 0;
    return true;
}

void File::Close()
{
    Flush();
    if (m_handle) ::close(Fd(m_handle));
    m_handle = nullptr;
    m_writeFailed = false;
}

bool File::Read(void* p, uint32_t cb, uint32_t& got)
{
    got = 0;
    if (!m_handle) return false;
    ssize_t n = ::read(Fd(m_handle), p, cb);
    if (n < 0) return false;
    got = static_cast<uint32_t>(n);
    m_pos += n;
    return true;
}

bool File::WriteDirect(const void* p, uint32_t cb)
{
    if (!m_handle) return false;
    ssize_t n = ::write(Fd(m_handle), p, cb);
    if (n < 0) return false;
    m_pos += n;
    return static_cast<uint32_t>(n) == cb;
}

bool File::Replace(const char* from, const char* to)
{
    return std::rename(from, to) == 0;
}

void File::Delete(const char* path)
{
    ::unlink(path);
}

} // namespace qv
