// Fuzz target: any bytes as a scene list file must read without a crash, an
// overrun or a leak, under every TV standard.
#include "platform/MemoryBlock.h"
#include "sceneops/SceneListCodec.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <unistd.h>

namespace {

struct FreeingSink : qv::SceneListSink {
    size_t textBytes = 0;
    void OnHeader(const qv::SceneListInfo& info) override
    {
        textBytes += info.tapeName.size() + info.tapeDescription.size() + info.captureFolder.size();
    }
    bool OnEntry(int, SceneRecord* r, ThumbHeader* h, uint8_t* b) override
    {
        textBytes += std::string(r->szComment).size() + std::string(r->szCaptureFile).size();
        qv::FreeBlock(r);
        qv::FreeBlock(h);
        qv::FreeBlock(b);
        return true;
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static std::string path = "/dev/shm/qvpsf-fuzz-" + std::to_string(getpid()) + ".psf";
    FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) return 0;
    std::fwrite(data, 1, size, f);
    std::fclose(f);
    for (int tv = 0; tv <= 2; ++tv) {
        qv::File file;
        if (!file.OpenRead(path.c_str())) return 0;
        FreeingSink sink;
        qv::ReadSceneList(file, tv, sink);
    }
    return 0;
}
