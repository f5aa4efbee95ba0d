// qvrefhost: the reference capture host.  It loads the pre-scan module and
// its resource library as a real host does, drives a virtual DV deck, and
// answers every request of the module.
//
//   qvrefhost                       the pre-scan dialog over a small host window
//   qvrefhost --headless --out DIR  scan the tape, mark, capture, save, take a screenshot, close
//   options: --tape FILE.dv (play a raw DV file instead of the synthetic tape)
//            --speed N (tape speed factor while scanning, default 600)
//            --quick N (quick scan at speed N)   --fault F (device flag F off)
#include "Automation.h"
#include "DvTape.h"
#include "SyntheticTape.h"
#include "VirtualDeck.h"
#include "qvPreScan.h"

#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

struct Options {
    bool headless = false;
    std::string outDir = ".";
    std::string shotsDir;  // also take the documentation's screenshots here
    std::string tapeFile;  // a DV file to play; the synthetic tape when empty
    double speed = 600;
    int quick = 0;
    int fault = -1;
    std::string tapeName = "Summer 2003", listName = "summer";  // a DV tape: its file's name
};

LRESULT CALLBACK HostWndProc(HWND h, UINT msg, WPARAM wp, LPARAM lp)
{
    switch (msg) {
    case WM_PAINT: {
        PAINTSTRUCT ps;
        HDC dc = BeginPaint(h, &ps);
        RECT rc;
        GetClientRect(h, &rc);
        DrawTextA(dc, "Reference capture host - virtual DV deck", -1, &rc, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
        EndPaint(h, &ps);
        return 0;
    }
    case WM_CLOSE:
        PostQuitMessage(0);
        return 0;
    default:
        return DefWindowProcA(h, msg, wp, lp);
    }
}

HWND CreateHostWindow()
{
    WNDCLASSA wc = {};
    wc.lpfnWndProc = HostWndProc;
    wc.hInstance = GetModuleHandleA(nullptr);
    wc.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_APPWORKSPACE + 1);
    wc.lpszClassName = "qvRefHost";
    RegisterClassA(&wc);
    return CreateWindowA("qvRefHost", "Reference Capture Host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 1100, 760,
                         nullptr, nullptr, wc.hInstance, nullptr);
}

// The tape's capture format and TV standard go to the module with the rest.
PreScanInitInfo MakeInitInfo(const Tape& tape)
{
    PreScanInitInfo info;
    std::memset(&info, 0, sizeof info);
    info.hHost = GetModuleHandleA(nullptr);
    info.pfnHostRequest = &VirtualDeck::RequestProc;
    std::snprintf(info.szCaptureExt, sizeof info.szCaptureExt, "%s", tape.CaptureExtension());
    info.nTvStandard = tape.TvStandard();
    info.pszHelpFile = "qvrefhost.hlp";
    return info;
}

Options ParseOptions(int argc, char** argv)
{
    Options o;
    for (int i = 1; i < argc; ++i) {
        std::string a = argv[i];
        auto next = [&]() -> const char* { return i + 1 < argc ? argv[++i] : ""; };
        if (a == "--headless") o.headless = true;
        else if (a == "--out") o.outDir = next();
        else if (a == "--shots") o.shotsDir = next();
        else if (a == "--speed") o.speed = std::atof(next());
        else if (a == "--quick") o.quick = std::atoi(next());
        else if (a == "--fault") o.fault = std::atoi(next());
        else if (a == "--tape") o.tapeFile = next();
    }
    if (!o.tapeFile.empty()) {
        size_t slash = o.tapeFile.find_last_of("\\/:");
        o.listName = o.tapeFile.substr(slash == std::string::npos ? 0 : slash + 1);
        o.listName = o.listName.substr(0, o.listName.rfind('.'));
        o.tapeName = o.listName;
    }
    return o;
}

const int kTapeName = 12320, kStartScan = 12311, kCapture = 12323, kViewMode = 12322, kSceneList = 12317,
          kOpenList = 12318, kSaveList = 12319, kPreview = 12324, kMerge = 12315, kOptions = 12316;

void Shot(const Options& o, HWND dlg, const char* name)
{
    if (o.shotsDir.empty()) return;
    Pump(200);
    std::string path = o.shotsDir + "\\" + name + ".bmp";
    std::printf("screenshot: %s%s\n", path.c_str(), SaveWindowBitmap(dlg, path) ? "" : " (failed)");
}

int RunHeadless(const Options& o, HWND hostWindow, VirtualDeck& deck)
{
    DWORD start = GetTickCount();
    MessageBoxAnswerer answerer(IDNO);
    HWND dlg = qvShowPreScanDlg(hostWindow);
    if (!dlg) {
        std::fprintf(stderr, "the pre-scan dialog did not open\n");
        return 1;
    }
    HWND list = GetDlgItem(dlg, kSceneList);
    Pump(300);  // the device check
    SetDlgItemTextA(dlg, kTapeName, o.tapeName.c_str());
    ui::Press(dlg, kStartScan);
    while (deck.Scanning() && GetTickCount() - start < 120000) Pump(50);
    Pump(300);
    int scenes = qvGetCurrentSceneNumber();
    std::printf("scan finished: %d scenes found on the tape in %.1f s\n", scenes, (GetTickCount() - start) / 1000.0);

    // Mark three scenes by their check boxes and capture them.
    for (int row : {0, 2, 4}) ui::ClickCell(list, row, 0);
    ui::Press(dlg, kCapture);
    Pump(300);
    std::printf("captured: %d files into %s\n", deck.FilesCaptured(), deck.LastCaptureFolder().c_str());
    ui::ClickCell(list, 2, 2);
    // How long one full repaint of the visible rows takes (median of nine).
    {
        double ms[9];
        LARGE_INTEGER f, a, b;
        QueryPerformanceFrequency(&f);
        for (double& m : ms) {
            QueryPerformanceCounter(&a);
            RedrawWindow(list, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ERASE);
            QueryPerformanceCounter(&b);
            m = 1000.0 * (b.QuadPart - a.QuadPart) / f.QuadPart;
        }
        std::sort(ms, ms + 9);
        int rows = static_cast<int>(SendMessageA(list, LVM_GETCOUNTPERPAGE, 0, 0));
        std::printf("one repaint of the %d visible rows: %.2f ms (median of 9)\n", rows, ms[4]);
    }
    std::string shot = o.outDir + "\\prescan.bmp";
    bool saved = SaveWindowBitmap(dlg, shot);
    std::printf("screenshot: %s%s\n", shot.c_str(), saved ? "" : " (could not be written)");
    Shot(o, dlg, "thumbnails");

    if (!o.shotsDir.empty()) {
        ui::ClickCell(list, 6, 2);
        ui::ClickCell(list, 8, 2, true);
        Shot(o, dlg, "range");
        ui::DoubleClickCell(list, 7, 4);
        ui::Type(GetFocus(), "Sunset over the bay, the boat comes in");
        Shot(o, dlg, "editor");
        SendMessageA(GetFocus(), WM_CHAR, VK_RETURN, 1);
        ui::ClickCell(list, 7, 2);
        ui::Press(dlg, kViewMode);
        Shot(o, dlg, "compact");
        ui::Press(dlg, kViewMode);
        // A captured scene plays over its thumbnail.
        ui::ClickCell(list, 0, 2);
        ui::Press(dlg, kPreview);
        Pump(400);
        Shot(o, dlg, "preview");
        ui::Press(dlg, kPreview);
        // Scenes 10 to 12 merged: the split button offers itself.
        ui::ClickCell(list, 9, 2);
        ui::ClickCell(list, 11, 2, true);
        ui::Press(dlg, kMerge);
        ui::ClickCell(list, 9, 2);
        Shot(o, dlg, "merged");
        answerer.PhotographNextDialog(o.shotsDir + "\\options.bmp");
        ui::Press(dlg, kOptions);
        Pump(200);
    }

    // Save the list through the save dialog, then open it again through the open dialog.
    std::string listFile = o.outDir + "\\" + o.listName + ".psf";
    answerer.ChooseFile(listFile);
    ui::Press(dlg, kSaveList);
    Pump(300);
    answerer.ChooseFile(listFile, o.shotsDir.empty() ? "" : o.shotsDir + "\\open.bmp");
    ui::Press(dlg, kOpenList);
    Pump(300);
    std::printf("reopened: %d scenes from %s\n", qvGetCurrentSceneNumber(), listFile.c_str());

    char index[QV_MAX_PATH] = "";
    qvGetPreScanIndexFileName(index);
    std::printf("index file would be: %s\n", index);
    qvForceToStopPreScan(1);  // the host closes the dialog; the answerer declines saving
    Pump(100);
    std::printf("dialog closed: %s\n", deck.DialogClosed() ? "yes" : "no");
    return scenes > 0 && deck.DialogClosed() ? 0 : 1;
}

int RunInteractive(HWND hostWindow, VirtualDeck& deck)
{
    if (!qvShowPreScanDlg(hostWindow)) return 1;
    MSG msg;
    while (!deck.DialogClosed() && GetMessageA(&msg, nullptr, 0, 0) > 0) {
        TranslateMessage(&msg);
        DispatchMessageA(&msg);
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    Options o = ParseOptions(argc, argv);
    INITCOMMONCONTROLSEX icc = {sizeof icc, ICC_WIN95_CLASSES};
    InitCommonControlsEx(&icc);
    SyntheticTape synthetic;
    DvTape dvTape;
    Tape* tape = &synthetic;
    if (!o.tapeFile.empty()) {
        if (!dvTape.Open(o.tapeFile)) {
            std::fprintf(stderr, "%s\n", dvTape.Error().c_str());
            return 1;
        }
        tape = &dvTape;
        std::printf("tape %s: %u frames, %zu recordings, %d frames per second\n", o.tapeFile.c_str(),
                    tape->LengthInFrames(), tape->Scenes().size(), tape->FramesPerSecond());
    }
    HWND hostWindow = CreateHostWindow();
    VirtualDeck deck(o.speed, *tape);
    if (o.fault >= 0 && o.fault < 8) deck.SetFault(o.fault, true);

    PreScanInitInfo info = MakeInitInfo(*tape);
    if (!qvPreScanInit(&info)) {
        std::fprintf(stderr, "the module refused to initialise\n");
        return 1;
    }
    if (o.quick > 0) {
        // The quick-scan speed is the user's setting; the reference host sets it up front.
        char value[8];
        std::snprintf(value, sizeof value, "%d", o.quick);
        char ini[MAX_PATH];
        DWORD n = GetEnvironmentVariableA("QVPRESCAN_APPDATA", ini, sizeof ini);
        if (n && n < sizeof ini - 20) {
            std::strcat(ini, "\\qvPreScan.ini");
            WritePrivateProfileStringA("MainSec", "QuickScanSpeed", value, ini);
            qvPreScanInit(&info);
        }
    }
    std::printf("module initialised (capture extension %s, TV standard %d)\n", info.szCaptureExt, info.nTvStandard);
    int rc = o.headless ? RunHeadless(o, hostWindow, deck) : RunInteractive(hostWindow, deck);
    qvPreScanUnInit();
    DestroyWindow(hostWindow);
    return rc;
}
