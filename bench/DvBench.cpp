// The DV reader's speed over a long tape file, natively: frames a second
// found and described (with and without their bytes), against reading the
// same file with fread in pieces of a megabyte, which is as fast as any
// reader of the file can go; and DC pictures a second against the tape's
// own frame rate.  Prints the result lines scripts/bench.sh makes a table of.
// Usage: bench_dv TAPE.dv [--smoke] [--reps N]
#include "dv/DvStream.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

double Now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

struct Stats {
    double min, median, max;
};
Stats StatsOf(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    size_t n = v.size();
    return {v.front(), n % 2 ? v[n / 2] : (v[n / 2 - 1] + v[n / 2]) / 2, v.back()};
}

// One line of the table, as bench/BenchSupport.cpp writes them:
// ROW, figure, unit, min, median, max, baseline, min, median, max, ratio, target, verdict
void Report(const std::string& figure, const char* unit, const Stats& value, const char* baseline, const Stats& base)
{
    std::printf("ROW\t%s\t%s\t%.6g\t%.6g\t%.6g\t%s\t%.6g\t%.6g\t%.6g\t%.2f\t-\t\n", figure.c_str(), unit, value.min,
                value.median, value.max, baseline, base.min, base.median, base.max, value.median / base.median);
}

// Bytes of the file read with fread; -1 when it cannot be read.
double PlainRead(const char* path)
{
    FILE* f = std::fopen(path, "rb");
    if (!f) return -1;
    std::vector<char> buffer(1 << 20);
    double bytes = 0;
    for (size_t got; (got = std::fread(buffer.data(), 1, buffer.size(), f)) > 0;) bytes += double(got);
    std::fclose(f);
    return bytes;
}

// Frames the reader finds in the file, with their bytes or without.
uint64_t ReadFrames(const char* path, bool withBytes, uint64_t& recordings)
{
    dv::Reader reader;
    if (!reader.Open(path)) return 0;
    dv::RecordingFinder finder;
    dv::FrameInfo info;
    std::vector<uint8_t> bytes;
    uint64_t frames = 0;
    while (reader.Next(info, withBytes ? &bytes : nullptr)) ++frames, finder.Add(info);
    recordings = finder.Recordings().size();
    return frames;
}

} // namespace

int main(int argc, char** argv)
{
    const char* path = nullptr;
    int reps = 5;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--smoke") == 0) reps = 1;
        else if (std::strcmp(argv[i], "--reps") == 0 && i + 1 < argc) reps = std::max(1, std::atoi(argv[++i]));
        else path = argv[i];
    }
    dv::Reader probe;
    if (!path || !probe.Open(path)) {
        std::fprintf(stderr, "bench_dv: %s\n", path ? probe.Error().c_str() : "usage: bench_dv TAPE.dv [--smoke]");
        return 1;
    }
    const double frameBytes = double(dv::FrameBytes(probe.StreamSystem()));
    const double rate = dv::TimeCodeRate(probe.StreamSystem()) == 30 ? 30000.0 / 1001 : 25;

    std::vector<double> plain, described, copied, pictures;
    uint64_t frames = 0, recordings = 0;
    for (int r = 0; r < reps; ++r) {
        double t0 = Now(), bytes = PlainRead(path), t1 = Now();
        frames = ReadFrames(path, false, recordings);
        double t2 = Now();
        ReadFrames(path, true, recordings);
        double t3 = Now();
        if (bytes <= 0 || frames == 0) return 1;
        plain.push_back(bytes / frameBytes / (t1 - t0));
        described.push_back(double(frames) / (t2 - t1));
        copied.push_back(double(frames) / (t3 - t2));

        // Pictures of the first 500 frames, held in memory.
        dv::Reader reader;
        reader.Open(path);
        std::vector<std::vector<uint8_t>> held;
        dv::FrameInfo info;
        for (std::vector<uint8_t> b; held.size() < 500 && reader.Next(info, &b);) held.push_back(b);
        dv::Picture picture;
        double t4 = Now();
        for (const auto& b : held)
            if (!dv::DecodePicture(b.data(), b.size(), picture)) return 1;
        pictures.push_back(double(held.size()) / (Now() - t4));
    }
    char size[96];
    std::snprintf(size, sizeof size, "%.1f-minute %s tape", double(frames) / rate / 60,
                  frameBytes == 144000 ? "625/50" : "525/60");
    const char* fread = "fread of the same file, 1 MiB pieces";
    Report(std::string("DV reader: frames found and described, ") + size, "frames/s", StatsOf(described), fread,
           StatsOf(plain));
    Report(std::string("DV reader: frames with their bytes, ") + size, "frames/s", StatsOf(copied), fread,
           StatsOf(plain));
    std::vector<double> realTime(pictures.size(), rate);
    Report("DC pictures decoded from frames in memory", "pictures/s", StatsOf(pictures), "the tape's frame rate",
           StatsOf(realTime));
    std::printf("NOTE\tDV reader: %llu frames in %llu recordings, %.2f GB, read natively (-O2) from the page cache.\n",
                static_cast<unsigned long long>(frames), static_cast<unsigned long long>(recordings),
                double(frames) * frameBytes / 1e9);
    return 0;
}
