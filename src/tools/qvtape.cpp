// qvtape: lists the recordings of a raw DV tape file (.dv, .dif) as the
// pre-scan finds them: frames, time codes in and out, recording date and
// time.  With --pictures DIR it also writes each recording's thumbnail
// there as DIR/recording-N.ppm.  A file that is not DV is refused and the
// exit status is not 0.
#include "dv/DvStream.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

std::string TimeCodeText(const dv::FrameInfo& f)
{
    if (!f.hasTimeCode) return "--:--:--:--";
    char text[16];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d%c%02d", f.hours, f.minutes, f.seconds, f.dropFrame ? ';' : ':',
                  f.frames);
    return text;
}

std::string RecordedText(const dv::FrameInfo& f)
{
    const dv::RecordedAt& t = f.recorded;
    char date[16] = "----------", time[16] = "--:--:--";
    if (f.hasDate) std::snprintf(date, sizeof date, "%04d-%02d-%02d", t.year, t.month, t.day);
    if (f.hasTime) std::snprintf(time, sizeof time, "%02d:%02d:%02d", t.hour, t.minute, t.second);
    return std::string(date) + " " + time;
}

// The picture as a PPM file: top row first, RGB.
bool WritePpm(const std::string& path, const dv::Picture& picture)
{
    FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) return false;
    std::fprintf(f, "P6\n%d %d\n255\n", picture.width, picture.height);
    std::vector<uint8_t> row(static_cast<size_t>(picture.width) * 3);
    for (int y = picture.height - 1; y >= 0; --y) {
        const uint8_t* bgr = picture.bits.data() + picture.Stride() * y;
        for (int x = 0; x < picture.width; ++x)
            row[x * 3] = bgr[x * 3 + 2], row[x * 3 + 1] = bgr[x * 3 + 1], row[x * 3 + 2] = bgr[x * 3];
        std::fwrite(row.data(), 1, row.size(), f);
    }
    return std::fclose(f) == 0;
}

} // namespace

int main(int argc, char** argv)
{
    const char* path = nullptr;
    const char* pictures = nullptr;
    bool usage = false;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--pictures") == 0 && i + 1 < argc) pictures = argv[++i];
        else if (argv[i][0] != '-' && !path) path = argv[i];
        else usage = true;
    }
    if (usage || !path) {
        std::fprintf(stderr, "usage: qvtape FILE.dv [--pictures DIR]\n");
        return 2;
    }
    dv::Reader reader;
    if (!reader.Open(path)) {
        std::fprintf(stderr, "qvtape: %s\n", reader.Error().c_str());
        return 1;
    }
    dv::RecordingFinder finder;
    dv::FrameInfo info;
    std::vector<uint64_t> offsets;
    uint64_t damaged = 0;
    while (reader.Next(info)) {
        offsets.push_back(info.offset);
        damaged += info.damaged;
        finder.Add(info);
    }
    const auto& recordings = finder.Recordings();
    std::printf("tape: %s, %s, %zu frames (%llu damaged), %zu recordings\n", path,
                reader.StreamSystem() == dv::System::Pal625 ? "625/50" : "525/60", offsets.size(),
                static_cast<unsigned long long>(damaged), recordings.size());
    int failures = 0;
    for (size_t i = 0; i < recordings.size(); ++i) {
        const dv::Recording& r = recordings[i];
        std::printf("recording %zu: frames %llu-%llu, time code %s to %s, recorded %s\n", i + 1,
                    static_cast<unsigned long long>(r.firstFrame), static_cast<unsigned long long>(r.lastFrame),
                    TimeCodeText(r.first).c_str(), TimeCodeText(r.last).c_str(), RecordedText(r.first).c_str());
        if (!pictures) continue;
        std::vector<uint8_t> bytes;
        dv::Picture picture;
        std::string file = std::string(pictures) + "/recording-" + std::to_string(i + 1) + ".ppm";
        if (!reader.SeekTo(offsets[r.pictureFrame]) || !reader.Next(info, &bytes) ||
            !dv::DecodePicture(bytes.data(), bytes.size(), picture) || !WritePpm(file, picture)) {
            std::fprintf(stderr, "qvtape: no picture written to %s\n", file.c_str());
            ++failures;
        }
    }
    return failures ? 1 : 0;
}
