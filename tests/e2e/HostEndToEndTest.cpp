// The built qvPreScan.dll as a host meets it: loaded with LoadLibraryA,
// reached only through its exports, its callback and window messages.
#include "Automation.h"
#include "DvTape.h"
#include "ResourceIds.h"
#include "VirtualDeck.h"
#include "qvPreScan.h"
#include "support/ModalResponder.h"
#include "support/Portable.h"
#include "support/Pump.h"
#include "support/ScriptedHost.h"
#include "support/TestEnvironment.h"

#include <windows.h>
#include <commctrl.h>
#include <gtest/gtest.h>

#include <cstdlib>

using namespace qvtest;

namespace {

const HMODULE g_dll = LoadLibraryA("qvPreScan.dll");

// An export of the loaded DLL, typed as the public header declares it.
template <class F> F Export(const char* name)
{
    return reinterpret_cast<F>(reinterpret_cast<void*>(GetProcAddress(g_dll, name)));
}
#define QV(name) Export<decltype(&name)>(#name)

} // namespace

TEST(HostEndToEnd, ExportsScanFeedStopAndClose)
{
    ASSERT_NE(g_dll, nullptr);  // its export table is checked against the .def by tests/sdk/sdk_test.sh
    AppDataDir();  // a settings folder of the run's own
    ScriptedHost& host = ScriptedHost::Instance();
    host.Reset();
    PreScanInitInfo info = MakeInitInfo(".avi", 0, "");
    ASSERT_EQ(QV(qvPreScanInit)(&info), 1);

    HWND owner = CreateWindowA("STATIC", "host", WS_OVERLAPPEDWINDOW, 0, 0, 300, 200, nullptr, nullptr, nullptr, nullptr);
    HWND dlg = QV(qvShowPreScanDlg)(owner);
    ASSERT_NE(dlg, nullptr);
    PumpPending();
    SendMessageA(GetDlgItem(dlg, IDC_START_SCAN), BM_CLICK, 0, 0);
    SceneInfo scene = {};
    for (int i = 1; i <= 4; ++i) {
        scene.dwTimeCodeIn = Tc(0, 0, i, 0);
        scene.dwTimeCodeOut = 0;
        QV(qvSetSceneDataBegin)(&scene, nullptr, nullptr);
        scene.dwTimeCodeOut = Tc(0, 0, i, 20);
        if (i < 4) QV(qvSetSceneDataEnd)(&scene);  // the fourth stays open
    }
    HWND list = GetDlgItem(dlg, IDC_SCENE_LIST);
    EXPECT_EQ(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0), 4);
    EXPECT_EQ(QV(qvGetCurrentSceneNumber)(), 3);
    EXPECT_EQ(QV(qvPSClearUncompleteScene)(), 3);  // the open scene goes
    EXPECT_EQ(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0), 3);
    QV(qvMinimizePreScanDlg)();
    QV(qvForceToStopPreScan)(0);  // stop the scan, keep the dialog
    EXPECT_TRUE(IsIconic(dlg) && IsWindow(dlg) && host.Codes().back() == HOSTREQ_STOP_SCAN);
    EXPECT_EQ(host.Last(HOSTREQ_STOP_SCAN)->arg, 3);
    char library[QV_MAX_PATH] = "", settings[QV_MAX_PATH] = "";  // from the settings, or their default
    LoadStringA(GetModuleHandleA("qvCaptureRC.dll"), IDS_DEFAULT_LIBRARY_FOLDER, settings, sizeof settings);
    QV(qvRestorePreScanDlg)(), QV(qvGetLibFolderFromPreScan)(library);
    EXPECT_TRUE(!IsIconic(dlg) && std::string(library) == settings) << library;

    ModalResponder responder;
    responder.ExpectMessageRes(IDS_ASK_SAVE_CHANGES, IDNO);
    QV(qvForceToStopPreScan)(1);
    responder.Verify();
    EXPECT_TRUE(!IsWindow(dlg) && host.Codes().back() == HOSTREQ_DIALOG_CLOSED && QV(qvGetCurrentSceneNumber)() == 0);
    dlg = QV(qvShowPreScanDlg)(owner);  // ending the session does not close a dialog
    EXPECT_TRUE(QV(qvPreScanUnInit)() == 1 && IsWindow(dlg));
    DestroyWindow(owner);
}

// The reference host's deck playing DV tapes that ffmpeg made (tests/dv/make-tapes.sh):
// each recording is a scene with the frames' own time codes and dates, the
// deck finds the frames the module asks for, capture writes each marked scene
// as a raw DV file (tests/e2e/dv-captures.sh reads them with ffprobe), and a
// captured scene previews until the player says it has ended.
namespace {

struct TapeRecording { uint32_t in, out; const char* date; };
struct DvTapeCase { const char* tape; int quickSpeed, tvStandard; std::vector<TapeRecording> recordings; };

const std::vector<TapeRecording> kPal = {
    {Tc(0, 10, 0, 0), Tc(0, 10, 1, 24), "2004/ 5/ 1\n 10:00:00"},
    {Tc(0, 10, 2, 0), Tc(0, 10, 2, 24), "2004/ 5/ 2\n 09:15:30"},
    {Tc(0, 30, 0, 0), Tc(0, 30, 1, 11), "2004/ 6/12\n 18:45:00"},
    {Tc(0, 0, 10, 0), Tc(0, 0, 10, 24), "2005/ 1/ 3\n 08:00:59"},
};
// Drop-frame: 00:10:00 keeps frames 0 and 1, 01:01:00 starts at frame 2.
const std::vector<TapeRecording> kNtsc = {
    {Tc(0, 9, 59, 20), Tc(0, 10, 1, 3), "2006/ 7/ 4\n 12:00:00"},
    {Tc(1, 0, 59, 25), Tc(1, 1, 0, 25), "2006/ 7/ 5\n 23:59:59"},
    {Tc(2, 0, 0, 0), Tc(2, 0, 0, 28), "2006/ 7/ 9\n 07:30:00"},
};

std::string TcText(uint32_t t)
{
    char text[16];
    std::snprintf(text, sizeof text, "%02u:%02u:%02u:%02u", t >> 24, (t >> 16) & 0xFF, (t >> 8) & 0xFF, t & 0xFF);
    return text;
}

std::string CellText(HWND list, int row, int column)
{
    char text[512] = "";
    ListView_GetItemText(list, row, column, text, sizeof text);
    return text;
}

uint32_t DeckPosition()
{
    uint32_t position = 0;
    VirtualDeck::RequestProc(HOSTREQ_GET_POSITION, reinterpret_cast<intptr_t>(&position));
    return position;
}

} // namespace

TEST(HostEndToEnd, DeckScansCapturesAndPreviewsDvTapes)
{
    const char* dir = std::getenv("QV_DV_DIR");  // the tapes, and the captures for the ffprobe check
    ASSERT_NE(dir, nullptr);
    const DvTapeCase cases[] = {{"pal", 0, 2, kPal}, {"pal", 4, 2, kPal}, {"ntsc", 0, 0, kNtsc}};
    AppDataDir();
    for (const DvTapeCase& c : cases) {
        std::string name = std::string(c.tape) + (c.quickSpeed ? "-quick" : ""), captures = dir + ("\\captures-" + name);
        SCOPED_TRACE(name);
        DvTape tape;
        ASSERT_TRUE(tape.Open(std::string(dir) + "\\" + c.tape + ".dv")) << tape.Error();
        EXPECT_EQ(tape.TvStandard(), c.tvStandard);
        CreateDirectoryA(captures.c_str(), nullptr);
        WriteIni("PSCaptureFileName", (captures + "\\Tape.avi").c_str());
        WriteIni("QuickScanSpeed", std::to_string(c.quickSpeed).c_str());
        VirtualDeck deck(600, tape);
        PreScanInitInfo info = MakeInitInfo(tape.CaptureExtension(), tape.TvStandard(), "");
        info.pfnHostRequest = &VirtualDeck::RequestProc;
        ASSERT_EQ(qvPreScanInit(&info), 1);
        HWND dlg = qvShowPreScanDlg(nullptr), list = GetDlgItem(dlg, IDC_SCENE_LIST);
        PumpFor(300);  // the device check
        SendMessageA(GetDlgItem(dlg, IDC_START_SCAN), BM_CLICK, 0, 0);
        EXPECT_TRUE(PumpUntil([&] { return !deck.Scanning(); }, 20000));
        PumpFor(200);

        ASSERT_EQ(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0), static_cast<LRESULT>(c.recordings.size()));
        for (int row = 0; row < static_cast<int>(c.recordings.size()); ++row) {
            const TapeRecording& r = c.recordings[static_cast<size_t>(row)];
            SCOPED_TRACE(row);
            EXPECT_EQ(CellText(list, row, 2).rfind("In: " + TcText(r.in) + "\nOut: " + TcText(r.out), 0), 0u);
            EXPECT_EQ(CellText(list, row, 3), r.date);
            // Go to the scene's start: the module asks for its device position.
            ui::ClickCell(list, row, 2);
            SendMessageA(dlg, WM_COMMAND, ID_GOTO_SCENE_START, 0);
            EXPECT_EQ(DeckPosition(), r.in);
            uint32_t out = r.out;  // and its end by time code, from wherever the deck is
            VirtualDeck::RequestProc(HOSTREQ_SEEK_TIMECODE, reinterpret_cast<intptr_t>(&out));
            EXPECT_EQ(DeckPosition(), r.out);
        }

        // The first and third scenes marked by their boxes and captured; the
        // third previews over its thumbnail until the player says it ended.
        for (int row : {0, 2}) ui::ClickCell(list, row, 0);
        ui::Press(dlg, IDC_CAPTURE);
        EXPECT_EQ(deck.FilesCaptured(), 2);
        EXPECT_NE(CellText(list, 2, 5).find(captures + "\\Tape 002.dv"), std::string::npos) << CellText(list, 2, 5);
        ui::ClickCell(list, 2, 2);
        ui::Press(dlg, IDC_PREVIEW);
        EXPECT_TRUE(IsWindowVisible(GetDlgItem(dlg, IDC_PREVIEW_VIDEO)));
        EXPECT_TRUE(PumpUntil([&] { return !IsWindowVisible(GetDlgItem(dlg, IDC_PREVIEW_VIDEO)); }, 10000));

        ModalResponder responder;
        responder.ExpectMessageRes(IDS_ASK_SAVE_CHANGES, IDNO);
        qvForceToStopPreScan(1);
        responder.Verify();
        EXPECT_TRUE(deck.DialogClosed() && qvPreScanUnInit() == 1);
    }
}
