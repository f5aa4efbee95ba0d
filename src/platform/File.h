// Files read block by block, one call per block, with the sequential-scan
// hint; written through a buffer, in large pieces.  Portable: a Win32 and a
// POSIX implementation under the common buffering of File.cpp.
#pragma once

#include <cstdint>
#include <vector>

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
    // Gathers bytes for the file.  False when they cannot be written; a
    // failure may show only at the Flush that follows.
    bool Write(const void* p, uint32_t cb);
    // Writes what was gathered.  True only when every byte written so far
    // reached the file.  Close flushes too, but cannot report a failure.
    bool Flush();
    // Bytes between the position and the end (reading), for sanity checks.
    int64_t Remaining() const { return m_size - m_pos; }

    // Replaces `to` with `from` in one step (the old `to`, if any, goes).
    static bool Replace(const char* from, const char* to);
    static void Delete(const char* path);

private:
    bool WriteDirect(const void* p, uint32_t cb);  // one system call

    void* m_handle = nullptr;
    std::vector<uint8_t> m_buffer;
    bool m_writeFailed = false;
    int64_t m_size = 0;
    int64_t m_pos = 0;
};

} // namespace qv
