// The reference host's deck on a long DV tape: the one pass that finds the
// tape's frames and recordings when it is loaded, and a quick scan at the
// deck's fastest speed into the pre-scan dialog, each against plain reads of
// the same bytes (the disk's and the C library's limit).
//   bench_deck [--smoke] [TAPE.dv]   (default: the test tape of QV_DV_DIR)
#include "BenchSupport.h"
#include "DvTape.h"
#include "ResourceIds.h"
#include "VirtualDeck.h"

#include <commctrl.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

using namespace bench;

namespace {

const uint32_t kFastestStride = 64;  // the deck's trick play at quick-scan speed 4

// Plain reads of the tape: every byte, or one frame in `stride`.
double ReadPlainly(const std::string& path, size_t frameBytes, uint32_t stride)
{
    double start = NowSeconds();
    HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    std::vector<char> buffer(stride == 1 ? 1 << 20 : frameBytes);
    DWORD got = 0;
    for (uint64_t at = 0;; at += stride == 1 ? buffer.size() : frameBytes * stride) {
        LARGE_INTEGER to;
        to.QuadPart = static_cast<LONGLONG>(at);
        SetFilePointerEx(file, to, nullptr, FILE_BEGIN);
        if (!ReadFile(file, buffer.data(), static_cast<DWORD>(buffer.size()), &got, nullptr) || got == 0) break;
    }
    CloseHandle(file);
    return NowSeconds() - start;
}

// A quick scan of the whole tape through the dialog's Start button; the
// seconds until the deck has passed the end and every recording is a row.
double QuickScan(DvTape& tape, size_t& rows)
{
    StartBenchSession("qvbench-deck", {{"QuickScanSpeed", "4"}});
    HWND host = CreateHostWindow();
    VirtualDeck deck(600, tape);
    PreScanInitInfo info = BenchInitInfo();
    info.pfnHostRequest = &VirtualDeck::RequestProc;
    std::snprintf(info.szCaptureExt, sizeof info.szCaptureExt, "%s", tape.CaptureExtension());
    info.nTvStandard = tape.TvStandard();
    qvPreScanInit(&info);
    HWND dlg = qvShowPreScanDlg(host);
    PumpUntil([] { return false; }, 300);  // the device check
    double start = NowSeconds();
    SendMessageA(GetDlgItem(dlg, IDC_START_SCAN), BM_CLICK, 0, 0);
    PumpPending();
    PumpUntil([&] { return !deck.Scanning(); }, 600000);
    double seconds = NowSeconds() - start;
    rows = static_cast<size_t>(SendMessageA(GetDlgItem(dlg, IDC_SCENE_LIST), LVM_GETITEMCOUNT, 0, 0));
    MessageBoxAnswerer no(IDNO);
    qvForceToStopPreScan(1);
    qvPreScanUnInit();
    DestroyWindow(host);
    return seconds;
}

} // namespace

int main(int argc, char** argv)
{
    Options o = ParseOptions(argc, argv);
    std::string path;
    for (int i = 1; i < argc; ++i) {
        if (!std::strcmp(argv[i], "--reps") || !std::strcmp(argv[i], "--size")) ++i;
        else if (argv[i][0] != '-') path = argv[i];
    }
    if (path.empty() && std::getenv("QV_DV_DIR")) path = std::string(std::getenv("QV_DV_DIR")) + "\\pal.dv";
    std::vector<double> index, indexBase, scan, scanBase;
    DvTape tape;
    for (int r = 0; r < o.reps; ++r) {
        DvTape fresh;
        double start = NowSeconds();
        if (!fresh.Open(path)) {
            std::fprintf(stderr, "%s\n", fresh.Error().c_str());
            return 1;
        }
        index.push_back(NowSeconds() - start);
        if (r == 0) tape.Open(path);
    }
    size_t frameBytes = dv::FrameBytes(tape.TvStandard() == 2 ? dv::System::Pal625 : dv::System::Ntsc525);
    size_t rows = 0;
    for (int r = 0; r < o.reps; ++r) {
        indexBase.push_back(ReadPlainly(path, frameBytes, 1));
        scan.push_back(QuickScan(tape, rows));
        scanBase.push_back(ReadPlainly(path, frameBytes, kFastestStride));
    }
    if (rows != tape.Scenes().size()) {
        std::fprintf(stderr, "the quick scan left %zu rows for %zu recordings\n", rows, tape.Scenes().size());
        return 1;
    }
    char what[160];
    double minutes = tape.LengthInFrames() / 60.0 / tape.FramesPerSecond();
    std::snprintf(what, sizeof what, "a %.0f-minute DV tape (%u frames, %zu recordings)", minutes,
                  tape.LengthInFrames(), tape.Scenes().size());
    Report({std::string("Load ") + what + ": its frames and recordings found", "s", StatsOf(index),
            "reading the file with ReadFile", StatsOf(indexBase)});
    Report({std::string("Quick scan of ") + what + " at the fastest speed, into the dialog", "s", StatsOf(scan),
            "ReadFile of the frames the head reads (1 in 64)", StatsOf(scanBase)});
    return 0;
}
