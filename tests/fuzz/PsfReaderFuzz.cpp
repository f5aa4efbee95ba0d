// Fuzz target: any bytes as a scene list file must read without a crash, an
// overrun or a leak, and get as far under every TV standard.
#include "platform/MemoryBlock.h"
#include "sceneops/SceneListCodec.h"

#include <cstdio>
#include <string>
#include <unistd.h>

namespace {

// Reads every record text it is handed (so an unterminated one shows) and
// frees every block.
struct FreeingSink : qv::SceneListSink {
    size_t textBytes = 0;
    void OnHeader(const qv::SceneListInfo&) override {}
    bool OnEntry(int, SceneRecord* r, ThumbHeader* h, uint8_t* b) override
    {
        textBytes += std::string(r->szComment).size() + std::string(r->szCaptureFile).size();
        qv::FreeBlock(r), qv::FreeBlock(h), qv::FreeBlock(b);
        return true;
    }
};

} // namespace

// Reads the bytes under each TV standard; the standard changes the times,
// never how far the reading gets, so a difference is a fault too.
bool ReadUnderEveryStandard(const uint8_t* data, size_t size, qv::ReadResult& result)
{
    static std::string path = "/dev/shm/qvpsf-fuzz-" + std::to_string(getpid()) + ".psf";
    FILE* f = std::fopen(path.c_str(), "wb");
    if (!f || std::fwrite(data, 1, size, f) != size || std::fclose(f) != 0) return false;
    for (int tv = 0; tv <= 2; ++tv) {
        qv::File file;
        if (!file.OpenRead(path.c_str())) return false;
        FreeingSink sink;
        qv::ReadResult r = qv::ReadSceneList(file, tv, sink);
        if (tv > 0 && (r.status != result.status || r.nEntries != result.nEntries)) __builtin_trap();
        result = r;
    }
    return true;
}

std::string ReplayVerdict(const uint8_t* data, size_t size)
{
    const char* status[] = {"complete", "no-header", "truncated", "no-memory", "stopped"};  // ReadStatus order
    qv::ReadResult r;
    return ReadUnderEveryStandard(data, size, r) ? status[int(r.status)] + (" " + std::to_string(r.nEntries))
                                                 : "not replayed";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    qv::ReadResult result;
    ReadUnderEveryStandard(data, size, result);
    return 0;
}
