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
    ASSERT_NE(g_dll, nullptr);
    // The export directory lists the fourteen exports and nothing else.
    auto* base = reinterpret_cast<const uint8_t*>(g_dll);
    auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + reinterpret_cast<const IMAGE_DOS_HEADER*>(base)->e_lfanew);
    auto* dir = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(
        base + nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT].VirtualAddress);
    EXPECT_TRUE(dir->NumberOfFunctions == 14u && dir->NumberOfNames == 14u);
    for (const char* name : {"qvForceToStopPreScan", "qvGetCurrentSceneNumber", "qvGetLibFolderFromPreScan",
                             "qvGetPreScanIndexFileName", "qvMinimizePreScanDlg", "qvPSClearUncompleteScene",
                             "qvPreScanInit", "qvPreScanUnInit", "qvRestorePreScanDlg", "qvSetCapSceneFileName",
                             "qvSetSceneBitmapData", "qvSetSceneDataBegin", "qvSetSceneDataEnd", "qvShowPreScanDlg"})
        EXPECT_NE(GetProcAddress(g_dll, name), nullptr) << name;

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

    ModalResponder responder;
    responder.ExpectMessageRes(IDS_ASK_SAVE_CHANGES, IDNO);
    QV(qvForceToStopPreScan)(1);
    responder.Verify();
    EXPECT_TRUE(!IsWindow(dlg) && host.Codes().back() == HOSTREQ_DIALOG_CLOSED);
    EXPECT_TRUE(QV(qvGetCurrentSceneNumber)() == 0 && QV(qvPreScanUnInit)() == 1);
    DestroyWindow(owner);
}

// The reference host's deck playing DV tapes that ffmpeg made (tests/dv/make-tapes.sh):
// each recording is a scene with the frames' own time codes and dates, the
// deck finds the frames the module asks for, capture writes each marked scene
// as a raw DV file (tests/e2e/dv-captures.sh reads them with ffprobe), and a
// captured scene previews until the player says it has ended.
namespace {

struct TapeRecording { uint32_t firstFrame, in, out; const char* date; };
struct DvTapeCase {
    const char* tape;
    int quickSpeed;  // 0: a normal scan
    int tvStandard;
    std::vector<TapeRecording> recordings;
};

const std::vector<TapeRecording> kPal = {
    {0, Tc(0, 10, 0, 0), Tc(0, 10, 1, 24), "2004/ 5/ 1\n 10:00:00"},
    {50, Tc(0, 10, 2, 0), Tc(0, 10, 2, 24), "2004/ 5/ 2\n 09:15:30"},
    {75, Tc(0, 30, 0, 0), Tc(0, 30, 1, 11), "2004/ 6/12\n 18:45:00"},
    {112, Tc(0, 0, 10, 0), Tc(0, 0, 10, 24), "2005/ 1/ 3\n 08:00:59"},
};
// Drop-frame: 00:10:00 keeps frames 0 and 1, 01:01:00 starts at frame 2.
const std::vector<TapeRecording> kNtsc = {
    {0, Tc(0, 9, 59, 20), Tc(0, 10, 1, 3), "2006/ 7/ 4\n 12:00:00"},
    {44, Tc(1, 0, 59, 25), Tc(1, 1, 0, 25), "2006/ 7/ 5\n 23:59:59"},
    {73, Tc(2, 0, 0, 0), Tc(2, 0, 0, 28), "2006/ 7/ 9\n 07:30:00"},
};

std::string TimesText(const TapeRecording& r)
{
    char text[64];
    std::snprintf(text, sizeof text, "In: %02u:%02u:%02u:%02u\nOut: %02u:%02u:%02u:%02u", r.in >> 24, (r.in >> 16) & 0xFF,
                  (r.in >> 8) & 0xFF, r.in & 0xFF, r.out >> 24, (r.out >> 16) & 0xFF, (r.out >> 8) & 0xFF, r.out & 0xFF);
    return text;
}

std::string CellText(HWND list, int row, int column)
{
    char text[512] = "";
    LVITEMA item = {};
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = sizeof text;
    SendMessageA(list, LVM_GETITEMTEXTA, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
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
        std::string name = std::string(c.tape) + (c.quickSpeed ? "-quick" : "");
        SCOPED_TRACE(name);
        DvTape tape;
        ASSERT_TRUE(tape.Open(std::string(dir) + "\\" + c.tape + ".dv")) << tape.Error();
        std::string captures = std::string(dir) + "\\captures-" + name;
        CreateDirectoryA(captures.c_str(), nullptr);
        for (const char* file : {"\\Tape 001.dv", "\\Tape 002.dv"}) DeleteFileA((captures + file).c_str());
        WriteIni("PSCaptureFileName", (captures + "\\Tape.avi").c_str());
        WriteIni("QuickScanSpeed", std::to_string(c.quickSpeed).c_str());
        HWND owner = CreateWindowA("STATIC", "host", WS_OVERLAPPEDWINDOW, 0, 0, 300, 200, nullptr, nullptr, nullptr, nullptr);
        VirtualDeck deck(600, tape);
        PreScanInitInfo info = MakeInitInfo(tape.CaptureExtension(), tape.TvStandard(), "");
        info.pfnHostRequest = &VirtualDeck::RequestProc;
        ASSERT_EQ(qvPreScanInit(&info), 1);
        HWND dlg = qvShowPreScanDlg(owner);
        ASSERT_NE(dlg, nullptr);
        HWND list = GetDlgItem(dlg, IDC_SCENE_LIST);
        PumpFor(300);  // the device check
        SendMessageA(GetDlgItem(dlg, IDC_START_SCAN), BM_CLICK, 0, 0);
        EXPECT_TRUE(PumpUntil([&] { return !deck.Scanning(); }, 20000));
        PumpFor(200);

        ASSERT_EQ(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0), static_cast<LRESULT>(c.recordings.size()));
        for (size_t i = 0; i < c.recordings.size(); ++i) {
            const TapeRecording& r = c.recordings[i];
            SCOPED_TRACE(i);
            int row = static_cast<int>(i);
            EXPECT_EQ(CellText(list, row, 2).rfind(TimesText(r), 0), 0u) << CellText(list, row, 2);
            EXPECT_EQ(CellText(list, row, 3), r.date);
            // Go to the scene's start: the module asks for its device position.
            ui::ClickCell(list, row, 2);
            SendMessageA(dlg, WM_COMMAND, ID_GOTO_SCENE_START, 0);
            EXPECT_EQ(DeckPosition(), r.in);
            uint32_t out = r.out;  // and its end by time code, from wherever the deck is
            VirtualDeck::RequestProc(HOSTREQ_SEEK_TIMECODE, reinterpret_cast<intptr_t>(&out));
            EXPECT_EQ(DeckPosition(), r.out);
        }

        // The first and third scenes marked by their boxes and captured.
        ui::ClickCell(list, 0, 0);
        ui::ClickCell(list, 2, 0);
        SendMessageA(GetDlgItem(dlg, IDC_CAPTURE), BM_CLICK, 0, 0);
        PumpFor(200);
        EXPECT_EQ(deck.FilesCaptured(), 2);
        EXPECT_NE(CellText(list, 2, 5).find(captures + "\\Tape 002.dv"), std::string::npos) << CellText(list, 2, 5);

        // The captured third scene previews over its thumbnail to its end.
        ui::ClickCell(list, 2, 2);
        SendMessageA(GetDlgItem(dlg, IDC_PREVIEW), BM_CLICK, 0, 0);
        PumpPending();
        HWND video = GetDlgItem(dlg, IDC_PREVIEW_VIDEO);
        EXPECT_TRUE(IsWindowVisible(video));
        EXPECT_TRUE(PumpUntil([&] { return !IsWindowVisible(video); }, 10000));

        ModalResponder responder;
        responder.ExpectMessageRes(IDS_ASK_SAVE_CHANGES, IDNO);
        qvForceToStopPreScan(1);
        responder.Verify();
        EXPECT_TRUE(deck.DialogClosed() && qvPreScanUnInit() == 1);
        DestroyWindow(owner);
    }
}
