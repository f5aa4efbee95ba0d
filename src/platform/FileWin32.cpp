#include "platform/File.h"

#include <windows.h>

namespace qv {

bool File::OpenRead(const char* path)
{
    Close();
    HANDLE h = CreateFileA(path, GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                           FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (h == INVALID_HANDLE_VALUE) return false;
    LARGE_INTEGER size = {};
    GetFileSizeEx(h, &size);
    m_handle = h;
    m_size = size.QuadPart;
    m_pos = 0;
    return true;
}

bool File::Create(const char* path)
{
    Close();
    HANDLE h = CreateFileA(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                           FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (h == INVALID_HANDLE_VALUE) return false;
    m_handle = h;
    m_size = m_pos = 0;
    return true;
}

void File::Close()
{
    Flush();
    if (m_handle) CloseHandle(static_cast<HANDLE>(m_handle));
    m_handle = nullptr;
    m_writeFailed = false;
}

bool File::Read(void* p, uint32_t cb, uint32_t& got)
{
    DWORD n = 0;
    got = 0;
    if (!m_handle || !ReadFile(static_cast<HANDLE>(m_handle), p, cb, &n, nullptr)) return false;
    got = n;
    m_pos += n;
    return true;
}

bool File::WriteDirect(const void* p, uint32_t cb)
{
    DWORD n = 0;
    if (!m_handle || !WriteFile(static_cast<HANDLE>(m_handle), p, cb, &n, nullptr)) return false;
    m_pos += n;
    return n == cb;
}

bool File::Replace(const char* from, const char* to)
{
    return MoveFileExA(from, to, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != FALSE;
}

void File::Delete(const char* path)
{
    DeleteFileA(path);
}

} // namespace qv
