// The scan options dialog: fields set as a user would, OK and Cancel, the
// settings file read back, the library request, and refused overlong texts.
#include "ResourceIds.h"
#include "platform/ResourceLib.h"
#include "session/Session.h"
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
    // Opens the options dialog and lets `act` work in it as the user.
    void WithOptions(std::function<void(HWND)> act)
    {
        ModalResponder responder;
        responder.ExpectWindow("scan options", [act](HWND dlg) {
            act(dlg);
            return true;
        });
        SendMessageA(Wnd(), WM_COMMAND, IDC_SCAN_OPTIONS, 0);
        responder.Verify();
    }
    static void Press(HWND dlg, int id) { SendDlgItemMessageA(dlg, id, BM_CLICK, 0, 0); }
    std::string m_folder;
};

} // namespace

TEST_F(ScanOptionTest, OkWritesTheSessionAndTheSettings)
{
    OpenDialog();
    bool indexEnabledWhileQuick = true;
    WithOptions([&](HWND dlg) {
        SetDlgItemTextA(dlg, IDC_CAPTURE_NAME, "  clip  ");
        SetDlgItemTextA(dlg, IDC_CAPTURE_FOLDER, (m_folder + "\\").c_str());
        SendDlgItemMessageA(dlg, IDC_QUICK_SCAN_SPEED, TBM_SETPOS, TRUE, 3);
        Press(dlg, IDC_QUICK_SCAN);
        indexEnabledWhileQuick = IsWindowEnabled(GetDlgItem(dlg, IDC_WANT_INDEX_FILE)) != FALSE;
        Press(dlg, IDC_SAVE_TO_LIBRARY);
        PostMessageA(dlg, WM_COMMAND, IDOK, 0);
    });
    EXPECT_FALSE(indexEnabledWhileQuick);
    EXPECT_EQ(g_session.nQuickScanSpeed, 3);
    EXPECT_EQ(ReadIni("QuickScanSpeed"), "3");
    EXPECT_EQ(ReadIni("SaveToLibrary"), "1");
    EXPECT_EQ(ReadIni("WantIndexFile"), "0");
    EXPECT_STREQ(g_session.szCaptureName, "clip.avi");
    EXPECT_EQ(std::string(g_session.szCaptureFolder), m_folder);
    EXPECT_EQ(ReadIni("PSCaptureFileName"), m_folder + "\\clip.avi");
    EXPECT_EQ(ReadIni("ProductionLibFolder"), std::string(g_session.szProductionLibFolder));
}

TEST_F(ScanOptionTest, CancelWritesNothing)
{
    OpenDialog();
    WithOptions([&](HWND dlg) {
        Press(dlg, IDC_WANT_INDEX_FILE);
        PostMessageA(dlg, WM_COMMAND, IDCANCEL, 0);
    });
    EXPECT_EQ(ReadIni("WantIndexFile"), kIniMissing);
    EXPECT_EQ(g_session.nWantIndexFile, 0);
}

TEST_F(ScanOptionTest, ScanningWhileCapturingAllowsNoQuickScan)
{
    g_session.nScanMethodIndex = 3;
    OpenDialog();
    bool quick = true, index = true, speed = true;
    WithOptions([&](HWND dlg) {
        quick = IsWindowEnabled(GetDlgItem(dlg, IDC_QUICK_SCAN)) != FALSE;
        index = IsWindowEnabled(GetDlgItem(dlg, IDC_WANT_INDEX_FILE)) != FALSE;
        speed = IsWindowEnabled(GetDlgItem(dlg, IDC_QUICK_SCAN_SPEED)) != FALSE;
        SetDlgItemTextA(dlg, IDC_CAPTURE_FOLDER, m_folder.c_str());
        PostMessageA(dlg, WM_COMMAND, IDOK, 0);
    });
    EXPECT_FALSE(quick || index || speed);
    EXPECT_NE(ReadIni("QuickScanSpeed"), kIniMissing);  // OK still writes every key
}

TEST_F(ScanOptionTest, HostChoosesTheLibraryWithinItsField)
{
    OpenDialog();
    std::string longFolder = "L:\\" + std::string(300, 'l');
    LibraryRequest seen = {};
    Host().OnRequest(HOSTREQ_CHOOSE_LIBRARY, [&](intptr_t arg) {
        auto* req = reinterpret_cast<LibraryRequest*>(arg);
        seen = *req;
        std::strcpy(req->szLibraryFolder, "H:\\Host Library");
        req->bSaveToLibrary = 1;
        return 1;
    });
    std::string shown;
    bool ticked = false;
    WithOptions([&](HWND dlg) {
        SetDlgItemTextA(dlg, IDC_LIBRARY_FOLDER, longFolder.c_str());
        SendMessageA(dlg, WM_COMMAND, IDC_LIBRARY_FOLDER, 0);
        Press(dlg, IDC_CHOOSE_LIBRARY);
        char text[600] = "";
        GetDlgItemTextA(dlg, IDC_LIBRARY_FOLDER, text, sizeof text);
        shown = text;
        ticked = IsDlgButtonChecked(dlg, IDC_SAVE_TO_LIBRARY) == BST_CHECKED;
        PostMessageA(dlg, WM_COMMAND, IDCANCEL, 0);
    });
    EXPECT_EQ(seen.szLibraryFolder[171], 0);  // the request's field is never overrun
    EXPECT_EQ(shown, "H:\\Host Library");
    EXPECT_TRUE(ticked);
    EXPECT_EQ(ReadIni("SaveToLibrary"), kIniMissing);  // nothing written until OK
}

TEST_F(ScanOptionTest, OverlongNameIsRefusedNotCut)
{
    OpenDialog();
    ModalResponder responder;
    responder
        .ExpectWindow("scan options",
                      [&](HWND dlg) {
                          SetDlgItemTextA(dlg, IDC_CAPTURE_NAME, std::string(120, 'n').c_str());
                          PostMessageA(dlg, WM_COMMAND, IDOK, 0);
                          return true;
                      })
        .ExpectWindow("the refusal", [](HWND box) {
            bool right = MessageBoxTextOf(box) == qv::FormatResString(IDS_CAPTURE_NAME_TOO_LONG, 99);
            PostMessageA(box, WM_COMMAND, IDOK, 0);
            PostMessageA(GetWindow(box, GW_OWNER), WM_COMMAND, IDCANCEL, 0);  // the dialog stayed open
            return right;
        });
    SendMessageA(Wnd(), WM_COMMAND, IDC_SCAN_OPTIONS, 0);
    responder.Verify();
    EXPECT_EQ(ReadIni("PSCaptureFileName"), kIniMissing);
}

TEST_F(ScanOptionTest, OpensWithTheSessionsValues)
{
    std::strcpy(g_session.szCaptureFolder, m_folder.c_str());
    OpenDialog();
    std::string folder, name;
    WithOptions([&](HWND dlg) {
        char text[300] = "";
        GetDlgItemTextA(dlg, IDC_CAPTURE_FOLDER, text, sizeof text);
        folder = text;
        GetDlgItemTextA(dlg, IDC_CAPTURE_NAME, text, sizeof text);
        name = text;
        PostMessageA(dlg, WM_COMMAND, IDCANCEL, 0);
    });
    EXPECT_EQ(folder, m_folder);
    EXPECT_EQ(name, std::string(g_session.szCaptureName));
}
