// Rules for the names the user types: trimming, the capture file's
// extension, and joining folders with file names.
//
// Portable: no Windows headers.  Text is single-byte text in the system code
// page; where a double-byte code page is in force, the caller passes its
// lead-byte test so that a '.' or '\' byte inside a double-byte character is
// never taken for a separator.
#pragma once

#include <cstddef>

namespace qv {

using LeadByteTest = bool (*)(unsigned char c);

// Kinds of a file name, as GetFileNameKind reports them.
enum FileNameKind {
    FILE_NAME_NULL = -1,
    FILE_NAME_NO_EXTENSION = 0,
    FILE_NAME_EMPTY = 1,
    FILE_NAME_HAS_EXTENSION = 2
};

// Removes leading and then trailing blanks (0x20 only) in place.
// Returns true when text remains.
bool TrimBlanks(char* text);

// Cuts the name at the '.' that ends its first run of non-dot characters
// ("My.Tape.avi" -> "My", ".hidden.avi" -> ".hidden", "Tape" unchanged).
void CutAtFirstExtension(char* name, LeadByteTest isLead = nullptr);

// Gives the capture name the host's extension: the name is cut as above and
// `ext` appended.  An empty name or extension leaves the name unchanged.  When
// the result would not fit in `cb` bytes, the base name is shortened so that
// the extension is always whole (a capture file must carry the host's
// extension).  Returns false when the base name had to be shortened.
bool ApplyExtension(char* name, size_t cb, const char* ext, LeadByteTest isLead = nullptr);

// Trims `text` in place and classifies it: FILE_NAME_EMPTY when nothing is
// left, FILE_NAME_HAS_EXTENSION when a non-empty part follows the first run's
// dot, FILE_NAME_NO_EXTENSION otherwise (no dot, only dots, or a trailing dot).
FileNameKind ClassifyFileName(char* text, LeadByteTest isLead = nullptr);

// True when the last character of `path` is a backslash (not a trail byte).
bool EndsWithBackslash(const char* path, LeadByteTest isLead = nullptr);

// Removes one trailing backslash in place.
void RemoveTrailingBackslash(char* path, LeadByteTest isLead = nullptr);

// out = folder + "\" + name, without doubling a backslash the folder already
// ends in ("D:\" + "x" = "D:\x"; "" + "x" = "\x").  Returns false when cut.
bool JoinFolderAndName(char* out, size_t cb, const char* folder, const char* name,
                       LeadByteTest isLead = nullptr);

// The folder and the file name of a full path (split at its last backslash).
// The name part keeps its extension.  Either output may be null.
void SplitPath(const char* path, char* folder, size_t cbFolder, char* name, size_t cbName,
               LeadByteTest isLead = nullptr);

} // namespace qv
