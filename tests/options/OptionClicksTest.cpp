// The scan options dialog acts on clicks only, and a failed folder browse
// shows the browser's own reason before the general message.
#include "ResourceIds.h"
#include "platform/FolderBrowser.h"
#include "support/DialogFixture.h"
#include "support/TestEnvironment.h"

#include <cstring>

using namespace qvtest;

namespace {

class OptionClicksTest : public DialogFixture {
protected:
    // Opens the options dialog, answered as `responder` expects.
    void OpenOptions(ModalResponder& responder)
    {
        SendMessageA(Wnd(), WM_COMMAND, IDC_SCAN_OPTIONS, 0);
        responder.Verify();
    }
};

struct { const char* text; UINT id; } g_error;  // what the failing browser records

} // namespace

TEST_F(OptionClicksTest, FocusFlipsNoSetting)
{
    OpenDialog();
    std::strcpy(g_session.szCaptureFolder, MakeTempDir("Focus").c_str());
    for (int id : {IDC_SAVE_TO_LIBRARY, IDC_WANT_INDEX_FILE, IDC_QUICK_SCAN}) {
        g_session.nWantIndexFile = g_session.nSaveToLibrary = g_session.nQuickScanSpeed = 0;
        ModalResponder responder;
        responder.ExpectWindow("scan options", [id](HWND dlg) {
            HWND box = GetDlgItem(dlg, id);  // a host's template may let it report focus changes
            SetWindowLongA(box, GWL_STYLE, GetWindowLongA(box, GWL_STYLE) | BS_NOTIFY);
            SetFocus(box);
            return PostMessageA(dlg, WM_COMMAND, IDOK, 0);
        });
        OpenOptions(responder);
        EXPECT_EQ(g_session.nWantIndexFile + g_session.nSaveToLibrary + g_session.nQuickScanSpeed, 0) << id;
    }
}

TEST_F(OptionClicksTest, FailedBrowseTellsWhy)
{
    OpenDialog();
    qReplaceFolderBrowser([](HWND, const char*, std::string&) { return qSetLastErrorRecord(g_hResInst, g_error.id, g_error.text), -1; });
    // The record's text; else its string ID's; else the general message.
    struct { const char* text; UINT id, shownId; } cases[] = {{"Drive not ready.", IDS_DEVICE_NOT_READY, 0},
        {"", IDS_DEVICE_NOT_READY, IDS_DEVICE_NOT_READY}, {"", 0, IDS_BROWSE_FAILED}};
    for (const auto& c : cases) {
        g_error = {c.text, c.id};
        ModalResponder responder;
        responder.ExpectWindow("scan options", [](HWND dlg) {
            SendDlgItemMessageA(dlg, IDC_BROWSE_CAPTURE_FOLDER, BM_CLICK, 0, 0);
            return PostMessageA(dlg, WM_COMMAND, IDCANCEL, 0);
        });
        c.shownId ? responder.ExpectMessageRes(c.shownId, IDOK) : responder.ExpectMessage(c.text, IDOK);
        OpenOptions(responder);
    }
    qReplaceFolderBrowser(nullptr);
}
