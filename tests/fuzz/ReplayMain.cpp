// Replays every file of the fuzz corpus through the reader (no fuzzer
// needed) and checks each against its line in expected.txt: how the reading
// ends and how many scenes it delivers.  A file without a line fails, so
// each file ever found stays a test with a verdict.
#include "sceneops/SceneListCodec.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

bool ReadUnderEveryStandard(const uint8_t* data, size_t size, qv::ReadResult& result);

int main(int argc, char** argv)
{
    if (argc < 3) return 2;
    const char* kStatus[] = {"complete", "no-header", "truncated", "no-memory", "stopped"};  // ReadStatus order
    std::map<std::string, std::string> expected;  // file -> "status scenes"
    std::ifstream manifest(argv[2]);
    for (std::string name, status, scenes; manifest >> name >> status >> scenes;) expected[name] = status + " " + scenes;
    int files = 0, failures = 0;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        std::string name = entry.path().filename().string();
        std::ifstream f(entry.path(), std::ios::binary);
        std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(f)), std::istreambuf_iterator<char>());
        qv::ReadResult r;
        std::string got = ReadUnderEveryStandard(bytes.data(), bytes.size(), r)
                              ? kStatus[int(r.status)] + (" " + std::to_string(r.nEntries)) : "not replayed";
        ++files;
        if (expected[name] == got) continue;
        std::printf("FAILED %s: read \"%s\", expected \"%s\"\n", name.c_str(), got.c_str(), expected[name].c_str());
        ++failures;
    }
    std::printf("%d corpus files replayed, %d not as expected\n", files, failures);
    return files > 0 && failures == 0 ? 0 : 1;
}
