// Bounded string copies into fixed-size text fields.
//
// Every fixed field of the module (paths of 260 bytes, the 100-byte capture
// name, the 520-byte comment, the host's request records) is filled through
// these helpers: they never write past the field, always terminate it, and
// report whether the source had to be cut.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstring>

namespace qv {

// Length of a string that may lack its NUL within `cb` bytes.
inline size_t BoundedLength(const char* src, size_t cb)
{
    if (!src) return 0;
    size_t n = 0;
    while (n < cb && src[n]) ++n;  // never looks past the first NUL
    return n;
}

// Copies `src` into `dst` of `cb` bytes; the result is always NUL-terminated.
// A null source gives an empty field.  Returns false when `src` was cut.
inline bool CopyBounded(char* dst, size_t cb, const char* src)
{
    if (!dst || cb == 0) return false;
    if (!src) { dst[0] = 0; return true; }
    size_t n = BoundedLength(src, cb);
    bool fits = n < cb;
    if (!fits) n = cb - 1;
    std::memmove(dst, src, n);
    dst[n] = 0;
    return fits;
}

// As CopyBounded, reading at most `cbSrc` bytes of a source field that may
// have no NUL of its own (a text field of a file or of a host's record).
inline bool CopyField(char* dst, size_t cb, const char* src, size_t cbSrc)
{
    if (!dst || cb == 0) return false;
    size_t n = BoundedLength(src, cbSrc);
    bool fits = n < cb;
    if (!fits) n = cb - 1;
    if (n) std::memmove(dst, src, n);
    dst[n] = 0;
    return fits;
}

// Fills a fixed record field from a string: at most `cb` bytes are copied,
// and the field is terminated only when the text is shorter than the field
// (a text of exactly the field's size fills it with no NUL inside, as the
// host's records and the list file's header define).  Returns false when cut.
inline bool FillField(char* dst, size_t cb, const char* src)
{
    if (!dst || cb == 0) return false;
    size_t n = BoundedLength(src, cb + 1);
    size_t copy = n < cb ? n : cb;
    if (copy) std::memmove(dst, src, copy);
    if (copy < cb) dst[copy] = 0;
    return n <= cb;
}
template <size_t N> bool FillField(char (&dst)[N], const char* src) { return FillField(dst, N, src); }

// Appends `src` to the string in `dst` of `cb` bytes.  Returns false when cut.
inline bool AppendBounded(char* dst, size_t cb, const char* src)
{
    if (!dst || cb == 0) return false;
    size_t used = BoundedLength(dst, cb);
    if (used >= cb) { dst[cb - 1] = 0; return false; }
    return CopyBounded(dst + used, cb - used, src);
}

// printf into a fixed field.  Returns false when the text was cut.
inline bool FormatBounded(char* dst, size_t cb, const char* fmt, ...)
    __attribute__((format(printf, 3, 4)));
inline bool FormatBounded(char* dst, size_t cb, const char* fmt, ...)
{
    if (!dst || cb == 0) return false;
    va_list args;
    va_start(args, fmt);
    int n = std::vsnprintf(dst, cb, fmt, args);
    va_end(args);
    if (n < 0) { dst[0] = 0; return false; }
    return static_cast<size_t>(n) < cb;
}

// Array forms: the field's size comes from its type.
template <size_t N> bool CopyBounded(char (&dst)[N], const char* src) { return CopyBounded(dst, N, src); }
template <size_t N> bool AppendBounded(char (&dst)[N], const char* src) { return AppendBounded(dst, N, src); }
template <size_t N, size_t M> bool CopyField(char (&dst)[N], const char (&src)[M])
{
    return CopyField(dst, N, src, M);
}

} // namespace qv
