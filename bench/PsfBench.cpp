// Scene list files: saving the dialog's list and opening a file into it,
// through the module's own file code (the file dialogs are left out: the
// benchmark names the file as the dialog would), against the platform's
// CopyFileA of the same file.  Also reading a file through the reader alone,
// to show what the list's rows add, and what the platform needs to hold a
// file's bytes in memory and to replace a file safely.
#include "BenchSupport.h"

#include "dialog/PreScanDlg.h"
#include "platform/BoundedCopy.h"
#include "platform/File.h"
#include "platform/MemoryBlock.h"
#include "sceneops/SceneListCodec.h"
#include "session/Session.h"

#include <commctrl.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

using namespace bench;

namespace {

// A synthetic list written straight through the writer: the file to open.
class SyntheticSource : public qv::SceneListSource {
public:
    explicit SyntheticSource(int count) : m_count(count), m_thumb(MakeThumbnail(3))
    {
        std::memcpy(&m_header, &m_thumb.header, sizeof m_header);
    }
    int Count() const override { return m_count; }
    SceneRecord* Record(int i) override
    {
        SceneInfo scene = MakeScene(i, true, static_cast<uint32_t>(m_thumb.bits.size()));
        std::memset(&m_record, 0, sizeof m_record);
        std::memcpy(&m_record, &scene, sizeof scene);
        m_record.nIndex = i;
        qv::FormatBounded(m_record.szComment, sizeof m_record.szComment, "Scene %d", i);
        return &m_record;
    }
    const ThumbHeader* Header(int) const override { return &m_header; }
    const uint8_t* Bits(int) const override { return m_thumb.bits.data(); }

private:
    int m_count;
    Thumbnail m_thumb;
    ThumbHeader m_header;
    SceneRecord m_record;
};

bool WriteSynthetic(const std::string& path, int count)
{
    qv::File file;
    if (!file.Create(path.c_str())) return false;
    SyntheticSource source(count);
    qv::SceneListTexts texts;
    texts.tapeName = "Benchmark tape";
    return qv::WriteSceneList(file, texts, source);
}

struct FreeingSink : qv::SceneListSink {
    int entries = 0;
    void OnHeader(const qv::SceneListInfo&) override {}
    bool OnEntry(int, SceneRecord* r, ThumbHeader* h, uint8_t* b) override
    {
        ++entries;
        qv::FreeBlock(r);
        qv::FreeBlock(h);
        qv::FreeBlock(b);
        return true;
    }
};

double TimeCopy(const std::string& from, const std::string& to)
{
    DeleteFileA(to.c_str());
    double t0 = NowSeconds();
    BOOL ok = CopyFileA(from.c_str(), to.c_str(), FALSE);
    double t = NowSeconds() - t0;
    DeleteFileA(to.c_str());
    return ok ? t : -1;
}

// A copy to a new file that then replaces the old one (which must exist): how
// the platform saves a file without ever destroying the previous one.
double TimeSafeCopy(const std::string& from, const std::string& to)
{
    std::string fresh = to + "~";
    CopyFileA(from.c_str(), to.c_str(), FALSE);
    double t0 = NowSeconds();
    BOOL ok = CopyFileA(from.c_str(), fresh.c_str(), FALSE) &&
              MoveFileExA(fresh.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
    double t = NowSeconds() - t0;
    DeleteFileA(to.c_str());
    return ok ? t : -1;
}

// The file's bytes read into fresh memory, 64 KiB a call.
double TimeReadIntoMemory(const std::string& path)
{
    double t0 = NowSeconds();
    HANDLE h = CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    LARGE_INTEGER size = {};
    GetFileSizeEx(h, &size);
    auto* bytes = static_cast<uint8_t*>(VirtualAlloc(nullptr, size.QuadPart, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    DWORD got = 0;
    for (LONGLONG at = 0; bytes && at < size.QuadPart; at += got)
        if (!ReadFile(h, bytes + at, 64 << 10, &got, nullptr) || !got) break;
    CloseHandle(h);
    double t = NowSeconds() - t0;
    VirtualFree(bytes, 0, MEM_RELEASE);
    return t;
}

Row RowOf(const std::string& figure, const std::vector<double>& value, const std::vector<double>& base, double limit)
{
    Row row;
    row.figure = figure;
    row.unit = "ms";
    row.value = StatsOf(value);
    row.baseline = "CopyFileA of the same file";
    row.base = StatsOf(base);
    if (limit > 0) {
        char target[32];
        std::snprintf(target, sizeof target, "ratio <= %.1f", limit);
        row.target = target;
        row.met = row.value.median <= limit * row.base.median;
    }
    return row;
}

} // namespace

int main(int argc, char** argv)
{
    Options opt = ParseOptions(argc, argv);
    InitCommonControls();
    std::string folder = StartBenchSession("qv-bench-psf");
    HWND host = CreateHostWindow();
    if (!qvShowPreScanDlg(host) || !g_session.pDialog) return 1;
    CPreScanDlg& dlg = *g_session.pDialog;
    PumpPending();

    std::vector<int> sizes = opt.smoke ? std::vector<int>{1000} : std::vector<int>{1000, 32767};
    double openAtFirst = 0, saveAtFirst = 0;
    for (int n : sizes) {
        std::string source = folder + "\\source.psf", saved = folder + "\\saved.psf", copy = folder + "\\copy.psf";
        if (!WriteSynthetic(source, n)) return 1;
        std::vector<double> open, read, save, copyTimes, safeCopy, intoMemory;
        for (int r = 0; r < opt.reps; ++r) {
            qv::CopyBounded(g_session.szSceneListFile, source.c_str());
            double t0 = NowSeconds();
            dlg.OpenChosenSceneList();
            open.push_back((NowSeconds() - t0) * 1e3);
            if (dlg.m_nSceneCount != n) {
                std::fprintf(stderr, "opened %d of %d scenes\n", dlg.m_nSceneCount.load(), n);
                return 1;
            }
            {
                qv::File file;
                FreeingSink sink;
                t0 = NowSeconds();
                file.OpenRead(source.c_str());
                qv::ReadSceneList(file, g_session.nTvStandard, sink);
                read.push_back((NowSeconds() - t0) * 1e3);
                if (sink.entries != n) return 1;
            }
            qv::CopyBounded(g_session.szSceneListFile, saved.c_str());
            t0 = NowSeconds();
            int written = dlg.WriteSceneListFile();
            save.push_back((NowSeconds() - t0) * 1e3);
            if (!written) return 1;
            copyTimes.push_back(TimeCopy(saved, copy) * 1e3);
            safeCopy.push_back(TimeSafeCopy(saved, copy) * 1e3);
            intoMemory.push_back(TimeReadIntoMemory(saved) * 1e3);
        }
        std::string size = std::to_string(n) + " scenes";
        Row saveRow = RowOf("Save the list, " + size, save, copyTimes, 1.3);
        Report(saveRow);
        Row safe = RowOf(saveRow.figure, save, safeCopy, 0);
        safe.baseline = "CopyFileA to a new file that then replaces the old one (MoveFileExA)";
        Report(safe);
        Row openRow = RowOf("Open a list file into the dialog, " + size, open, copyTimes, 1.3);
        Report(openRow);
        Row held = RowOf(openRow.figure, open, intoMemory, 0);
        held.baseline = "ReadFile of the same file into fresh memory";
        Report(held);
        Report(RowOf("Read a list file, reader alone, " + size, read, copyTimes, 0));
        auto perScene = [n](const Stats& s) { return Stats{s.min * 1e3 / n, s.median * 1e3 / n, s.max * 1e3 / n}; };
        if (n == sizes.front()) {
            openAtFirst = perScene(openRow.value).median;
            saveAtFirst = perScene(saveRow.value).median;
        } else {
            ReportPerSceneGrowth("Open cost", n, sizes.front(), perScene(openRow.value), openAtFirst);
            ReportPerSceneGrowth("Save cost", n, sizes.front(), perScene(saveRow.value), saveAtFirst);
        }
        WIN32_FILE_ATTRIBUTE_DATA attr;
        if (GetFileAttributesExA(saved.c_str(), GetFileExInfoStandard, &attr))
            Note(size + ": " + std::to_string((static_cast<uint64_t>(attr.nFileSizeHigh) << 32 | attr.nFileSizeLow) >> 20) +
                 " MiB per file");
        DeleteFileA(source.c_str());
        DeleteFileA(saved.c_str());
    }
    {
        MessageBoxAnswerer answerNo(IDNO);
        qvForceToStopPreScan(1);
    }
    DestroyWindow(host);
    qvPreScanUnInit();
    return 0;
}
