#include "session/NameRules.h"

#include "platform/BoundedCopy.h"

#include <cstring>

namespace qv {
namespace {

// Steps over one character: two bytes for a lead byte followed by a byte.
inline size_t CharLength(const char* p, LeadByteTest isLead)
{
    if (isLead && isLead(static_cast<unsigned char>(p[0])) && p[1] != 0) return 2;
    return 1;
}

// Offset of the last single-byte character equal to `c`, or -1.
long LastCharOffset(const char* text, char c, LeadByteTest isLead)
{
    long last = -1;
    for (size_t i = 0; text[i]; ) {
        size_t n = CharLength(text + i, isLead);
        if (n == 1 && text[i] == c) last = static_cast<long>(i);
        i += n;
    }
    return last;
}

// Finds the first run of non-dot characters at or after `from`.
// Returns the offset of the run's start (or the string's end) and sets `end`.
size_t FindRun(const char* text, size_t from, size_t& end, LeadByteTest isLead)
{
    size_t i = from;
    while (text[i] == '.') ++i;
    size_t start = i;
    while (text[i] && text[i] != '.') i += CharLength(text + i, isLead);
    end = i;
    return start;
}

} // namespace

bool TrimBlanks(char* text)
{
    if (!text) return false;
    size_t len = std::strlen(text);
    size_t first = 0;
    while (first < len && text[first] == ' ') ++first;
    size_t last = len;
    while (last > first && text[last - 1] == ' ') --last;
    if (first > 0) std::memmove(text, text + first, last - first);
    text[last - first] = 0;
    return text[0] != 0;
}

void CutAtFirstExtension(char* name, LeadByteTest isLead)
{
    if (!name) return;
    size_t end = 0;
    size_t start = FindRun(name, 0, end, isLead);
    if (end > start && name[end] == '.') name[end] = 0;
}

bool ApplyExtension(char* name, size_t cb, const char* ext, LeadByteTest isLead)
{
    if (!name || cb == 0 || !ext || !name[0] || !ext[0]) return true;
    CutAtFirstExtension(name, isLead);
    size_t extLen = std::strlen(ext);
    if (extLen >= cb) return false;  // no room for any base name: leave it as cut
    size_t room = cb - 1 - extLen;
    bool whole = true;
    size_t len = std::strlen(name);
    if (len > room) {
        // Shorten on a character boundary.
        size_t keep = 0;
        for (size_t i = 0; name[i];) {
            size_t n = CharLength(name + i, isLead);
            if (i + n > room) break;
            i += n;
            keep = i;
        }
        name[keep] = 0;
        whole = false;
    }
    AppendBounded(name, cb, ext);
    return whole;
}

FileNameKind ClassifyFileName(char* text, LeadByteTest isLead)
{
    if (!text) return FILE_NAME_NULL;
    if (!TrimBlanks(text)) return FILE_NAME_EMPTY;
    size_t end = 0;
    size_t start = FindRun(text, 0, end, isLead);
    if (end == start) return FILE_NAME_NO_EXTENSION;  // only dots
    size_t end2 = 0;
    size_t start2 = FindRun(text, end, end2, isLead);
    return end2 > start2 ? FILE_NAME_HAS_EXTENSION : FILE_NAME_NO_EXTENSION;
}

bool EndsWithBackslash(const char* path, LeadByteTest isLead)
{
    if (!path || !path[0]) return false;
    long last = LastCharOffset(path, '\\', isLead);
    return last >= 0 && path[last + 1] == 0;
}

void RemoveTrailingBackslash(char* path, LeadByteTest isLead)
{
    if (EndsWithBackslash(path, isLead)) path[std::strlen(path) - 1] = 0;
}

bool JoinFolderAndName(char* out, size_t cb, const char* folder, const char* name, LeadByteTest isLead)
{
    if (!out || cb == 0) return false;
    // Build in a scratch buffer first: `out` may be one of the inputs.
    char buf[1024];
    bool ok = CopyBounded(buf, sizeof buf, folder ? folder : "");
    if (!EndsWithBackslash(buf, isLead)) ok = AppendBounded(buf, sizeof buf, "\\") && ok;
    ok = AppendBounded(buf, sizeof buf, name ? name : "") && ok;
    return CopyBounded(out, cb, buf) && ok;
}

void SplitPath(const char* path, char* folder, size_t cbFolder, char* name, size_t cbName, LeadByteTest isLead)
{
    if (!path) path = "";
    long slash = LastCharOffset(path, '\\', isLead);
    if (folder && cbFolder) {
        size_t n = slash >= 0 ? static_cast<size_t>(slash) + 1 : 0;
        CopyField(folder, cbFolder, path, n);
    }
    if (name && cbName) CopyBounded(name, cbName, path + (slash >= 0 ? slash + 1 : 0));
}

} // namespace qv
