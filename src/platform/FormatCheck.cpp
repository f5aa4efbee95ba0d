#include "platform/FormatCheck.h"

#include <cstring>

namespace qv {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// The kind of argument a conversion letter reads, or 0 when the module never
// passes one it could read.
char KindOf(char conversion)
{
    if (conversion == 's') return 's';
    if (conversion && std::strchr("diuxXoc", conversion)) return 'd';
    return 0;
}

} // namespace

bool FormatTakes(const char* format, const char* kinds)
{
    if (!format || !kinds) return false;
    const char* next = kinds;
    for (const char* p = format; *p; ++p) {
        if (*p != '%') continue;
        ++p;
        if (*p == '%') continue;
        while (*p && std::strchr("-+ #0", *p)) ++p;
        while (IsDigit(*p)) ++p;
        if (*p == '$') return false;  // a positional argument
        if (*p == '.') {
            ++p;
            while (IsDigit(*p)) ++p;
        }
        char kind = KindOf(*p);
        if (!kind || *next != kind) return false;
        ++next;
    }
    return *next == 0;
}

} // namespace qv
