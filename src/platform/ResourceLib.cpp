#include "platform/ResourceLib.h"

#include "platform/BoundedCopy.h"
#include "session/Session.h"

#include <vector>

namespace qv {

HINSTANCE GetHostResourceInstance()
{
    return qvCaptureGetNewRCInstanceHandle();
}

int LoadResString(UINT id, char* out, int cb)
{
    if (!out || cb <= 0) return 0;
    out[0] = 0;
    if (!g_hResInst) return 0;
    return LoadStringA(g_hResInst, id, out, cb);
}

std::string LoadResString(UINT id)
{
    char text[1024];
    LoadResString(id, text, sizeof text);
    return text;
}

namespace {

template <class T> std::string FormatWith(UINT id, T arg)
{
    std::string format = LoadResString(id);
    std::vector<char> text(format.size() + 1024);
    FormatBounded(text.data(), text.size(), format.c_str(), arg);
    return text.data();
}

} // namespace

std::string FormatResString(UINT id, const char* arg)
{
    return FormatWith(id, arg ? arg : "");
}

std::string FormatResString(UINT id, int arg)
{
    return FormatWith(id, arg);
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
