#include "platform/ResourceLib.h"

#include "ResourceIds.h"
#include "platform/BoundedCopy.h"
#include "platform/FormatCheck.h"
#include "session/Session.h"

#include <vector>

namespace qv {
namespace {

// The messages this module added to the host's texts.  A host's own resource
// library may not have them; the user then reads these.
struct BuiltInText {
    UINT id;
    const char* text;
};
const BuiltInText kBuiltInTexts[] = {
    {IDS_TOO_MANY_SCENES,
     "This list cannot be saved: a scene list file holds at most %d scenes.\n\nDelete or merge scenes, then save again."},
    {IDS_CAPTURE_FOLDER_TOO_LONG, "The capture folder is too long: it may have at most %d characters. Nothing was changed."},
    {IDS_CAPTURE_NAME_TOO_LONG, "The capture file name is too long: it may have at most %d characters. Nothing was changed."},
    {IDS_LIBRARY_FOLDER_TOO_LONG, "The library folder is too long: it may have at most %d characters. Nothing was changed."},
    {IDS_SAVE_FAILED, "The scene list could not be saved to %s.\n\nThe file that was there before has been left as it was."},
};

const char* BuiltInTextOf(UINT id)
{
    for (const BuiltInText& t : kBuiltInTexts)
        if (t.id == id) return t.text;
    return nullptr;
}

} // namespace

HINSTANCE GetHostResourceInstance()
{
    return qvCaptureGetNewRCInstanceHandle();
}

int LoadResString(UINT id, char* out, int cb)
{
    if (!out || cb <= 0) return 0;
    out[0] = 0;
    int length = g_hResInst ? LoadStringA(g_hResInst, id, out, cb) : 0;
    if (length > 0) return length;
    const char* builtIn = BuiltInTextOf(id);
    if (!builtIn) return 0;
    CopyBounded(out, static_cast<size_t>(cb), builtIn);
    return static_cast<int>(BoundedLength(out, static_cast<size_t>(cb)));
}

std::string LoadResString(UINT id)
{
    char text[1024];
    LoadResString(id, text, sizeof text);
    return text;
}

namespace {

// The host's text is a format only when it reads exactly the one argument
// passed, of its kind; otherwise the module's own text for the message is
// shown, or the host's text as it stands.
template <class T> std::string FormatWith(UINT id, T arg, const char* kind)
{
    std::string format = LoadResString(id);
    if (!FormatTakes(format.c_str(), kind)) {
        const char* builtIn = BuiltInTextOf(id);
        if (!builtIn) return format;
        format = builtIn;
    }
    std::vector<char> text(format.size() + 1024);
    FormatBounded(text.data(), text.size(), format.c_str(), arg);
    return text.data();
}

} // namespace

std::string FormatResString(UINT id, const char* arg)
{
    return FormatWith(id, arg ? arg : "", "s");
}

std::string FormatResString(UINT id, int arg)
{
    return FormatWith(id, arg, "d");
}

int MessageBoxText(const char* text, UINT type)
{
    return MessageBoxA(g_hPreScanWnd, text ? text : "", g_szMsgTitle, type);
}

int MessageBoxRes(UINT id, UINT type)
{
    return MessageBoxText(LoadResString(id).c_str(), type);
}

} // namespace qv
