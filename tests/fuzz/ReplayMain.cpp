// Replays every file of a fuzz corpus through its reader (no fuzzer
// needed) and checks each against its line in the expected file: the
// file's name, then the reader's verdict on it (how the reading ends, what
// it delivers), words one space apart.  A file without a line fails, so
// each file ever found stays a test with a verdict.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

// The reader's verdict on one input, in the words of the expected file.
std::string ReplayVerdict(const uint8_t* data, size_t size);

int main(int argc, char** argv)
{
    if (argc < 3) return 2;
    std::map<std::string, std::string> expected;  // file -> verdict
    std::ifstream manifest(argv[2]);
    for (std::string name, verdict; manifest >> name && std::getline(manifest >> std::ws, verdict);)
        expected[name] = verdict;
    int files = 0, failures = 0;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        std::string name = entry.path().filename().string();
        std::ifstream f(entry.path(), std::ios::binary);
        std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(f)), std::istreambuf_iterator<char>());
        std::string got = ReplayVerdict(bytes.data(), bytes.size());
        ++files;
        if (expected[name] == got) continue;
        std::printf("FAILED %s: read \"%s\", expected \"%s\"\n", name.c_str(), got.c_str(), expected[name].c_str());
        ++failures;
    }
    std::printf("%d corpus files replayed, %d not as expected\n", files, failures);
    return files > 0 && failures == 0 ? 0 : 1;
}
