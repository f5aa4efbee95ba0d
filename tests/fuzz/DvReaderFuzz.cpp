// Fuzz target: any bytes as a DV stream must read without a crash or an
// overrun: each frame found, the recordings among them and each frame's
// picture.  The corpus replay checks what was read.
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
    size_t frames = 0, damaged = 0, pictures = 0;
    for (uint64_t end = 0; reader.Next(info, &bytes); end = info.offset + info.size) {
        // Frames follow one another inside the stream, each as long as its bytes.
        if (info.offset < end || info.size == 0 || info.offset + info.size > size || bytes.size() != info.size)
            __builtin_trap();
        ++frames, damaged += info.damaged;
        finder.Add(info);
        dv::Picture picture;
        pictures += dv::DecodePicture(bytes.data(), bytes.size(), picture);
    }
    return "frames " + std::to_string(frames) + " damaged " + std::to_string(damaged) + " recordings " +
           std::to_string(finder.Recordings().size()) + " pictures " + std::to_string(pictures);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    ReplayVerdict(data, size);
    return 0;
}
