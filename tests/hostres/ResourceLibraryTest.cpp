// The resource library as a host ships it, loaded the way a host loads it.
// The strings to check are read from ResourceIds.h itself, so a text added
// there and forgotten in the library shows here.  What is checked is what a
// user would see go wrong: a missing text, a format that takes the wrong
// argument, a caption cut off, controls on top of each other, an access key
// that goes nowhere or twice.
#include "ResourceIds.h"

#include <windows.h>
#include <commctrl.h>
#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace {

HINSTANCE Library()
{
    static HINSTANCE lib = LoadLibraryA("qvCaptureRC.dll");
    return lib;
}

std::string Text(UINT id)
{
    char text[2048] = "";
    LoadStringA(Library(), id, text, sizeof text);
    return text;
}

std::string ClassOf(HWND h)
{
    char name[64] = "";
    GetClassNameA(h, name, sizeof name);
    return name;
}

std::string WindowText(HWND h)
{
    char text[512] = "";
    GetWindowTextA(h, text, sizeof text);
    return text;
}

LONG Style(HWND h) { return GetWindowLongA(h, GWL_STYLE); }

// printf conversions in order ("%s%d"); "%%" is none.
std::string Conversions(const std::string& s)
{
    std::string out;
    for (size_t i = 0; i + 1 < s.size(); ++i) {
        if (s[i] != '%') continue;
        for (++i; i < s.size() && std::strchr("-+ #0123456789.l", s[i]);) ++i;
        if (i < s.size() && s[i] != '%') out += std::string("%") + s[i];
    }
    return out;
}

char AccessKey(const std::string& text)
{
    size_t amp = text.find('&');
    if (amp == std::string::npos || amp + 1 >= text.size() || text[amp + 1] == '&') return 0;
    return char(std::tolower(static_cast<unsigned char>(text[amp + 1])));
}

INT_PTR CALLBACK NoOpProc(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

// The pre-scan dialog, the options dialog and the file dialog's extra area
// (a child template), each with its controls in Tab order.
struct Template {
    HWND dlg;
    std::vector<HWND> controls;
};
const std::vector<Template>& Templates()
{
    static std::vector<Template> all = [] {
        INITCOMMONCONTROLSEX icc = {sizeof icc, ICC_LISTVIEW_CLASSES | ICC_BAR_CLASSES | ICC_STANDARD_CLASSES};
        InitCommonControlsEx(&icc);
        HWND host = CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 700, 400, nullptr, nullptr, nullptr, nullptr);
        std::vector<Template> t;
        for (auto [name, parent] : {std::pair{MAKEINTRESOURCEA(IDD_PRESCAN), HWND(nullptr)},
                                    {MAKEINTRESOURCEA(IDD_SCAN_OPTIONS), nullptr}, {IDD_FILEOPENSAVE, host}}) {
            t.push_back({CreateDialogParamA(Library(), name, parent, NoOpProc, 0), {}});
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
    HGDIOBJ old = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageA(control, WM_GETFONT, 0, 0)));
    RECT rc = {0, 0, 0, 0};
    DrawTextA(dc, text.c_str(), -1, &rc, DT_CALCRECT | DT_SINGLELINE);
    SelectObject(dc, old);
    ReleaseDC(control, dc);
    return rc.right;
}

// Room a control leaves for its text, or -1 if it draws none of its own.
int TextRoom(HWND control)
{
    RECT rc;
    GetClientRect(control, &rc);
    std::string cls = ClassOf(control);
    if (cls == "Static") return rc.right;
    if (cls == "ComboBox") return rc.right - GetSystemMetrics(SM_CXVSCROLL) - 4;
    if (cls != "Button") return -1;
    switch (Style(control) & BS_TYPEMASK) {
    case BS_PUSHBUTTON: case BS_DEFPUSHBUTTON: return rc.right - 8;
    case BS_AUTOCHECKBOX: case BS_CHECKBOX: return rc.right - GetSystemMetrics(SM_CXMENUCHECK) - 4;
    case BS_GROUPBOX: return rc.right - 16;
    default: return -1;
    }
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
        ++strings;
        EXPECT_FALSE(text.empty()) << m[1];
        EXPECT_EQ(Conversions(text), Conversions(m[3])) << m[1];
    }
    EXPECT_GT(strings, 40) << "ResourceIds.h was not read";
}

TEST(ResourceLibrary, EveryCaptionAndSwappedTextFits)
{
    ASSERT_TRUE(Templates()[0].dlg && Templates()[1].dlg && Templates()[2].dlg);
    for (const Template& t : Templates())
        for (HWND c : t.controls)
            if (!WindowText(c).empty() && TextRoom(c) >= 0 && ClassOf(c) != "ComboBox")
                EXPECT_LE(TextWidth(c, WindowText(c)), TextRoom(c)) << WindowText(c) << " is cut off";
    // Texts the module puts in at run time, and the tips of the pre-scan dialog.
    HWND dlg = Templates()[0].dlg, markAll = GetDlgItem(dlg, IDC_MARK_ALL), combo = GetDlgItem(dlg, IDC_SCAN_METHOD);
    for (UINT id : {IDS_MARK_ALL, IDS_UNMARK_ALL}) EXPECT_LE(TextWidth(markAll, Text(id)), TextRoom(markAll)) << id;
    for (UINT id : {IDS_SCAN_METHOD_1, IDS_SCAN_METHOD_2, IDS_SCAN_METHOD_3})
        EXPECT_LE(TextWidth(combo, Text(id)), TextRoom(combo)) << id;
    for (HWND c : Templates()[0].controls) {
        int id = GetDlgCtrlID(c);
        if (id > 0 && id != IDC_PREVIEW_VIDEO) EXPECT_TRUE(!Text(id).empty() && Text(id).size() < 256) << "tip " << id;
    }
}

TEST(ResourceLibrary, ControlsStayInsideAndApart)
{
    const std::set<int> pictures = {IDC_VIEW_MODE, IDC_CAPTURE, IDC_PREVIEW, IDC_GOTO, IDC_MERGE_SCENES, IDC_SPLIT_SCENE};
    for (const Template& t : Templates()) {
        RECT client;
        GetClientRect(t.dlg, &client);
        MapWindowPoints(t.dlg, nullptr, reinterpret_cast<POINT*>(&client), 2);
        std::map<int, RECT> placed;
        for (HWND c : t.controls) {
            int id = GetDlgCtrlID(c);
            RECT rc, inside, overlap;
            GetWindowRect(c, &rc);
            // The picture buttons take their bitmap's size at run time, top-left kept.
            if (pictures.count(id)) rc = {rc.left, rc.top, rc.left + (id == IDC_PREVIEW ? 32 : 24), rc.top + 22};
            EXPECT_TRUE(IntersectRect(&inside, &rc, &client) && EqualRect(&inside, &rc)) << id << " leaves its dialog";
            // Split takes merge's place; group boxes hold other controls.
            bool group = ClassOf(c) == "Button" && (Style(c) & BS_TYPEMASK) == BS_GROUPBOX;
            if (!(Style(c) & WS_VISIBLE) || id == IDC_SPLIT_SCENE || group) continue;
            for (const auto& [otherId, other] : placed)
                EXPECT_FALSE(IntersectRect(&overlap, &rc, &other)) << id << " overlaps " << otherId;
            placed[id] = rc;
        }
    }
}

TEST(ResourceLibrary, AccessKeysAreUniqueAndReachAField)
{
    for (const Template& t : Templates()) {
        std::map<char, std::string> keys;
        for (size_t i = 0; i < t.controls.size(); ++i) {
            std::string text = WindowText(t.controls[i]);
            char key = AccessKey(text);
            if (!key) continue;
            EXPECT_TRUE(keys.emplace(key, text).second) << text << " and " << keys[key] << " share Alt+" << key;
            // A label's key moves the focus to the next control, which must take it.
            HWND next = i + 1 < t.controls.size() ? t.controls[i + 1] : nullptr;
            if (ClassOf(t.controls[i]) == "Static")
                EXPECT_TRUE(next && ClassOf(next) != "Static" && (Style(next) & WS_TABSTOP) && (Style(next) & WS_VISIBLE))
                    << text << " leads nowhere";
        }
        EXPECT_FALSE(keys.empty());
    }
    // The mark-all button keeps its key whichever text it shows.
    EXPECT_NE(AccessKey(Text(IDS_MARK_ALL)), 0);
    EXPECT_EQ(AccessKey(Text(IDS_MARK_ALL)), AccessKey(Text(IDS_UNMARK_ALL)));
}
