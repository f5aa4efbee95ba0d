// The scan options dialog: fields set as a user would, OK and Cancel, the
// settings file read back, the library request, refused overlong texts, focus
// changes that flip nothing, and why a folder browse failed.
#include "ResourceIds.h"
#include "platform/FolderBrowser.h"
#include "platform/ResourceLib.h"
#include "session/Session.h"
#include "session/Settings.h"
#include "support/DialogFixture.h"
#include "support/TestEnvironment.h"

#include <commctrl.h>
#include <cstring>

using namespace qvtest;

namespace {

class ScanOptionTest : public DialogFixture {
protected:
    void SetUp() override
    {
        DialogFixture::SetUp();
        m_folder = MakeTempDir("Options");
        DeleteIni();
    }
    // Opens the options dialog and lets `act` work in it as the user; `after`
    // answers a window the dialog shows next.
    void WithOptions(std::function<void(HWND)> act, std::function<bool(HWND)> after = nullptr)
    {
        ModalResponder responder;
        responder.ExpectWindow("scan options", [act](HWND dlg) { return act(dlg), true; });
        if (after) responder.ExpectWindow("the answer to OK", after);
        SendMessageA(Wnd(), WM_COMMAND, IDC_SCAN_OPTIONS, 0);
        responder.Verify();
    }
    static void Press(HWND dlg, int id) { SendDlgItemMessageA(dlg, id, BM_CLICK, 0, 0); }
    static bool On(HWND dlg, int id) { return IsWindowEnabled(GetDlgItem(dlg, id)) != FALSE; }
    static std::string Text(HWND dlg, int id)
    {
        char text[600] = "";
        GetDlgItemTextA(dlg, id, text, sizeof text);
        return text;
    }
    std::string m_folder;
};

struct { const char* text; UINT id; } g_error;  // what the failing browser records

} // namespace

// The folder shown (the session's, or the default when none is set), and the
// quick scan controls, which scanning while capturing turns off.
TEST_F(ScanOptionTest, OpensWithTheSessionsValues)
{
    char fallback[QV_MAX_PATH] = "";
    GetDefaultCaptureFolder(fallback);
    ASSERT_NE(fallback[0], 0);
    struct Case {
        std::string folder;
        int method;
        std::string shown;
        bool quick;
    } cases[] = {{m_folder, 0, m_folder, true}, {"", 3, fallback, false}};
    for (const Case& c : cases) {
        std::strcpy(g_session.szCaptureFolder, c.folder.c_str());
        g_session.nScanMethodIndex = c.method;
        OpenDialog();
        WithOptions([&](HWND dlg) {
            EXPECT_EQ(Text(dlg, IDC_CAPTURE_FOLDER), c.shown);
            EXPECT_EQ(On(dlg, IDC_QUICK_SCAN) && On(dlg, IDC_WANT_INDEX_FILE), c.quick);
            EXPECT_FALSE(On(dlg, IDC_QUICK_SCAN_SPEED));
            PostMessageA(dlg, WM_COMMAND, IDCANCEL, 0);
        });
        TearDown();
        SetUp();
    }
}

// The host chooses the library within its field; Cancel keeps nothing, OK
// writes the session and every setting.
TEST_F(ScanOptionTest, CancelKeepsNothingOkWritesTheSettings)
{
    OpenDialog();
    LibraryRequest seen = {};
    Host().OnRequest(HOSTREQ_CHOOSE_LIBRARY, [&](intptr_t arg) {
        auto* req = reinterpret_cast<LibraryRequest*>(arg);
        seen = *req;
        std::strcpy(req->szLibraryFolder, "H:\\Host Library");
        return req->bSaveToLibrary = 1;
    });
    WithOptions([&](HWND dlg) {
        Press(dlg, IDC_WANT_INDEX_FILE);
        SetDlgItemTextA(dlg, IDC_LIBRARY_FOLDER, ("L:\\" + std::string(300, 'l')).c_str());
        Press(dlg, IDC_CHOOSE_LIBRARY);
        EXPECT_EQ(Text(dlg, IDC_LIBRARY_FOLDER), "H:\\Host Library");
        EXPECT_EQ(IsDlgButtonChecked(dlg, IDC_SAVE_TO_LIBRARY), BST_CHECKED);
        PostMessageA(dlg, WM_COMMAND, IDCANCEL, 0);
    });
    EXPECT_EQ(seen.szLibraryFolder[171], 0);  // the request's field is never overrun
    EXPECT_EQ(ReadIni("SaveToLibrary") + ReadIni("WantIndexFile"), std::string(kIniMissing) + kIniMissing);
    EXPECT_EQ(g_session.nWantIndexFile, 0);
    WithOptions([&](HWND dlg) {
        SetDlgItemTextA(dlg, IDC_CAPTURE_NAME, "  clip  ");
        SetDlgItemTextA(dlg, IDC_CAPTURE_FOLDER, (m_folder + "\\").c_str());
        SendDlgItemMessageA(dlg, IDC_QUICK_SCAN_SPEED, TBM_SETPOS, TRUE, 3);
        Press(dlg, IDC_QUICK_SCAN);
        EXPECT_FALSE(On(dlg, IDC_WANT_INDEX_FILE));  // no index file from a quick scan
        Press(dlg, IDC_SAVE_TO_LIBRARY);
        PostMessageA(dlg, WM_COMMAND, IDOK, 0);
    });
    EXPECT_EQ(g_session.nQuickScanSpeed, 3);
    EXPECT_EQ(ReadIni("QuickScanSpeed") + ReadIni("SaveToLibrary") + ReadIni("WantIndexFile"), "310");
    EXPECT_STREQ(g_session.szCaptureName, "clip.avi");
    EXPECT_EQ(std::string(g_session.szCaptureFolder), m_folder);
    EXPECT_EQ(ReadIni("PSCaptureFileName"), m_folder + "\\clip.avi");
    EXPECT_EQ(ReadIni("ProductionLibFolder"), std::string(g_session.szProductionLibFolder));
}

// A text one longer than its field is refused with the limit, never cut;
// one that just fits is taken.
TEST_F(ScanOptionTest, OverlongFieldsAreRefusedNotCut)
{
    struct Case {
        int control;
        std::string text;
        UINT refusal;  // 0: taken
        int limit;
    } cases[] = {
        {IDC_CAPTURE_NAME, std::string(96, 'n'), IDS_CAPTURE_NAME_TOO_LONG, 99},  // 100 with ".avi"
        {IDC_CAPTURE_NAME, std::string(95, 'n'), 0, 99},
        {IDC_CAPTURE_FOLDER, "C:\\" + std::string(257, 'f'), IDS_CAPTURE_FOLDER_TOO_LONG, 259},
        {IDC_LIBRARY_FOLDER, "L:\\" + std::string(257, 'l'), IDS_LIBRARY_FOLDER_TOO_LONG, 259},
    };
    OpenDialog();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text.size());
        DeleteIni();
        WithOptions(
            [&](HWND dlg) {
                SetDlgItemTextA(dlg, IDC_CAPTURE_FOLDER, m_folder.c_str());
                SetDlgItemTextA(dlg, c.control, c.text.c_str());
                PostMessageA(dlg, WM_COMMAND, IDOK, 0);
            },
            c.refusal == 0 ? nullptr : std::function<bool(HWND)>([&](HWND box) {
                bool right = MessageBoxTextOf(box) == qv::FormatResString(c.refusal, c.limit);
                PostMessageA(box, WM_COMMAND, IDOK, 0);
                PostMessageA(GetWindow(box, GW_OWNER), WM_COMMAND, IDCANCEL, 0);  // the dialog stayed open
                return right;
            }));
        EXPECT_EQ(ReadIni("PSCaptureFileName") == kIniMissing, c.refusal != 0);
    }
    EXPECT_EQ(std::string(g_session.szCaptureName), std::string(95, 'n') + ".avi");
}

// Only a click changes a setting: a check box that reports focus changes
// (a host's template may let it) flips nothing.
TEST_F(ScanOptionTest, FocusFlipsNoSetting)
{
    OpenDialog();
    std::strcpy(g_session.szCaptureFolder, m_folder.c_str());
    for (int id : {IDC_SAVE_TO_LIBRARY, IDC_WANT_INDEX_FILE, IDC_QUICK_SCAN}) {
        g_session.nWantIndexFile = g_session.nSaveToLibrary = g_session.nQuickScanSpeed = 0;
        WithOptions([id](HWND dlg) {
            HWND box = GetDlgItem(dlg, id);
            SetWindowLongA(box, GWL_STYLE, GetWindowLongA(box, GWL_STYLE) | BS_NOTIFY);
            SetFocus(box);
            PostMessageA(dlg, WM_COMMAND, IDOK, 0);
        });
        EXPECT_EQ(g_session.nWantIndexFile + g_session.nSaveToLibrary + g_session.nQuickScanSpeed, 0) << id;
    }
}

// A failed browse shows the record's text; else its string ID's; else the
// general message.
TEST_F(ScanOptionTest, FailedBrowseTellsWhy)
{
    OpenDialog();
    qReplaceFolderBrowser([](HWND, const char*, std::string&) { return qSetLastErrorRecord(g_hResInst, g_error.id, g_error.text), -1; });
    struct { const char* text; UINT id, shownId; } cases[] = {{"Drive not ready.", IDS_DEVICE_NOT_READY, 0},
        {"", IDS_DEVICE_NOT_READY, IDS_DEVICE_NOT_READY}, {"", 0, IDS_BROWSE_FAILED}};
    for (const auto& c : cases) {
        g_error = {c.text, c.id};
        std::string shown = c.shownId ? qv::LoadResString(c.shownId) : c.text;
        WithOptions(
            [](HWND dlg) {
                SendDlgItemMessageA(dlg, IDC_BROWSE_CAPTURE_FOLDER, BM_CLICK, 0, 0);
                PostMessageA(dlg, WM_COMMAND, IDCANCEL, 0);
            },
            [&](HWND box) { return PostMessageA(box, WM_COMMAND, IDOK, 0), MessageBoxTextOf(box) == shown; });
    }
    qReplaceFolderBrowser(nullptr);
}
