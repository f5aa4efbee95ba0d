// Reading DV streams made by ffmpeg (tests/dv/make-tapes.sh), whole and
// damaged, from a file and from memory.  What whole tapes say is compared
// with other tools in check_tools.py; the packs of patched frames and the
// pictures of damaged ones are among the fuzz corpus verdicts
// (tests/fuzz/dv-expected.txt).
#include "dv/DvStream.h"
#include "support/Portable.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <unistd.h>

namespace {

constexpr size_t P = 144000, N = 120000;  // bytes of a 625/50 and a 525/60 frame

// The first `bytes` of one of the tapes.
std::vector<uint8_t> TapeStart(const char* tape, size_t bytes)
{
    std::vector<uint8_t> t(bytes);
    std::ifstream f(std::string(QV_DV_TAPES) + "/" + tape, std::ios::binary);
    f.read(reinterpret_cast<char*>(t.data()), std::streamsize(bytes));
    return t;
}

// The frames a reader finds, as "offset:size", "!" after a damaged one,
// "n" after a 525/60 one.
std::string FramesRead(dv::Reader& reader)
{
    std::string seen;
    for (dv::FrameInfo f; reader.Next(f);)
        seen += std::to_string(f.offset) + ":" + std::to_string(f.size) + (f.damaged ? "!" : "") +
                (f.system == dv::System::Ntsc525 ? "n " : " ");
    return seen;
}

using Edit = std::function<void(std::vector<uint8_t>&)>;
Edit Insert(size_t at, std::vector<uint8_t> bytes)
{
    return [=](auto& t) { t.insert(t.begin() + std::ptrdiff_t(at), bytes.begin(), bytes.end()); };
}
Edit Cut(size_t from, size_t to)
{
    return [=](auto& t) { t.erase(t.begin() + std::ptrdiff_t(from), t.begin() + std::ptrdiff_t(to)); };
}

TEST(DvReader, FindsFramesThroughDamageAndRefusesWhatIsNotDv)
{
    const std::vector<uint8_t> tape = TapeStart("pal-2.dv", 3 * P);
    // Noise that starts like a frame: a header block and its subcode blocks.
    const std::vector<uint8_t> noise(tape.begin(), tape.begin() + 200);
    struct Case {
        const char* name;
        Edit edit;           // on three whole 625/50 frames
        const char* frames;  // as FramesRead lists them, or the refusal
    } cases[] = {
        {"whole frames", Cut(0, 0), "0:144000 144000:144000 288000:144000 "},
        {"a block zeroed", [](auto& t) { std::fill_n(t.begin() + P + 80 * 700, 80, 0); },
         "0:144000 144000:144000! 288000:144000 "},
        {"a frame cut short", Cut(P + 50000, 2 * P), "0:144000 144000:50000! 194000:144000 "},
        {"a frame cut inside a block", Cut(P + 50037, 2 * P), "0:144000 144000:50037! 194037:144000 "},
        {"the last frame cut off", Cut(2 * P + 1000, 3 * P), "0:144000 144000:144000 288000:1000! "},
        {"noise between frames", Insert(P, noise), "0:144000 144200:144000 288200:144000 "},
        {"noise before the first frame", Insert(0, noise), "200:144000 144200:144000 288200:144000 "},
        {"a header block zeroed", [](auto& t) { std::fill_n(t.begin() + P, 80, 0); }, "0:144000 288000:144000 "},
        {"a 525/60 frame among 625/50 ones", Insert(P, TapeStart("ntsc-3.dv", N)),
         "0:144000 144000:120000n 264000:144000 408000:144000 "},
        {"an empty file", Cut(0, 3 * P), "is not a DV stream: it is empty"},
        {"a text file", [](auto& t) { t.assign({'D', 'V', '\n'}); },
         "is not a DV stream: no DIF header block in its 3 bytes"},
        {"a frame after a megabyte of noise", Insert(0, std::vector<uint8_t>(1 << 20, 0xFF)),
         "is not a DV stream: no DIF header block in its first 1048576 bytes"},
    };
    const std::string path = std::filesystem::temp_directory_path() / ("qvdv-" + std::to_string(getpid()) + ".dv");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<uint8_t> bytes = tape;
        c.edit(bytes);
        ASSERT_TRUE(qvtest::WriteBytes(path, bytes));
        // What a reader finds: its frames, or why it refused the stream.
        auto seen = [](dv::Reader& r, bool opened) { return opened ? FramesRead(r) : r.Error(); };
        bool refused = std::string(c.frames).starts_with("is not");
        dv::Reader file, memory;
        EXPECT_EQ(seen(file, file.Open(path.c_str())), refused ? path + " " + c.frames : c.frames);
        EXPECT_EQ(seen(memory, memory.OpenMemory(bytes.data(), bytes.size())),
                  refused ? std::string("The stream ") + c.frames : c.frames);
    }
    std::filesystem::remove(path);
}

} // namespace
