// The resource library as a host ships it, loaded the way a host loads it:
// every text the module shows, the three dialog templates with every control
// the module binds, how they look and how they work from the keyboard, and
// the go-to menu.
#include "ResourceIds.h"
#include "qvPreScan.h"

#include <windows.h>
#include <commctrl.h>
#include <gtest/gtest.h>

#include <cctype>
#include <map>
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

int Count(const std::string& s, const std::string& what)
{
    int n = 0;
    for (size_t at = s.find(what); at != std::string::npos; at = s.find(what, at + 1)) ++n;
    return n;
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

LONG Style(HWND h)
{
    return GetWindowLongA(h, GWL_STYLE);
}

bool IsGroupBox(HWND h)
{
    return ClassOf(h) == "Button" && (Style(h) & BS_TYPEMASK) == BS_GROUPBOX;
}

INT_PTR CALLBACK NoOpProc(HWND, UINT, WPARAM, LPARAM)
{
    return FALSE;
}

std::vector<HWND> Children(HWND dlg)
{
    std::vector<HWND> all;
    for (HWND c = GetWindow(dlg, GW_CHILD); c; c = GetWindow(c, GW_HWNDNEXT)) all.push_back(c);
    return all;
}

const UINT kStrings[] = {
    IDS_LIST_FILE_FILTER, IDS_EMPTY_LIST, IDS_SCAN_METHOD_1, IDS_SCAN_METHOD_2, IDS_SCAN_METHOD_3,
    IDS_DEFAULT_LIST_NAME, IDS_DEFAULT_CAPTURE_NAME, IDS_DEFAULT_LIBRARY_FOLDER, IDS_OPEN_LIST_TITLE,
    IDS_SAVE_LIST_TITLE, IDS_UNKNOWN_DATE, IDS_STATE_SCANNING, IDS_STATE_CAPTURING, IDS_STATE_PREVIEW,
    IDS_STATE_SEEKING, IDS_STATE_SCAN_CAPTURE, IDS_STATE_CLOSING, IDS_COL_THUMBNAIL, IDS_COL_IN, IDS_COL_OUT,
    IDS_COL_TIMES, IDS_COL_COMMENT, IDS_COL_DATE, IDS_COL_FILES, IDS_CAPTURED_FILE_PREFIX, IDS_SCENE_FILE_PREFIX,
    IDS_MODULE_TITLE, IDS_UNMARK_ALL, IDS_MARK_ALL, IDS_BROWSE_FAILED, IDS_ASK_CREATE_FOLDER,
    IDS_FOLDER_NOT_CREATED, IDS_ASK_SAVE_CHANGES, IDS_ASK_DELETE_SCENES, IDS_NAME_REQUIRED, IDS_ASK_KEEP_LIST,
    IDS_DEVICE_NOT_READY, IDS_DEVICE_REASON_0, IDS_DEVICE_REASON_1, IDS_DEVICE_REASON_2, IDS_DEVICE_REASON_3,
    IDS_DEVICE_REASON_4, IDS_DEVICE_REASON_5, IDS_DEVICE_REASON_6, IDS_DEVICE_REASON_7, IDS_TOO_MANY_SCENES,
    IDS_CAPTURE_FOLDER_TOO_LONG, IDS_CAPTURE_NAME_TOO_LONG, IDS_LIBRARY_FOLDER_TOO_LONG, IDS_SAVE_FAILED};

const int kPreScanControls[] = {
    IDC_TAPE_DESCRIPTION, IDC_START_SCAN, IDC_GOTO, IDC_MARK_ALL, IDC_SPLIT_SCENE, IDC_MERGE_SCENES,
    IDC_SCAN_OPTIONS, IDC_SCENE_LIST, IDC_OPEN_LIST, IDC_SAVE_LIST, IDC_TAPE_NAME, IDC_SCAN_METHOD,
    IDC_VIEW_MODE, IDC_CAPTURE, IDC_PREVIEW, IDC_DELETE_SCENES, IDC_CLEAR_ALL, IDC_CLOSE_PRESCAN, IDC_HELP_PRESCAN};

const int kPictureButtons[] = {IDC_VIEW_MODE, IDC_CAPTURE, IDC_PREVIEW, IDC_GOTO, IDC_MERGE_SCENES, IDC_SPLIT_SCENE};

bool IsFileName(const std::string& name)
{
    return !name.empty() && name.find_first_of("\\/:*?\"<>|") == std::string::npos && name.back() != ' ' &&
           name.back() != '.';
}

} // namespace

TEST(ResourceLibraryExport, HandsOutItsOwnInstance)
{
    ASSERT_NE(Library(), nullptr);
    auto get = reinterpret_cast<HINSTANCE (*)()>(GetProcAddress(Library(), "qvCaptureGetNewRCInstanceHandle"));
    ASSERT_NE(get, nullptr);
    EXPECT_EQ(get(), Library());
}

// ---- Texts -------------------------------------------------------------------

TEST(ResourceLibraryTexts, EveryTextAndToolTipIsThere)
{
    for (UINT id : kStrings) EXPECT_FALSE(Text(id).empty()) << "string " << id;
    // The dialog's tips are read into a 256-byte buffer.
    for (int id : kPreScanControls) {
        std::string tip = Text(static_cast<UINT>(id));
        EXPECT_FALSE(tip.empty()) << "tool tip " << id;
        EXPECT_LT(tip.size(), 256u) << "tool tip " << id;
    }
    EXPECT_TRUE(Text(IDC_PREVIEW_VIDEO).empty()) << "the video surface has no tip";
}

TEST(ResourceLibraryTexts, FormatsTakeExactlyTheirArguments)
{
    const std::map<UINT, std::string> formats = {
        {IDS_ASK_CREATE_FOLDER, "%s"},       {IDS_SAVE_FAILED, "%s"},
        {IDS_TOO_MANY_SCENES, "%d"},         {IDS_CAPTURE_FOLDER_TOO_LONG, "%d"},
        {IDS_CAPTURE_NAME_TOO_LONG, "%d"},   {IDS_LIBRARY_FOLDER_TOO_LONG, "%d"}};
    for (UINT id : kStrings) {
        auto format = formats.find(id);
        if (format == formats.end()) {
            EXPECT_EQ(Count(Text(id), "%"), 0) << "string " << id << " is shown as it stands";
        } else {
            EXPECT_EQ(Count(Text(id), "%"), 1) << id;
            EXPECT_EQ(Count(Text(id), format->second), 1) << id;
        }
    }
}

TEST(ResourceLibraryTexts, FilterIsPairsOfDescriptionAndPattern)
{
    std::string filter = Text(IDS_LIST_FILE_FILTER);
    // The module reads it into 258 bytes, terminator included.
    ASSERT_LT(filter.size(), 258u);
    ASSERT_EQ(filter.back(), '|');
    std::vector<std::string> parts;
    size_t start = 0;
    for (size_t bar = filter.find('|'); bar != std::string::npos; bar = filter.find('|', start)) {
        parts.push_back(filter.substr(start, bar - start));
        start = bar + 1;
    }
    ASSERT_EQ(parts.size() % 2, 0u);
    for (const auto& p : parts) EXPECT_FALSE(p.empty());
    EXPECT_EQ(parts[1], "*.psf");
}

TEST(ResourceLibraryTexts, NamesAndFoldersWorkOnDisk)
{
    // The title ends the default capture folder and fills a 50-byte field.
    std::string title = Text(IDS_MODULE_TITLE);
    EXPECT_LE(title.size(), 49u);
    EXPECT_TRUE(IsFileName(title)) << title;
    EXPECT_TRUE(IsFileName(Text(IDS_DEFAULT_LIST_NAME)));
    EXPECT_TRUE(IsFileName(Text(IDS_DEFAULT_CAPTURE_NAME)));
    EXPECT_LT(Text(IDS_DEFAULT_CAPTURE_NAME).size(), static_cast<size_t>(QV_CAPTURE_NAME_SIZE));
    // A full path: a lost backslash would make it relative to the drive.
    std::string library = Text(IDS_DEFAULT_LIBRARY_FOLDER);
    ASSERT_GT(library.size(), 3u);
    EXPECT_TRUE(std::isalpha(static_cast<unsigned char>(library[0])) && library.compare(1, 2, ":\\") == 0) << library;
    EXPECT_EQ(library.find_first_of("/:*?\"<>|", 2), std::string::npos) << library;
    EXPECT_LT(library.size(), static_cast<size_t>(QV_MAX_PATH));
}

TEST(ResourceLibraryTexts, PiecesJoinIntoReadableLines)
{
    // "<state><closing>" in the title bar, "<heading>- <reason>" in the message box.
    std::string closing = Text(IDS_STATE_CLOSING);
    EXPECT_EQ(closing.front(), ' ');
    EXPECT_EQ(Text(IDS_DEVICE_NOT_READY).back(), '\n');
    std::set<std::string> reasons;
    for (UINT id = IDS_DEVICE_REASON_0; id <= IDS_DEVICE_REASON_7; ++id) reasons.insert(Text(id));
    EXPECT_EQ(reasons.size(), 8u) << "each device flag has its own reason";
    for (UINT id : {IDS_CAPTURED_FILE_PREFIX, IDS_SCENE_FILE_PREFIX}) EXPECT_EQ(Text(id).back(), ' ') << id;
}

// ---- Dialog templates --------------------------------------------------------

class Templates : public ::testing::Test {
protected:
    void SetUp() override
    {
        INITCOMMONCONTROLSEX icc = {sizeof icc, ICC_LISTVIEW_CLASSES | ICC_BAR_CLASSES | ICC_STANDARD_CLASSES};
        InitCommonControlsEx(&icc);
        ASSERT_NE(Library(), nullptr);
        preScan = CreateDialogParamA(Library(), MAKEINTRESOURCEA(IDD_PRESCAN), nullptr, NoOpProc, 0);
        options = CreateDialogParamA(Library(), MAKEINTRESOURCEA(IDD_SCAN_OPTIONS), nullptr, NoOpProc, 0);
        // The file dialog's extra area is a child template.
        fileHost = CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 700, 400, nullptr, nullptr, nullptr, nullptr);
        fileArea = CreateDialogParamA(Library(), IDD_FILEOPENSAVE, fileHost, NoOpProc, 0);
        ASSERT_NE(preScan, nullptr);
        ASSERT_NE(options, nullptr);
        ASSERT_NE(fileArea, nullptr);
    }
    void TearDown() override
    {
        for (HWND h : {preScan, options, fileHost})
            if (h) DestroyWindow(h);
    }
    std::vector<HWND> All() const { return {preScan, options, fileArea}; }
    HWND Item(HWND dlg, int id) const { return GetDlgItem(dlg, id); }

    void ExpectControls(HWND dlg, const std::map<int, std::string>& controls)
    {
        for (const auto& [id, cls] : controls) {
            HWND item = GetDlgItem(dlg, id);
            ASSERT_NE(item, nullptr) << "control " << id;
            EXPECT_EQ(ClassOf(item), cls) << "control " << id;
            EXPECT_TRUE(Style(item) & WS_TABSTOP) << "control " << id << " is out of the Tab order";
        }
    }

    HWND preScan = nullptr, options = nullptr, fileHost = nullptr, fileArea = nullptr;
};

// Width in pixels of a text in the control's font, mnemonic marks left out.
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
    case BS_PUSHBUTTON:
    case BS_DEFPUSHBUTTON: return rc.right - 8;
    case BS_AUTOCHECKBOX:
    case BS_CHECKBOX: return rc.right - GetSystemMetrics(SM_CXMENUCHECK) - 4;
    case BS_GROUPBOX: return rc.right - 16;
    default: return -1;
    }
}

TEST_F(Templates, PreScanHasEveryControlWithItsKeyStyles)
{
    ExpectControls(preScan, {{IDC_TAPE_DESCRIPTION, "Edit"}, {IDC_START_SCAN, "Button"}, {IDC_GOTO, "Button"},
                             {IDC_MARK_ALL, "Button"}, {IDC_SPLIT_SCENE, "Button"}, {IDC_MERGE_SCENES, "Button"},
                             {IDC_SCAN_OPTIONS, "Button"}, {IDC_SCENE_LIST, "SysListView32"},
                             {IDC_OPEN_LIST, "Button"}, {IDC_SAVE_LIST, "Button"}, {IDC_TAPE_NAME, "Edit"},
                             {IDC_SCAN_METHOD, "ComboBox"}, {IDC_VIEW_MODE, "Button"}, {IDC_CAPTURE, "Button"},
                             {IDC_PREVIEW, "Button"}, {IDC_DELETE_SCENES, "Button"}, {IDC_CLEAR_ALL, "Button"},
                             {IDC_CLOSE_PRESCAN, "Button"}, {IDC_HELP_PRESCAN, "Button"}});
    HWND video = Item(preScan, IDC_PREVIEW_VIDEO);
    ASSERT_NE(video, nullptr);
    EXPECT_EQ(ClassOf(video), "Static");
    EXPECT_FALSE(Style(video) & WS_VISIBLE);
    EXPECT_FALSE(Style(preScan) & WS_VISIBLE) << "the module shows the dialog itself";

    // Ranges are selected and cells are drawn by the module.
    LONG list = Style(Item(preScan, IDC_SCENE_LIST));
    EXPECT_EQ(list & LVS_TYPEMASK, LVS_REPORT);
    EXPECT_FALSE(list & LVS_SINGLESEL);
    EXPECT_FALSE(list & LVS_OWNERDRAWFIXED);
    for (int id : kPictureButtons) EXPECT_EQ(Style(Item(preScan, id)) & BS_TYPEMASK, BS_OWNERDRAW) << id;
    EXPECT_EQ(Style(Item(preScan, IDC_TAPE_NAME)) & ES_AUTOHSCROLL, ES_AUTOHSCROLL);

    // The method list drops down far enough to show all three methods.
    HWND combo = Item(preScan, IDC_SCAN_METHOD);
    EXPECT_EQ(Style(combo) & 3, CBS_DROPDOWNLIST);
    RECT closed, dropped;
    GetWindowRect(combo, &closed);
    SendMessageA(combo, CB_GETDROPPEDCONTROLRECT, 0, reinterpret_cast<LPARAM>(&dropped));
    LRESULT itemHeight = SendMessageA(combo, CB_GETITEMHEIGHT, 0, 0);
    EXPECT_GE(dropped.bottom - dropped.top, (closed.bottom - closed.top) + 3 * itemHeight);

    // The button's caption and both texts the module swaps in agree and fit.
    HWND markAll = Item(preScan, IDC_MARK_ALL);
    EXPECT_EQ(WindowText(markAll), Text(IDS_MARK_ALL));
    for (UINT id : {IDS_MARK_ALL, IDS_UNMARK_ALL}) EXPECT_LE(TextWidth(markAll, Text(id)), TextRoom(markAll)) << id;
    for (UINT id : {IDS_SCAN_METHOD_1, IDS_SCAN_METHOD_2, IDS_SCAN_METHOD_3})
        EXPECT_LE(TextWidth(combo, Text(id)), TextRoom(combo)) << id;

    // Every control a user can point at explains itself.
    for (HWND c : Children(preScan)) {
        int id = GetDlgCtrlID(c);
        if (id > 0 && id != IDC_PREVIEW_VIDEO) EXPECT_FALSE(Text(static_cast<UINT>(id)).empty()) << "tip for " << id;
    }
}

TEST_F(Templates, OptionsAndFileAreaHaveEveryControl)
{
    ExpectControls(options, {{IDC_CAPTURE_FOLDER, "Edit"}, {IDC_CAPTURE_NAME, "Edit"}, {IDC_LIBRARY_FOLDER, "Edit"},
                             {IDC_BROWSE_CAPTURE_FOLDER, "Button"}, {IDC_SAVE_TO_LIBRARY, "Button"},
                             {IDC_CHOOSE_LIBRARY, "Button"}, {IDC_WANT_INDEX_FILE, "Button"},
                             {IDC_QUICK_SCAN, "Button"}, {IDC_QUICK_SCAN_SPEED, "msctls_trackbar32"},
                             {IDC_HELP_OPTIONS, "Button"}, {IDOK, "Button"}, {IDCANCEL, "Button"}});
    for (int id : {IDC_SAVE_TO_LIBRARY, IDC_WANT_INDEX_FILE, IDC_QUICK_SCAN})
        EXPECT_EQ(Style(Item(options, id)) & BS_TYPEMASK, BS_AUTOCHECKBOX) << id;
    EXPECT_EQ(LOWORD(SendMessageA(options, DM_GETDEFID, 0, 0)), IDOK);
    EXPECT_TRUE(Style(Item(options, IDC_QUICK_SCAN_SPEED)) & TBS_AUTOTICKS);
    // Long paths scroll instead of stopping at the edge.
    for (int id : {IDC_CAPTURE_FOLDER, IDC_CAPTURE_NAME, IDC_LIBRARY_FOLDER})
        EXPECT_EQ(Style(Item(options, id)) & ES_AUTOHSCROLL, ES_AUTOHSCROLL) << id;

    EXPECT_TRUE(Style(fileArea) & WS_CHILD);
    EXPECT_EQ(GetParent(fileArea), fileHost);
    ExpectControls(fileArea, {{IDC_PSF_TAPE_NAME, "Edit"}, {IDC_PSF_TAPE_DESCRIPTION, "Edit"}, {IDC_PSF_HELP, "Button"}});
    // Enter in the description starts a line instead of closing the file dialog.
    LONG description = Style(Item(fileArea, IDC_PSF_TAPE_DESCRIPTION));
    EXPECT_EQ(description & (ES_MULTILINE | ES_WANTRETURN), ES_MULTILINE | ES_WANTRETURN);
}

TEST_F(Templates, ControlsStayInsideAndApart)
{
    for (HWND dlg : All()) {
        RECT client;
        GetClientRect(dlg, &client);
        MapWindowPoints(dlg, nullptr, reinterpret_cast<POINT*>(&client), 2);
        std::vector<std::pair<int, RECT>> placed;
        for (HWND c : Children(dlg)) {
            int id = GetDlgCtrlID(c);
            RECT rc;
            GetWindowRect(c, &rc);
            // The picture buttons take their bitmap's size at run time, top-left kept.
            for (int picture : kPictureButtons)
                if (id == picture) {
                    rc.right = rc.left + (id == IDC_PREVIEW ? 32 : 24);
                    rc.bottom = rc.top + 22;
                }
            RECT inside;
            EXPECT_TRUE(IntersectRect(&inside, &rc, &client) && EqualRect(&inside, &rc))
                << "control " << id << " leaves its dialog";
            // Split takes merge's place; group boxes hold other controls.
            if (!(Style(c) & WS_VISIBLE) || id == IDC_SPLIT_SCENE || IsGroupBox(c)) continue;
            for (const auto& [otherId, other] : placed) {
                RECT overlap;
                EXPECT_FALSE(IntersectRect(&overlap, &rc, &other)) << id << " overlaps " << otherId;
            }
            placed.push_back({id, rc});
        }
    }
    RECT merge, split;
    GetWindowRect(Item(preScan, IDC_MERGE_SCENES), &merge);
    GetWindowRect(Item(preScan, IDC_SPLIT_SCENE), &split);
    EXPECT_TRUE(EqualRect(&merge, &split));
}

TEST_F(Templates, EveryCaptionFitsItsControl)
{
    for (HWND dlg : All())
        for (HWND c : Children(dlg)) {
            std::string text = WindowText(c);
            int room = TextRoom(c);
            if (text.empty() || room < 0 || ClassOf(c) == "ComboBox") continue;
            EXPECT_LE(TextWidth(c, text), room) << "\"" << text << "\" is cut off";
        }
}

TEST_F(Templates, KeyboardReachesEveryField)
{
    const std::map<HWND, std::map<std::string, int>> labels = {
        {preScan, {{"Tape name:", IDC_TAPE_NAME}, {"Scan method:", IDC_SCAN_METHOD},
                   {"Description:", IDC_TAPE_DESCRIPTION}}},
        {options, {{"Folder:", IDC_CAPTURE_FOLDER}, {"File name:", IDC_CAPTURE_NAME},
                   {"Library:", IDC_LIBRARY_FOLDER}}},
        {fileArea, {{"Tape name:", IDC_PSF_TAPE_NAME}, {"Description:", IDC_PSF_TAPE_DESCRIPTION}}}};
    for (const auto& [dlg, expected] : labels) {
        std::map<std::string, int> found;
        std::map<char, std::string> keys;
        std::vector<HWND> children = Children(dlg);
        for (size_t i = 0; i < children.size(); ++i) {
            std::string text = WindowText(children[i]);
            size_t amp = text.find('&');
            if (amp != std::string::npos && amp + 1 < text.size()) {
                char key = static_cast<char>(std::tolower(static_cast<unsigned char>(text[amp + 1])));
                EXPECT_TRUE(keys.emplace(key, text).second)
                    << "\"" << text << "\" and \"" << keys[key] << "\" share Alt+" << key;
            }
            if (ClassOf(children[i]) != "Static" || text.empty() || text.back() != ':') continue;
            // A label's access key, and a screen reader, go to the next field in Tab order.
            std::string plain;
            for (char ch : text)
                if (ch != '&') plain += ch;
            for (size_t j = i + 1; j < children.size(); ++j)
                if (ClassOf(children[j]) != "Static" && (Style(children[j]) & WS_TABSTOP)) {
                    found[plain] = GetDlgCtrlID(children[j]);
                    break;
                }
        }
        EXPECT_EQ(found, expected);
    }
    // The mark-all button keeps its access key whichever text it shows.
    std::string mark = Text(IDS_MARK_ALL), unmark = Text(IDS_UNMARK_ALL);
    ASSERT_NE(mark.find('&'), std::string::npos);
    ASSERT_NE(unmark.find('&'), std::string::npos);
    EXPECT_EQ(std::tolower(mark[mark.find('&') + 1]), std::tolower(unmark[unmark.find('&') + 1]));
}

// ---- Menu ----------------------------------------------------------------------

TEST(ResourceLibraryMenu, GoToPopupCarriesBothCommands)
{
    HMENU menu = LoadMenuA(Library(), MAKEINTRESOURCEA(IDR_PRESCAN_POPUP));
    ASSERT_NE(menu, nullptr);
    HMENU popup = GetSubMenu(menu, 0);
    ASSERT_NE(popup, nullptr);
    std::set<UINT> ids;
    for (int i = 0; i < GetMenuItemCount(popup); ++i) ids.insert(GetMenuItemID(popup, i));
    EXPECT_EQ(ids, (std::set<UINT>{ID_GOTO_SCENE_START, ID_GOTO_SCENE_END}));
    DestroyMenu(menu);
}
