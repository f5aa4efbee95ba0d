#include "session/FolderRules.h"

#include "ResourceIds.h"
#include "platform/BoundedCopy.h"
#include "platform/ResourceLib.h"
#include "platform/SupportLib.h"
#include "session/NameRules.h"
#include "session/Session.h"

bool IsLeadByte(unsigned char c)
{
    return IsDBCSLeadByte(c) != FALSE;
}

void ApplyCaptureExtension()
{
    qv::ApplyExtension(g_session.szCaptureName, sizeof g_session.szCaptureName, g_session.szCaptureExt, IsLeadByte);
}

int TrimSpaces(char* text, int bWarn)
{
    if (qv::TrimBlanks(text)) return 1;
    if (bWarn) qv::MessageBoxRes(IDS_NAME_REQUIRED, MB_OK | MB_ICONEXCLAMATION);
    return 0;
}

int GetFileNameKind(char* text)
{
    return qv::ClassifyFileName(text, IsLeadByte);
}

int EnsureFolderExists(char* path)
{
    if (!path) return FOLDER_NO_ARGUMENT;
    if (!TrimSpaces(path, 1)) return FOLDER_EMPTY_NAME;
    qfdDelSlashA(path);
    if (qfdIsDirA(path)) return FOLDER_READY;

    std::string question = qv::FormatResString(IDS_ASK_CREATE_FOLDER, path);
    if (qv::MessageBoxText(question.c_str(), MB_YESNO | MB_ICONEXCLAMATION) != IDYES) return FOLDER_NOT_CREATED;
    if (qfdCreateDirA(path)) return FOLDER_READY;
    qv::MessageBoxRes(IDS_FOLDER_NOT_CREATED, MB_OK);
    return FOLDER_NOT_CREATED;
}
