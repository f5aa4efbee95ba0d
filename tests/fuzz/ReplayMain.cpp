// Replays every file of the fuzz corpus through the reader (no fuzzer
// needed) and checks each against its line in the expected outcomes: how
// the reading ends and how many scenes it delivers.  A file without a line
// fails, so each file ever found stays a test with a verdict.
#include "sceneops/SceneListCodec.h"

#include <cstdint>
#include <cstdio>
#include <dirent.h>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <vector>

bool ReadUnderEveryStandard(const uint8_t* data, size_t size, qv::ReadResult& result);

namespace {

const char* StatusName(qv::ReadStatus s)
{
    switch (s) {
    case qv::ReadStatus::Complete: return "complete";
    case qv::ReadStatus::NoHeader: return "no-header";
    case qv::ReadStatus::Truncated: return "truncated";
    case qv::ReadStatus::NoMemory: return "no-memory";
    case qv::ReadStatus::Stopped: return "stopped";
    }
    return "?";
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3) return 2;
    std::map<std::string, std::string> expected;  // file -> "status scenes"
    std::ifstream manifest(argv[2]);
    for (std::string line; std::getline(manifest, line);) {
        std::istringstream in(line);
        std::string name, status, scenes;
        if (line.empty() || line[0] == '#' || !(in >> name >> status >> scenes)) continue;
        expected[name] = status + " " + scenes;
    }
    DIR* dir = opendir(argv[1]);
    if (!dir || expected.empty()) {
        std::fprintf(stderr, "no corpus at %s or no outcomes in %s\n", argv[1], argv[2]);
        return 1;
    }
    int files = 0, failures = 0;
    while (dirent* e = readdir(dir)) {
        if (e->d_name[0] == '.') continue;
        std::ifstream f(std::string(argv[1]) + "/" + e->d_name, std::ios::binary);
        std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(f)), std::istreambuf_iterator<char>());
        qv::ReadResult result;
        ++files;
        if (!ReadUnderEveryStandard(bytes.data(), bytes.size(), result)) {
            std::printf("FAILED %s: could not be replayed\n", e->d_name);
            ++failures;
            continue;
        }
        std::string got = std::string(StatusName(result.status)) + " " + std::to_string(result.nEntries);
        auto want = expected.find(e->d_name);
        if (want == expected.end() || want->second != got) {
            std::printf("FAILED %s: read \"%s\", expected \"%s\"\n", e->d_name, got.c_str(),
                        want == expected.end() ? "(no line)" : want->second.c_str());
            ++failures;
        }
    }
    closedir(dir);
    std::printf("%d corpus files replayed, %d not as expected\n", files, failures);
    return files > 0 && failures == 0 ? 0 : 1;
}
