// Name and folder operations on the user's text, with the messages they show.
#pragma once

// Lead-byte test of the system code page, for the name rules.
bool IsLeadByte(unsigned char c);

// Gives the session's capture name the host's extension (Tape.mpg -> Tape.avi).
void ApplyCaptureExtension();

// Trims blanks in place.  Returns 1 when text remains; 0 when nothing is left,
// after warning the user (string 45555) if bWarn is nonzero.
int TrimSpaces(char* text, int bWarn);

// -1 null, 1 empty, 0 no extension, 2 has an extension; trims `text` in place.
int GetFileNameKind(char* text);

// Results of EnsureFolderExists.
enum {
    FOLDER_NO_ARGUMENT = -1,
    FOLDER_EMPTY_NAME = 3,
    FOLDER_NOT_CREATED = 4,
    FOLDER_READY = 5
};

// Trims the folder (warning when empty), removes a trailing backslash, and
// when it does not exist asks whether to create it.  `path` is changed in place.
int EnsureFolderExists(char* path);
