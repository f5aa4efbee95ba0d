// Replays every file of the fuzz corpus through the reader (no fuzzer
// needed), so that each file ever found stays a test.
#include <cstdint>
#include <cstdio>
#include <dirent.h>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv)
{
    if (argc < 2) return 2;
    DIR* dir = opendir(argv[1]);
    if (!dir) {
        std::fprintf(stderr, "no corpus at %s\n", argv[1]);
        return 1;
    }
    int files = 0;
    while (dirent* e = readdir(dir)) {
        if (e->d_name[0] == '.') continue;
        std::string path = std::string(argv[1]) + "/" + e->d_name;
        FILE* f = std::fopen(path.c_str(), "rb");
        if (!f) continue;
        std::vector<uint8_t> bytes;
        int c;
        while ((c = std::fgetc(f)) != EOF) bytes.push_back(static_cast<uint8_t>(c));
        std::fclose(f);
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
        ++files;
    }
    closedir(dir);
    std::printf("%d corpus files read without fault\n", files);
    return files > 0 ? 0 : 1;
}
