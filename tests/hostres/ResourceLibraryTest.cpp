// The resource library as a host ships it: every text the module loads, the
// three dialog templates with every control the module binds, and the menu.
#include "ResourceIds.h"

#include <windows.h>
#include <commctrl.h>
#include <gtest/gtest.h>

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

INT_PTR CALLBACK NoOpProc(HWND, UINT, WPARAM, LPARAM)
{
    return FALSE;
}

std::string ClassOf(HWND h)
{
    char name[64] = "";
    GetClassNameA(h, name, sizeof name);
    return name;
}

struct Expected {
    int id;
    const char* cls;
};

HWND CreateTemplate(LPCSTR name, HWND parent)
{
    INITCOMMONCONTROLSEX icc = {sizeof icc, ICC_LISTVIEW_CLASSES | ICC_BAR_CLASSES | ICC_STANDARD_CLASSES};
    InitCommonControlsEx(&icc);
    return CreateDialogParamA(Library(), name, parent, NoOpProc, 0);
}

void ExpectControls(HWND dlg, const std::vector<Expected>& controls)
{
    for (const auto& c : controls) {
        HWND item = GetDlgItem(dlg, c.id);
        ASSERT_NE(item, nullptr) << "control " << c.id;
        EXPECT_EQ(ClassOf(item), c.cls) << "control " << c.id;
    }
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

const int kPreScanControlsWithTips[] = {
    IDC_TAPE_DESCRIPTION, IDC_START_SCAN, IDC_GOTO, IDC_MARK_ALL, IDC_SPLIT_SCENE, IDC_MERGE_SCENES,
    IDC_SCAN_OPTIONS, IDC_SCENE_LIST, IDC_OPEN_LIST, IDC_SAVE_LIST, IDC_TAPE_NAME, IDC_SCAN_METHOD,
    IDC_VIEW_MODE, IDC_CAPTURE, IDC_PREVIEW, IDC_DELETE_SCENES, IDC_CLEAR_ALL, IDC_CLOSE_PRESCAN, IDC_HELP_PRESCAN};

} // namespace

TEST(ResourceLibrary, ExportHandsOutItsOwnInstance)
{
    ASSERT_NE(Library(), nullptr);
    auto get = reinterpret_cast<HINSTANCE (*)()>(GetProcAddress(Library(), "qvCaptureGetNewRCInstanceHandle"));
    ASSERT_NE(get, nullptr);
    EXPECT_EQ(get(), Library());
}

TEST(ResourceLibrary, EveryTextIsThere)
{
    for (UINT id : kStrings) EXPECT_FALSE(Text(id).empty()) << "string " << id;
    for (int id : kPreScanControlsWithTips) EXPECT_FALSE(Text(static_cast<UINT>(id)).empty()) << "tool tip " << id;
    EXPECT_TRUE(Text(IDC_PREVIEW_VIDEO).empty());  // the video surface has no tip
}

TEST(ResourceLibrary, FormatsTakeExactlyTheirArguments)
{
    for (UINT id : {IDS_ASK_CREATE_FOLDER, IDS_SAVE_FAILED}) {
        EXPECT_EQ(Count(Text(id), "%"), 1) << id;
        EXPECT_EQ(Count(Text(id), "%s"), 1) << id;
    }
    for (UINT id : {IDS_TOO_MANY_SCENES, IDS_CAPTURE_FOLDER_TOO_LONG, IDS_CAPTURE_NAME_TOO_LONG,
                    IDS_LIBRARY_FOLDER_TOO_LONG}) {
        EXPECT_EQ(Count(Text(id), "%"), 1) << id;
        EXPECT_EQ(Count(Text(id), "%d"), 1) << id;
    }
    for (UINT id : kStrings) {
        if (id == IDS_ASK_CREATE_FOLDER || id == IDS_SAVE_FAILED || (id >= IDS_TOO_MANY_SCENES && id <= IDS_LIBRARY_FOLDER_TOO_LONG))
            continue;
        EXPECT_EQ(Count(Text(id), "%"), 0) << "string " << id << " is shown as it stands";
    }
}

TEST(ResourceLibrary, FilterIsPairsOfDescriptionAndPattern)
{
    std::string filter = Text(IDS_LIST_FILE_FILTER);
    ASSERT_LE(filter.size(), 258u);
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

TEST(ResourceLibrary, ModuleTitleCanNameAFolder)
{
    std::string title = Text(IDS_MODULE_TITLE);
    EXPECT_LE(title.size(), 49u);
    EXPECT_EQ(title.find_first_of("\\/:*?\"<>|"), std::string::npos);
}

TEST(ResourceLibrary, PreScanTemplateHasEveryControl)
{
    HWND dlg = CreateTemplate(MAKEINTRESOURCEA(IDD_PRESCAN), nullptr);
    ASSERT_NE(dlg, nullptr);
    ExpectControls(dlg, {{IDC_TAPE_DESCRIPTION, "Edit"}, {IDC_START_SCAN, "Button"}, {IDC_GOTO, "Button"},
                         {IDC_MARK_ALL, "Button"},       {IDC_SPLIT_SCENE, "Button"}, {IDC_MERGE_SCENES, "Button"},
                         {IDC_SCAN_OPTIONS, "Button"},   {IDC_SCENE_LIST, "SysListView32"},
                         {IDC_OPEN_LIST, "Button"},      {IDC_SAVE_LIST, "Button"}, {IDC_TAPE_NAME, "Edit"},
                         {IDC_SCAN_METHOD, "ComboBox"},  {IDC_VIEW_MODE, "Button"}, {IDC_CAPTURE, "Button"},
                         {IDC_PREVIEW, "Button"},        {IDC_DELETE_SCENES, "Button"}, {IDC_CLEAR_ALL, "Button"},
                         {IDC_CLOSE_PRESCAN, "Button"},  {IDC_PREVIEW_VIDEO, "Static"},
                         {IDC_HELP_PRESCAN, "Button"}});
    LONG listStyle = GetWindowLongA(GetDlgItem(dlg, IDC_SCENE_LIST), GWL_STYLE);
    EXPECT_EQ(listStyle & LVS_TYPEMASK, LVS_REPORT);
    EXPECT_FALSE(listStyle & LVS_SINGLESEL);
    for (int id : {IDC_VIEW_MODE, IDC_CAPTURE, IDC_PREVIEW, IDC_GOTO, IDC_MERGE_SCENES, IDC_SPLIT_SCENE})
        EXPECT_EQ(GetWindowLongA(GetDlgItem(dlg, id), GWL_STYLE) & BS_TYPEMASK, BS_OWNERDRAW) << id;
    EXPECT_EQ(GetWindowLongA(GetDlgItem(dlg, IDC_SCAN_METHOD), GWL_STYLE) & 3, CBS_DROPDOWNLIST);
    EXPECT_FALSE(GetWindowLongA(GetDlgItem(dlg, IDC_PREVIEW_VIDEO), GWL_STYLE) & WS_VISIBLE);
    EXPECT_FALSE(GetWindowLongA(dlg, GWL_STYLE) & WS_VISIBLE);
    DestroyWindow(dlg);
}

TEST(ResourceLibrary, PreScanControlsNeitherOverlapNorLeaveTheDialog)
{
    HWND dlg = CreateTemplate(MAKEINTRESOURCEA(IDD_PRESCAN), nullptr);
    ASSERT_NE(dlg, nullptr);
    RECT client;
    GetClientRect(dlg, &client);
    MapWindowPoints(dlg, nullptr, reinterpret_cast<POINT*>(&client), 2);
    struct Placed {
        int id;
        RECT rc;
    };
    std::vector<Placed> placed;
    for (HWND c = GetWindow(dlg, GW_CHILD); c; c = GetWindow(c, GW_HWNDNEXT)) {
        int id = GetDlgCtrlID(c);
        RECT rc;
        GetWindowRect(c, &rc);
        RECT inside;
        EXPECT_TRUE(IntersectRect(&inside, &rc, &client) && EqualRect(&inside, &rc)) << "control " << id;
        if (id <= 0 || !(GetWindowLongA(c, GWL_STYLE) & WS_VISIBLE) || id == IDC_SPLIT_SCENE) continue;
        // The picture buttons take their strip's size at run time.
        if (id == IDC_VIEW_MODE || id == IDC_CAPTURE || id == IDC_GOTO || id == IDC_MERGE_SCENES) {
            rc.right = rc.left + 24;
            rc.bottom = rc.top + 22;
        } else if (id == IDC_PREVIEW) {
            rc.right = rc.left + 32;
            rc.bottom = rc.top + 22;
        }
        placed.push_back({id, rc});
    }
    for (size_t i = 0; i < placed.size(); ++i)
        for (size_t j = i + 1; j < placed.size(); ++j) {
            RECT overlap;
            EXPECT_FALSE(IntersectRect(&overlap, &placed[i].rc, &placed[j].rc))
                << placed[i].id << " overlaps " << placed[j].id;
        }
    // Merge and split share one place.
    RECT merge, split;
    GetWindowRect(GetDlgItem(dlg, IDC_MERGE_SCENES), &merge);
    GetWindowRect(GetDlgItem(dlg, IDC_SPLIT_SCENE), &split);
    EXPECT_TRUE(EqualRect(&merge, &split));
    DestroyWindow(dlg);
}

TEST(ResourceLibrary, OptionsTemplateHasEveryControl)
{
    HWND dlg = CreateTemplate(MAKEINTRESOURCEA(IDD_SCAN_OPTIONS), nullptr);
    ASSERT_NE(dlg, nullptr);
    ExpectControls(dlg, {{IDC_CAPTURE_FOLDER, "Edit"},         {IDC_CAPTURE_NAME, "Edit"},
                         {IDC_LIBRARY_FOLDER, "Edit"},         {IDC_BROWSE_CAPTURE_FOLDER, "Button"},
                         {IDC_SAVE_TO_LIBRARY, "Button"},      {IDC_CHOOSE_LIBRARY, "Button"},
                         {IDC_WANT_INDEX_FILE, "Button"},      {IDC_QUICK_SCAN, "Button"},
                         {IDC_QUICK_SCAN_SPEED, "msctls_trackbar32"}, {IDC_HELP_OPTIONS, "Button"},
                         {IDOK, "Button"},                     {IDCANCEL, "Button"}});
    for (int id : {IDC_SAVE_TO_LIBRARY, IDC_WANT_INDEX_FILE, IDC_QUICK_SCAN})
        EXPECT_EQ(GetWindowLongA(GetDlgItem(dlg, id), GWL_STYLE) & BS_TYPEMASK, BS_AUTOCHECKBOX) << id;
    DestroyWindow(dlg);
}

TEST(ResourceLibrary, FileDialogAreaIsAChildTemplate)
{
    HWND host = CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 600, 400, nullptr, nullptr, nullptr, nullptr);
    HWND area = CreateTemplate("FILEOPENSAVE", host);
    ASSERT_NE(area, nullptr);
    EXPECT_TRUE(GetWindowLongA(area, GWL_STYLE) & WS_CHILD);
    ExpectControls(area, {{IDC_PSF_TAPE_NAME, "Edit"}, {IDC_PSF_TAPE_DESCRIPTION, "Edit"}, {IDC_PSF_HELP, "Button"}});
    DestroyWindow(host);
}

TEST(ResourceLibrary, GoToMenuCarriesBothCommands)
{
    HMENU menu = LoadMenuA(Library(), MAKEINTRESOURCEA(IDR_PRESCAN_POPUP));
    ASSERT_NE(menu, nullptr);
    HMENU popup = GetSubMenu(menu, 0);
    ASSERT_NE(popup, nullptr);
    std::set<UINT> ids;
    for (int i = 0; i < GetMenuItemCount(popup); ++i) ids.insert(GetMenuItemID(popup, i));
    EXPECT_TRUE(ids.count(ID_GOTO_SCENE_START));
    EXPECT_TRUE(ids.count(ID_GOTO_SCENE_END));
    DestroyMenu(menu);
}
