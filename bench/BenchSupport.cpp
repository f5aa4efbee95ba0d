#include "BenchSupport.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace bench {

Options ParseOptions(int argc, char** argv)
{
    Options o;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--smoke") == 0) o.smoke = true;
        else if (std::strcmp(argv[i], "--reps") == 0 && i + 1 < argc) o.reps = std::max(1, std::atoi(argv[++i]));
        else if (std::strcmp(argv[i], "--size") == 0 && i + 1 < argc) o.onlySize = std::max(1, std::atoi(argv[++i]));
    }
    if (o.smoke) o.reps = 1;
    return o;
}

double NowSeconds()
{
    static LARGE_INTEGER freq = [] {
        LARGE_INTEGER f;
        QueryPerformanceFrequency(&f);
        return f;
    }();
    LARGE_INTEGER now;
    QueryPerformanceCounter(&now);
    return static_cast<double>(now.QuadPart) / static_cast<double>(freq.QuadPart);
}

Stats StatsOf(std::vector<double> samples)
{
    Stats s;
    if (samples.empty()) return s;
    std::sort(samples.begin(), samples.end());
    s.min = samples.front();
    s.max = samples.back();
    size_t n = samples.size();
    s.median = n % 2 ? samples[n / 2] : (samples[n / 2 - 1] + samples[n / 2]) / 2;
    return s;
}

// One tab-separated line per figure, read by scripts/bench.sh:
// ROW, figure, unit, min, median, max, baseline, min, median, max, ratio, target, verdict
void Report(const Row& row)
{
    double ratio = row.hasBaseline && row.base.median > 0 ? row.value.median / row.base.median : 0;
    std::printf("ROW\t%s\t%s\t%.6g\t%.6g\t%.6g\t", row.figure.c_str(), row.unit.c_str(), row.value.min,
                row.value.median, row.value.max);
    if (row.hasBaseline)
        std::printf("%s\t%.6g\t%.6g\t%.6g\t%.2f\t", row.baseline.c_str(), row.base.min, row.base.median, row.base.max,
                    ratio);
    else
        std::printf("-\t\t\t\t\t");
    std::printf("%s\t%s\n", row.target.empty() ? "-" : row.target.c_str(),
                row.target.empty() ? "" : (row.met ? "met" : "MISSED"));
    std::fflush(stdout);
}

void ReportPerSceneGrowth(const std::string& what, int n, int nFirst, const Stats& perScene, double perSceneAtFirst)
{
    Row row;
    row.figure = what + " per scene at " + std::to_string(n) + " vs " + std::to_string(nFirst);
    row.unit = "us/scene";
    row.value = perScene;
    row.baseline = "per scene at " + std::to_string(nFirst);
    row.base = {perSceneAtFirst, perSceneAtFirst, perSceneAtFirst};
    row.target = "ratio <= 1.3";
    row.met = perScene.median <= 1.3 * perSceneAtFirst;
    Report(row);
}

void Note(const std::string& text)
{
    std::printf("NOTE\t%s\n", text.c_str());
    std::fflush(stdout);
}

// The sum of this process's private, committed regions (walked with
// VirtualQuery, which Wine answers from its own map of the address space).
uint64_t PrivateBytes()
{
    uint64_t total = 0;
    MEMORY_BASIC_INFORMATION mbi;
    const char* p = nullptr;
    while (VirtualQuery(p, &mbi, sizeof mbi) == sizeof mbi) {
        if (mbi.State == MEM_COMMIT && mbi.Type == MEM_PRIVATE) total += mbi.RegionSize;
        const char* next = static_cast<const char*>(mbi.BaseAddress) + mbi.RegionSize;
        if (next <= p) break;
        p = next;
    }
    return total;
}

namespace {
int g_answer = IDNO;
}

MessageBoxAnswerer::MessageBoxAnswerer(int button)
{
    g_answer = button;
    m_hook = SetWindowsHookExA(WH_CBT, &CbtProc, nullptr, GetCurrentThreadId());
}

MessageBoxAnswerer::~MessageBoxAnswerer()
{
    if (m_hook) UnhookWindowsHookEx(m_hook);
}

LRESULT CALLBACK MessageBoxAnswerer::CbtProc(int code, WPARAM wp, LPARAM lp)
{
    if (code == HCBT_ACTIVATE) {
        HWND box = reinterpret_cast<HWND>(wp);
        char cls[16] = "";
        GetClassNameA(box, cls, sizeof cls);
        if (std::strcmp(cls, "#32770") == 0 && GetDlgItem(box, 0xFFFF))
            PostMessageA(box, WM_COMMAND, MAKEWPARAM(g_answer, BN_CLICKED), 0);
    }
    return CallNextHookEx(nullptr, code, wp, lp);
}

Thumbnail MakeThumbnail(int seed)
{
    Thumbnail t;
    std::memset(&t.header, 0, sizeof t.header);
    t.header.biSize = sizeof t.header;
    t.header.biWidth = 80;
    t.header.biHeight = 60;
    t.header.biPlanes = 1;
    t.header.biBitCount = 24;
    t.header.biCompression = BI_RGB;
    t.header.biSizeImage = 80 * 3 * 60;
    t.bits.resize(t.header.biSizeImage);
    for (size_t i = 0; i < t.bits.size(); ++i) t.bits[i] = static_cast<uint8_t>((i * 7 + seed * 31) & 0xFF);
    return t;
}

SceneInfo MakeScene(int n, bool ended, uint32_t thumbSize)
{
    // Scene n starts n*4 seconds into the tape and lasts three seconds.
    auto tc = [](int seconds, int frames) {
        return static_cast<uint32_t>((seconds / 3600) << 24 | (seconds / 60 % 60) << 16 | (seconds % 60) << 8 | frames);
    };
    SceneInfo s;
    std::memset(&s, 0, sizeof s);
    s.dwTimeCodeIn = tc(n * 4, 0);
    s.dwTimeCodeOut = ended ? tc(n * 4 + 3, 0) : 0;
    s.stRecorded = {2026, 11, 1, 23, static_cast<uint16_t>(n / 3600 % 24), static_cast<uint16_t>(n / 60 % 60),
                    static_cast<uint16_t>(n % 60), 0};
    s.dwThumbSize = thumbSize;
    std::snprintf(s.szSceneFile, sizeof s.szSceneFile, "C:\\Captures\\Scan %05d.avi", n);
    s.dwPositionIn = s.dwPositionOut = QV_NO_POSITION;
    return s;
}

std::string StartBenchSession(const char* name, const std::vector<std::pair<std::string, std::string>>& values)
{
    char temp[MAX_PATH];
    GetTempPathA(sizeof temp, temp);
    std::string folder = std::string(temp) + name;
    CreateDirectoryA(folder.c_str(), nullptr);
    SetEnvironmentVariableA("QVPRESCAN_APPDATA", folder.c_str());
    std::string ini = folder + "\\qvPreScan.ini";
    DeleteFileA(ini.c_str());
    WritePrivateProfileStringA("MainSec", "PSCaptureFileName", (folder + "\\Scan.avi").c_str(), ini.c_str());
    for (const auto& kv : values) WritePrivateProfileStringA("MainSec", kv.first.c_str(), kv.second.c_str(), ini.c_str());
    PreScanInitInfo info = BenchInitInfo();
    qvPreScanInit(&info);
    return folder;
}

HWND CreateHostWindow()
{
    return CreateWindowA("STATIC", "bench host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 400, 300, nullptr, nullptr,
                         nullptr, nullptr);
}

int32_t BenchHost(int32_t code, intptr_t arg)
{
    if (code == HOSTREQ_GET_DEVICE_STATUS) {
        for (auto& f : reinterpret_cast<DeviceStatus*>(arg)->adwCondition) f = 1;
        return 1;
    }
    return code == HOSTREQ_START_SCAN || code == HOSTREQ_DIALOG_CLOSED ? 1 : 0;
}

PreScanInitInfo BenchInitInfo()
{
    PreScanInitInfo info;
    std::memset(&info, 0, sizeof info);
    info.pfnHostRequest = &BenchHost;
    std::memcpy(info.szCaptureExt, ".avi", 5);
    info.nTvStandard = 1;
    info.pszHelpFile = "";
    return info;
}

} // namespace bench
