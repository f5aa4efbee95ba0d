// Small helpers every test uses, native and under Wine alike: packed time
// codes, whole files as bytes, little-endian fields inside them, and fields
// with guard bytes on both sides so that a write past either end shows.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace qvtest {

// A packed time code: hours, minutes, seconds, frames.
inline uint32_t Tc(int h, int m, int s, int f)
{
    return (uint32_t(h) << 24) | (uint32_t(m) << 16) | (uint32_t(s) << 8) | uint32_t(f);
}

inline std::vector<uint8_t> ReadBytes(const std::string& path)
{
    std::ifstream f(path, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(f), std::istreambuf_iterator<char>());
}

inline bool WriteBytes(const std::string& path, const std::vector<uint8_t>& bytes)
{
    FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) return false;
    bool ok = std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
    return std::fclose(f) == 0 && ok;
}

// A 32-bit little-endian field at `offset` of a file's bytes.
inline int32_t Get32(const std::vector<uint8_t>& bytes, size_t offset)
{
    int32_t v = 0;
    if (offset + 4 <= bytes.size()) std::memcpy(&v, &bytes[offset], 4);
    return v;
}
inline void Put32(std::vector<uint8_t>& bytes, size_t offset, int32_t v)
{
    if (offset + 4 <= bytes.size()) std::memcpy(&bytes[offset], &v, 4);
}

// A field of N bytes with guard bytes on both sides.  The field starts
// filled with `fill` (no terminator), so a reader that trusts it to end
// shows too.
template <size_t N> struct Guarded {
    uint8_t before[16];
    char field[N];
    uint8_t after[16];
    explicit Guarded(char fill = 'g')
    {
        std::memset(before, 0xA5, sizeof before);
        std::memset(field, fill, N);
        std::memset(after, 0x5A, sizeof after);
    }
    bool Intact() const
    {
        uint8_t a5[16], x5a[16];
        return !std::memcmp(before, std::memset(a5, 0xA5, 16), 16) && !std::memcmp(after, std::memset(x5a, 0x5A, 16), 16);
    }
    std::string Text() const { return std::string(field, strnlen(field, N)); }
};

} // namespace qvtest
