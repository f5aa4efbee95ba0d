// The resource library as a host ships it, loaded the way a host loads it.
// The strings to check are read from ResourceIds.h itself, so a text added
// there and forgotten in the library shows here.  What is checked is what a
// user would see go wrong: a missing text, a format that takes the wrong
// argument, a caption cut off, an access key used twice.
#include "ResourceIds.h"

#include <windows.h>
#include <commctrl.h>
#include <gtest/gtest.h>

#include <cctype>
#include <fstream>
#include <map>
#include <regex>
#include <string>
#include <vector>

namespace {

const HINSTANCE kLibrary = LoadLibraryA("qvCaptureRC.dll");

std::string Text(UINT id)
{
    char text[2048] = "";
    return LoadStringA(kLibrary, id, text, sizeof text) ? text : "";
}

std::string ClassOf(HWND h)
{
    char name[64] = "";
    return GetClassNameA(h, name, sizeof name) ? name : "";
}

std::string WindowText(HWND h)
{
    char text[512] = "";
    return GetWindowTextA(h, text, sizeof text) ? text : "";
}

// printf conversions in order ("%s%d"); "%%" is none.
std::string Conversions(const std::string& s)
{
    std::string out;
    const std::regex conversion("%[-+ #0-9.l]*([a-zA-Z%])");
    for (std::sregex_iterator i(s.begin(), s.end(), conversion), end; i != end; ++i)
        if ((*i)[1] != "%") out += "%" + (*i)[1].str();
    return out;
}

char AccessKey(const std::string& text)
{
    size_t amp = text.find('&');
    if (amp == std::string::npos || amp + 1 >= text.size() || text[amp + 1] == '&') return 0;
    return char(std::tolower(static_cast<unsigned char>(text[amp + 1])));
}

// The pre-scan dialog, the options dialog and the file dialog's extra area
// (a child template), each with its controls in Tab order.
struct Template { HWND dlg; std::vector<HWND> controls; };
const std::vector<Template>& Templates()
{
    static std::vector<Template> all = [] {
        INITCOMMONCONTROLSEX icc = {sizeof icc, ICC_LISTVIEW_CLASSES | ICC_BAR_CLASSES | ICC_STANDARD_CLASSES};
        InitCommonControlsEx(&icc);
        HWND host = CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 700, 400, nullptr, nullptr, nullptr, nullptr);
        std::vector<Template> t;
        auto noOp = [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; };
        for (auto [name, parent] : {std::pair<LPCSTR, HWND>{MAKEINTRESOURCEA(IDD_PRESCAN), nullptr},
                                    {MAKEINTRESOURCEA(IDD_SCAN_OPTIONS), nullptr}, {IDD_FILEOPENSAVE, host}}) {
            t.push_back({CreateDialogParamA(kLibrary, name, parent, noOp, 0), {}});
            for (HWND c = GetWindow(t.back().dlg, GW_CHILD); c; c = GetWindow(c, GW_HWNDNEXT)) t.back().controls.push_back(c);
        }
        return t;
    }();
    return all;
}

// Width in pixels of a text in the control's font.
int TextWidth(HWND control, const std::string& text)
{
    HDC dc = GetDC(control);
    SelectObject(dc, reinterpret_cast<HFONT>(SendMessageA(control, WM_GETFONT, 0, 0)));
    RECT rc = {0, 0, 0, 0};
    DrawTextA(dc, text.c_str(), -1, &rc, DT_CALCRECT | DT_SINGLELINE);
    ReleaseDC(control, dc);
    return rc.right;
}

// Room a control leaves for its text (beside a check box's box, a list's
// arrow), or -1 if it draws none of its own.
int TextRoom(HWND c)
{
    RECT rc;
    GetClientRect(c, &rc);
    LONG type = GetWindowLongA(c, GWL_STYLE) & BS_TYPEMASK;
    if (ClassOf(c) == "Static") return rc.right;
    if (ClassOf(c) == "ComboBox") return rc.right - GetSystemMetrics(SM_CXVSCROLL) - 4;
    if (ClassOf(c) != "Button" || type == BS_OWNERDRAW) return -1;
    return rc.right - (type <= BS_DEFPUSHBUTTON ? 8 : type == BS_GROUPBOX ? 16 : GetSystemMetrics(SM_CXMENUCHECK) + 4);
}

} // namespace

// Each IDS_ of the header has a text, with the conversions its comment says
// the module passes ("/* %s = the folder */") and no others.
TEST(ResourceLibrary, EveryTextIsThereWithTheArgumentsItIsGiven)
{
    std::ifstream header(QV_RESOURCE_IDS_PATH);
    std::regex define(R"(#define\s+(IDS_\w+)\s+(\d+)\s*(/\*.*)?)");
    std::smatch m;
    int strings = 0;
    for (std::string line; std::getline(header, line);) {
        if (!std::regex_search(line, m, define)) continue;
        std::string text = Text(UINT(std::stoul(m[2])));
        EXPECT_FALSE(text.empty()) << m[1];
        ++strings;
        EXPECT_EQ(Conversions(text), Conversions(m[3])) << m[1];
    }
    EXPECT_GT(strings, 40) << "ResourceIds.h was not read";
}

// Every caption fits its control, every control of the pre-scan dialog has
// a tip, and no two captions of a dialog share an access key.
TEST(ResourceLibrary, CaptionsFitAndAccessKeysAreUnique)
{
    for (const Template& t : Templates()) {
        ASSERT_TRUE(t.dlg);
        std::map<char, std::string> keys;
        for (HWND c : t.controls) {
            int id = GetDlgCtrlID(c);
            std::string text = WindowText(c);
            if (!text.empty() && TextRoom(c) >= 0) EXPECT_LE(TextWidth(c, text), TextRoom(c)) << text << " is cut off";
            if (t.dlg == Templates()[0].dlg && id > 0 && id != IDC_PREVIEW_VIDEO)
                EXPECT_TRUE(!Text(id).empty() && Text(id).size() < 256) << "tip " << id;
            if (char key = AccessKey(text)) EXPECT_TRUE(keys.emplace(key, text).second) << text << " and " << keys[key];
        }
    }
}
