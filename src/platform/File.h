// Files read and written block by block, one call per block, with the
// sequential-scan hint.  Portable: a Win32 and a POSIX implementation.
#pragma once

#include <cstdint>

namespace qv {

class File {
public:
    File() = default;
    ~File() { Close(); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    // Opens an existing file for reading, or creates (replaces) one for
    // writing; neither shares the file with other openers.
    bool OpenRead(const char* path);
    bool Create(const char* path);
    bool IsOpen() const { return m_handle != nullptr; }
    void Close();

    // One read call; `got` receives the bytes that arrived.  False only when
    // the call itself failed.
    bool Read(void* p, uint32_t cb, uint32_t& got);
    // True only when every byte was written.
    bool Write(const void* p, uint32_t cb);
    // Bytes between the position and the end (reading), for sanity checks.
    int64_t Remaining() const { return m_size - m_pos; }

    // Replaces `to` with `from` in one step (the old `to`, if any, goes).
    static bool Replace(const char* from, const char* to);
    static void Delete(const char* path);

private:
    void* m_handle = nullptr;
    int64_t m_size = 0;
    int64_t m_pos = 0;
};

} // namespace qv
