// The scene list file's bytes: what the writer lays down, and what the
// reader makes of every version and of files cut short or lying about sizes.
#include "platform/MemoryBlock.h"
#include "sceneops/SceneListCodec.h"
#include "../support/Portable.h"  // relative: the native build has no tests/ include path

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <functional>

using namespace qv;
using namespace qvtest;
using Bytes = std::vector<uint8_t>;

namespace {

const size_t kHeader = 1314, kEntry = 1140 + 40 + 16;  // each test scene has 16 bytes of pixels

std::string TempPath(const char* name)
{
    const char* dir = std::getenv("TEMP");  // Wine has it; natively the current folder serves
    return (dir ? std::string(dir) + "\\" : std::string()) + "qvcodec-" + name;
}

// Two scenes as the module holds them: marked, merged, the second with a
// comment and capture file that fill their fields without a terminator.
struct Table : SceneListSource {
    SceneRecord records[2];
    ThumbHeader headers[2];
    uint8_t bits[2][16];
    Table()
    {
        std::memset(static_cast<void*>(records), 0, sizeof records);
        std::memset(static_cast<void*>(headers), 0, sizeof headers);
        for (int i = 0; i < 2; ++i) {
            SceneRecord& r = records[i];
            r.dwTimeCodeIn = 1800 + 100 * i;  // a frame count too, for the oldest versions
            r.dwPositionIn = 7 + i;
            r.dwThumbSize = 16;
            r.bMerged = r.bMarked = 1;
            headers[i].biSize = 40;
            std::memset(bits[i], 0x30 + i, 16);
        }
        std::memset(records[1].szComment, 'c', sizeof records[1].szComment);
        std::memset(records[1].szCaptureFile, 'f', sizeof records[1].szCaptureFile);
    }
    int Count() const override { return 2; }
    SceneRecord* Record(int i) override { return &records[i]; }
    const ThumbHeader* Header(int i) const override { return &headers[i]; }
    const uint8_t* Bits(int i) const override { return bits[i]; }
};

// Collects what the reader delivers and frees it.
struct Collected : SceneListSink {
    SceneListInfo info;
    std::vector<SceneRecord> records;
    std::vector<uint32_t> headerSizes;
    std::vector<Bytes> bits;
    void OnHeader(const SceneListInfo& i) override { info = i; }
    bool OnEntry(int, SceneRecord* r, ThumbHeader* h, uint8_t* b) override
    {
        records.push_back(*r), headerSizes.push_back(h->biSize), bits.emplace_back(b, b + (b ? r->dwThumbSize : 0));
        FreeBlock(r), FreeBlock(h), FreeBlock(b);
        return true;
    }
};

const std::string kDescription(520, 'd');  // fills its field: no NUL before the next one

Bytes Written(Table& table)
{
    SceneListTexts texts;
    texts.tapeName = "Summer";
    texts.tapeDescription = kDescription.c_str();
    texts.captureFolder = "D:\\Video";
    texts.productionLibFolder = "E:\\Library";
    File f;
    EXPECT_TRUE(f.Create(TempPath("written.psf").c_str()) && WriteSceneList(f, texts, table));
    f.Close();
    return ReadBytes(TempPath("written.psf"));
}

// Reads `bytes` as a file; `preview` tells whether the open dialog's preview takes its header.
ReadResult Read(const Bytes& bytes, int tv, Collected& out, bool& preview)
{
    WriteBytes(TempPath("read.psf"), bytes);
    File head, whole;  // one at a time: the module opens without sharing
    SceneListInfo info;
    preview = head.OpenRead(TempPath("read.psf").c_str()) && ReadSceneListHeader(head, info);
    head.Close();
    EXPECT_TRUE(whole.OpenRead(TempPath("read.psf").c_str()));
    return ReadSceneList(whole, tv, out);
}

} // namespace

TEST(SceneListFile, WrittenBytesAndReadingBack)
{
    Table table;
    Bytes bytes = Written(table);
    ASSERT_EQ(bytes.size(), kHeader + 2 * kEntry);
    EXPECT_EQ(Get32(bytes, 0), 0x00020522);  // header size 1314, two scenes
    EXPECT_EQ(Get32(bytes, 1304), 3);
    EXPECT_EQ(Get32(bytes, kHeader + offsetof(SceneRecord, bMarked)), 1);  // marks are written as held
    EXPECT_EQ(Get32(bytes, kHeader + offsetof(SceneRecord, bMerged)) + table.records[0].bMerged, 0);  // merges not

    Collected got;
    bool preview;
    EXPECT_EQ(Read(bytes, 2, got, preview).status, ReadStatus::Complete);
    EXPECT_EQ(got.info.tapeName + "|" + got.info.captureFolder + "|" + got.info.productionLibFolder,
              "Summer|D:\\Video|E:\\Library");
    EXPECT_EQ(got.info.tapeDescription, kDescription);
    ASSERT_EQ(got.records.size(), 2u);
    for (size_t i = 0; i < 2; ++i) {
        SceneRecord expected = table.records[i];
        expected.bMarked = 0;  // an opened list starts unmarked; full texts keep their last byte for the NUL
        expected.szComment[sizeof expected.szComment - 1] = expected.szCaptureFile[sizeof expected.szCaptureFile - 1] = 0;
        EXPECT_EQ(std::memcmp(&got.records[i], &expected, sizeof expected), 0) << i;
        EXPECT_EQ(got.bits[i], Bytes(table.bits[i], table.bits[i] + 16));
    }
}

// Every version the reader accepts and every kind of damage, each with what
// the reader delivers and whether the open dialog's preview shows the header.
TEST(SceneListFile, VersionsAndDamage)
{
    Table table;
    const Bytes v3 = Written(table);
    auto version = [](int v) { return [v](Bytes& b) { Put32(b, 1304, v); }; };
    auto cut = [](size_t n) { return [n](Bytes& b) { b.resize(n); }; };
    auto lie = [](uint32_t size) {  // the first scene's pixel count, the file ending after its entry
        return [size](Bytes& b) { b.resize(kHeader + kEntry), Put32(b, kHeader + 24, int32_t(size)); };
    };
    struct Case {
        const char* what;
        std::function<void(Bytes&)> change;
        int tv;
        ReadStatus status;
        int entries;
        uint32_t firstIn, position, headerSize;  // the first scene's as read
        bool preview;
    } cases[] = {
        {"version 3 as written", [](Bytes&) {}, 2, ReadStatus::Complete, 2, 1800, 7, 40, true},
        {"version 2: no device positions", version(2), 2, ReadStatus::Complete, 2, 1800, QV_NO_POSITION, 40, true},
        {"version 0: frame counts, one shared bitmap header",
         [&](Bytes& b) {
             b.assign(v3.begin(), v3.begin() + kHeader);
             Put32(b, 1304, 0);
             b.insert(b.end(), 40, 0x5A);
             for (size_t e = 0; e < 2; ++e) {
                 auto entry = v3.begin() + static_cast<long>(kHeader + e * kEntry);
                 b.insert(b.end(), entry, entry + 1140);
                 b.insert(b.end(), entry + 1180, entry + static_cast<long>(kEntry));
             }
         },
         0, ReadStatus::Complete, 2, Tc(0, 1, 0, 0), QV_NO_POSITION, 0x5A5A5A5A, true},
        {"0 bytes", cut(0), 2, ReadStatus::NoHeader, 0, 0, 0, 0, false},
        {"short header", cut(1000), 2, ReadStatus::NoHeader, 0, 0, 0, 0, false},
        {"header size field not 1314", [](Bytes& b) { b[0] = 0x21; }, 2, ReadStatus::Complete, 2, 1800, 7, 40, false},
        {"second entry cut short", cut(kHeader + kEntry + 600), 2, ReadStatus::Truncated, 1, 1800, 7, 40, true},
        {"entry cut inside its pixels", cut(kHeader + kEntry - 3), 2, ReadStatus::Truncated, 0, 0, 0, 0, true},
        {"negative count", [](Bytes& b) { b[2] = b[3] = 0xFF; }, 2, ReadStatus::Complete, 0, 0, 0, 0, true},
        {"pixel count one more than the file", lie(17), 2, ReadStatus::Truncated, 0, 0, 0, 0, true},
        {"pixel count near 4 GiB", lie(0xFFFFFFF0), 2, ReadStatus::Truncated, 0, 0, 0, 0, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Bytes bytes = v3;
        c.change(bytes);
        Collected got;
        bool preview;
        long before = BlockAllocationCount();
        ReadResult r = Read(bytes, c.tv, got, preview);
        EXPECT_EQ(r.status, c.status);
        ASSERT_EQ(got.records.size() * 10 + size_t(r.nEntries), size_t(c.entries) * 11);
        EXPECT_EQ(preview, c.preview);
        // Three blocks per scene delivered, two for one given up: never a lying size.
        EXPECT_LE(BlockAllocationCount() - before, 3 * c.entries + 2);
        if (c.entries == 0) continue;
        EXPECT_EQ(std::vector<uint32_t>({got.records[0].dwTimeCodeIn, got.records[0].dwPositionIn, got.headerSizes[0]}),
                  std::vector<uint32_t>({c.firstIn, c.position, c.headerSize}));
        EXPECT_EQ(got.bits[0], Bytes(table.bits[0], table.bits[0] + 16));
    }
}
