// Fuzz target: any bytes as a DV stream must read without a crash or an
// overrun: each frame found, the recordings among them and each frame's
// picture.  The corpus replay checks what was read, down to how many frames
// told a time code, a date, a time of day and the record start mark.
#include "dv/DvStream.h"

#include <string>
#include <vector>

std::string ReplayVerdict(const uint8_t* data, size_t size)
{
    dv::Reader reader;
    if (!reader.OpenMemory(data, size)) return "refused";
    dv::RecordingFinder finder;
    dv::FrameInfo info;
    std::vector<uint8_t> bytes;
    size_t frames = 0, damaged = 0, pictures = 0, timeCodes = 0, dates = 0, times = 0, starts = 0;
    for (uint64_t end = 0; reader.Next(info, &bytes); end = info.offset + info.size) {
        // Frames follow one another inside the stream, each as long as its bytes.
        if (info.offset < end || info.size == 0 || info.offset + info.size > size || bytes.size() != info.size)
            __builtin_trap();
        ++frames, damaged += info.damaged, timeCodes += info.hasTimeCode, dates += info.hasDate, times += info.hasTime;
        starts += info.recordingStart;
        finder.Add(info);
        dv::Picture picture;
        pictures += dv::DecodePicture(bytes.data(), bytes.size(), picture);
    }
    return "frames " + std::to_string(frames) + " damaged " + std::to_string(damaged) + " recordings " +
           std::to_string(finder.Recordings().size()) + " pictures " + std::to_string(pictures) + " time codes " +
           std::to_string(timeCodes) + " dates " + std::to_string(dates) + " times " + std::to_string(times) +
           " starts " + std::to_string(starts);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    ReplayVerdict(data, size);
    return 0;
}
