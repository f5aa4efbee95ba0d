// Shared pieces of the benchmark programs: timing with repetitions, the
// process's private bytes, a message pump, a thumbnail of the size hosts
// deliver, and the result lines scripts/bench.sh turns into a table.
//
// Every figure is reported with its baseline (what the platform itself
// needs for the comparable job, measured in the same run) and the ratio.
#pragma once

#include "qvPreScan.h"
#include "support/Pump.h"

#include <windows.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace bench {

struct Options {
    bool smoke = false;  // the smallest size, one repetition: CI keeps the programs alive
    int reps = 5;
    int onlySize = 0;  // --size N: that size alone (to look into one figure)
};
Options ParseOptions(int argc, char** argv);

double NowSeconds();

// Minimum, median and maximum of a set of samples.
struct Stats {
    double min = 0, median = 0, max = 0;
};
Stats StatsOf(std::vector<double> samples);

// One line of the table: a figure, its baseline and their ratio (medians).
// `target` names the goal in words ("<= 1.5"), empty when there is none;
// `met` says whether it was reached.
struct Row {
    std::string figure, unit;
    Stats value;
    std::string baseline;
    Stats base;
    bool hasBaseline = true;
    std::string target;
    bool met = true;
};
void Report(const Row& row);
// A figure's cost per scene at n scenes against the same at the first size:
// per-scene costs must stay flat (within 1.3x).
void ReportPerSceneGrowth(const std::string& what, int n, int nFirst, const Stats& perScene, double perSceneAtFirst);
// A line of free text under the table (how a figure was taken).
void Note(const std::string& text);

// Committed private bytes of this process (what Windows calls private bytes).
uint64_t PrivateBytes();

// The message pump of the tests (tests/support/Pump.h).
using qvtest::PumpPending;
using qvtest::PumpUntil;

// Answers every message box of this thread with `button` while it lives.
class MessageBoxAnswerer {
public:
    explicit MessageBoxAnswerer(int button);
    ~MessageBoxAnswerer();
    MessageBoxAnswerer(const MessageBoxAnswerer&) = delete;
    MessageBoxAnswerer& operator=(const MessageBoxAnswerer&) = delete;

private:
    static LRESULT CALLBACK CbtProc(int code, WPARAM wp, LPARAM lp);
    HHOOK m_hook = nullptr;
};

// An 80x60 24-bit thumbnail, a different colour for each `seed`.
struct Thumbnail {
    BITMAPINFOHEADER header;
    std::vector<uint8_t> bits;
};
Thumbnail MakeThumbnail(int seed);

// A scene descriptor: in and out as packed time codes of scene `n`.
SceneInfo MakeScene(int n, bool ended, uint32_t thumbSize);

// Starts a session as a host does, with the module's settings file in a
// fresh folder under %TEMP% named `name`: `values` go into its "MainSec",
// and the capture folder is that folder (it exists, so no question about
// creating it comes up).  Returns the folder.
std::string StartBenchSession(const char* name, const std::vector<std::pair<std::string, std::string>>& values = {});
// A visible window of the host's own, to own the dialog.
HWND CreateHostWindow();

// The host's callback for benchmarks: scans start, the device is ready, and
// everything else is refused.
int32_t BenchHost(int32_t code, intptr_t arg);
PreScanInitInfo BenchInitInfo();

} // namespace bench
