// The scene list file's bytes, every version the reader accepts, and files
// that are cut short or lie about their sizes.
#include "platform/MemoryBlock.h"
#include "sceneops/SceneListCodec.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

using namespace qv;

namespace {

std::string TempPath(const char* name)
{
    const char* dir = std::getenv("TEMP");
    if (!dir) dir = std::getenv("TMPDIR");
    std::string base = dir ? dir : "/tmp";
    char sep = base.find('\\') != std::string::npos ? '\\' : '/';
    return base + sep + "qvcodec-" + name;
}

std::vector<uint8_t> ReadBytes(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void WriteBytes(const std::string& path, const std::vector<uint8_t>& bytes)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

// A table of scenes as the module holds one.
struct Table : SceneListSource {
    std::vector<SceneRecord> records;
    std::vector<ThumbHeader> headers;
    std::vector<std::vector<uint8_t>> bits;
    void Add(uint32_t in, uint32_t out, uint32_t thumbBytes)
    {
        SceneRecord r;
        std::memset(&r, 0, sizeof r);
        r.dwTimeCodeIn = in;
        r.dwTimeCodeOut = out;
        r.dwThumbSize = thumbBytes;
        r.dwPositionIn = in * 2;
        r.dwPositionOut = out * 2;
        r.nIndex = static_cast<int32_t>(records.size());
        r.bMerged = 1;
        r.bMarked = 1;
        std::snprintf(r.szComment, sizeof r.szComment, "scene %zu", records.size());
        records.push_back(r);
        ThumbHeader h;
        std::memset(&h, 0, sizeof h);
        h.biSize = 40;
        h.biWidth = 4;
        h.biHeight = 3;
        headers.push_back(h);
        bits.emplace_back(thumbBytes, static_cast<uint8_t>(records.size()));
    }
    int Count() const override { return static_cast<int>(records.size()); }
    SceneRecord* Record(int i) override { return &records[static_cast<size_t>(i)]; }
    const ThumbHeader* Header(int i) const override { return &headers[static_cast<size_t>(i)]; }
    const uint8_t* Bits(int i) const override { return bits[static_cast<size_t>(i)].data(); }
};

// Collects what the reader delivers and frees it afterwards.
struct Collected : SceneListSink {
    SceneListInfo info;
    std::vector<SceneRecord> records;
    std::vector<ThumbHeader> headers;
    std::vector<std::vector<uint8_t>> bits;
    void OnHeader(const SceneListInfo& i) override { info = i; }
    bool OnEntry(int, SceneRecord* r, ThumbHeader* h, uint8_t* b) override
    {
        records.push_back(*r);
        headers.push_back(*h);
        bits.emplace_back(b, b + (b ? r->dwThumbSize : 0));
        FreeBlock(r);
        FreeBlock(h);
        FreeBlock(b);
        return true;
    }
};

SceneListTexts Texts()
{
    SceneListTexts t;
    t.tapeName = "Summer";
    t.tapeDescription = "At the lake";
    t.captureFolder = "D:\\Video";
    t.productionLibFolder = "E:\\Library";
    return t;
}

std::string Save(Table& table, const char* name, SceneListTexts texts = Texts())
{
    std::string path = TempPath(name);
    File f;
    EXPECT_TRUE(f.Create(path.c_str()));
    EXPECT_TRUE(WriteSceneList(f, texts, table));
    return path;
}

ReadResult Load(const std::string& path, Collected& out, int tv = 2)
{
    File f;
    EXPECT_TRUE(f.OpenRead(path.c_str()));
    return ReadSceneList(f, tv, out);
}

uint32_t Tc(int h, int m, int s, int fr) { return (uint32_t(h) << 24) | (uint32_t(m) << 16) | (uint32_t(s) << 8) | uint32_t(fr); }

} // namespace

TEST(SceneListFile, BytesOfAWrittenFile)
{
    Table table;
    table.Add(Tc(0, 0, 1, 0), Tc(0, 0, 2, 0), 36);
    table.Add(Tc(0, 0, 3, 0), Tc(0, 0, 4, 0), 12);
    table.Add(Tc(0, 0, 5, 0), Tc(0, 0, 6, 0), 0);
    std::vector<uint8_t> bytes = ReadBytes(Save(table, "three.psf"));
    ASSERT_EQ(bytes.size(), 1314u + 3 * (1140 + 40) + 36 + 12);
    EXPECT_EQ(bytes[0], 0x22);
    EXPECT_EQ(bytes[1], 0x05);
    EXPECT_EQ(bytes[2], 0x03);
    EXPECT_EQ(bytes[3], 0x00);
    EXPECT_EQ(bytes[1304], 3);
    for (int i = 1305; i < 1314; ++i) EXPECT_EQ(bytes[i], 0) << i;
    SceneRecord first;
    std::memcpy(&first, &bytes[1314], sizeof first);
    EXPECT_EQ(first.dwTimeCodeIn, Tc(0, 0, 1, 0));
    EXPECT_EQ(first.bMerged, 0);  // cleared in the table too
    EXPECT_EQ(table.records[0].bMerged, 0);
    EXPECT_EQ(first.bMarked, 1);  // written as held
    // Texts are zero after their NUL.
    EXPECT_EQ(std::string(reinterpret_cast<char*>(&bytes[4])), "Summer");
    for (int i = 4 + 6; i < 264; ++i) EXPECT_EQ(bytes[i], 0) << i;
}

TEST(SceneListFile, ReadingBackGivesTheSameScenesUnmarked)
{
    Table table;
    for (int i = 0; i < 5; ++i) table.Add(Tc(0, 1, i, 0), Tc(0, 1, i, 20), 30 + i);
    Collected got;
    ReadResult r = Load(Save(table, "roundtrip.psf"), got);
    EXPECT_EQ(r.status, ReadStatus::Complete);
    ASSERT_EQ(got.records.size(), 5u);
    EXPECT_EQ(got.info.tapeName, "Summer");
    EXPECT_EQ(got.info.productionLibFolder, "E:\\Library");
    EXPECT_EQ(got.info.nVersion, 3);
    for (size_t i = 0; i < 5; ++i) {
        SceneRecord expected = table.records[i];
        expected.bMarked = 0;
        expected.bMerged = 0;
        EXPECT_EQ(std::memcmp(&got.records[i], &expected, sizeof expected), 0) << i;
        EXPECT_EQ(got.bits[i], table.bits[i]);
    }
}

TEST(SceneListFile, FullDescriptionIsReadWholeAndAlone)
{
    Table table;
    std::string description(520, 'd');
    SceneListTexts texts = Texts();
    texts.tapeDescription = description.c_str();
    Collected got;
    Load(Save(table, "description.psf", texts), got);
    EXPECT_EQ(got.info.tapeDescription, description);  // not joined to the folder after it
    EXPECT_EQ(got.info.captureFolder, "D:\\Video");
}

TEST(SceneListFile, EmptyTableIsTheHeaderAlone)
{
    Table table;
    std::string path = Save(table, "empty.psf");
    EXPECT_EQ(ReadBytes(path).size(), 1314u);
    Collected got;
    EXPECT_EQ(Load(path, got).status, ReadStatus::Complete);
    EXPECT_TRUE(got.records.empty());
}

TEST(SceneListFile, OlderVersionsAreConverted)
{
    Table table;
    table.Add(1800, 1830, 8);
    std::vector<uint8_t> v3 = ReadBytes(Save(table, "v3.psf"));

    std::vector<uint8_t> v2 = v3;
    v2[1304] = 2;
    WriteBytes(TempPath("v2.psf"), v2);
    Collected got2;
    Load(TempPath("v2.psf"), got2);
    ASSERT_EQ(got2.records.size(), 1u);
    EXPECT_EQ(got2.records[0].dwPositionIn, QV_NO_POSITION);
    EXPECT_EQ(got2.records[0].dwTimeCodeIn, 1800u);  // packed already

    std::vector<uint8_t> v1 = v3;
    v1[1304] = 1;
    WriteBytes(TempPath("v1.psf"), v1);
    Collected tv0, tv2;
    Load(TempPath("v1.psf"), tv0, 0);
    Load(TempPath("v1.psf"), tv2, 2);
    EXPECT_EQ(tv0.records[0].dwTimeCodeIn, 0x00010000u);      // 00:01:00:00 at 30 frames
    EXPECT_EQ(tv2.records[0].dwTimeCodeIn, Tc(0, 1, 12, 0));  // 00:01:12:00 at 25 frames

    // Version 0: one shared bitmap header after the file header, none in the entries.
    std::vector<uint8_t> v0(v3.begin(), v3.begin() + 1314);
    v0[1304] = 0;
    std::vector<uint8_t> shared(40, 0x5A);
    v0.insert(v0.end(), shared.begin(), shared.end());
    v0.insert(v0.end(), v3.begin() + 1314, v3.begin() + 1314 + 1140);
    v0.insert(v0.end(), v3.end() - 8, v3.end());
    WriteBytes(TempPath("v0.psf"), v0);
    Collected got0;
    EXPECT_EQ(Load(TempPath("v0.psf"), got0).status, ReadStatus::Complete);
    ASSERT_EQ(got0.records.size(), 1u);
    EXPECT_EQ(got0.headers[0].biSize, 0x5A5A5A5Au);
    EXPECT_EQ(got0.bits[0], table.bits[0]);
}

TEST(SceneListFile, NegativeCountReadsNothing)
{
    Table table;
    table.Add(1, 2, 4);
    std::vector<uint8_t> bytes = ReadBytes(Save(table, "negative.psf"));
    bytes[2] = 0xFF;
    bytes[3] = 0xFF;
    WriteBytes(TempPath("negative.psf"), bytes);
    Collected got;
    EXPECT_EQ(Load(TempPath("negative.psf"), got).status, ReadStatus::Complete);
    EXPECT_TRUE(got.records.empty());
    EXPECT_EQ(got.info.nDeclaredScenes, 0);
}

TEST(SceneListFile, EveryTruncationEndsCleanly)
{
    Table table;
    for (int i = 0; i < 3; ++i) table.Add(Tc(0, 0, i, 0), Tc(0, 0, i, 9), 100);
    std::vector<uint8_t> whole = ReadBytes(Save(table, "whole.psf"));
    const size_t entry = 1140 + 40 + 100;
    for (size_t cut = 0; cut < whole.size(); cut += 37) {
        WriteBytes(TempPath("cut.psf"), std::vector<uint8_t>(whole.begin(), whole.begin() + static_cast<long>(cut)));
        Collected got;
        ReadResult r = Load(TempPath("cut.psf"), got);
        size_t complete = cut < 1314 ? 0 : (cut - 1314) / entry;
        EXPECT_EQ(got.records.size(), complete) << "cut at " << cut;
        EXPECT_EQ(r.nEntries, static_cast<int>(complete));
        if (cut >= 1314) EXPECT_EQ(r.status, ReadStatus::Truncated) << "cut at " << cut;
    }
}

TEST(SceneListFile, LyingPixelCountsAllocateNothing)
{
    Table table;
    table.Add(1, 2, 16);
    std::vector<uint8_t> bytes = ReadBytes(Save(table, "liar.psf"));
    for (uint32_t lie : {17u, 0x7FFFFFFFu, 0xFFFFFFF0u}) {
        std::memcpy(&bytes[1314 + 24], &lie, 4);
        WriteBytes(TempPath("liar.psf"), bytes);
        long before = BlockAllocationCount();
        Collected got;
        EXPECT_EQ(Load(TempPath("liar.psf"), got).status, ReadStatus::Truncated) << lie;
        EXPECT_TRUE(got.records.empty());
        EXPECT_LE(BlockAllocationCount() - before, 2);  // the record and its header, never the pixels
    }
}

TEST(SceneListFile, UnterminatedTextsStayInTheirFields)
{
    Table table;
    table.Add(1, 2, 0);
    std::memset(table.records[0].szComment, 'c', sizeof table.records[0].szComment);
    std::memset(table.records[0].szCaptureFile, 'f', sizeof table.records[0].szCaptureFile);
    Collected got;
    Load(Save(table, "texts.psf"), got);
    ASSERT_EQ(got.records.size(), 1u);
    EXPECT_EQ(std::strlen(got.records[0].szComment), 519u);
    EXPECT_EQ(std::strlen(got.records[0].szCaptureFile), 259u);
}

TEST(SceneListFile, TooManyScenesAreRefusedWithoutWriting)
{
    struct Huge : SceneListSource {
        int Count() const override { return kMaxScenesInList + 1; }
        SceneRecord* Record(int) override { return nullptr; }
        const ThumbHeader* Header(int) const override { return nullptr; }
        const uint8_t* Bits(int) const override { return nullptr; }
    } huge;
    std::string path = TempPath("huge.psf");
    File f;
    ASSERT_TRUE(f.Create(path.c_str()));
    EXPECT_FALSE(WriteSceneList(f, Texts(), huge));
    f.Close();
    EXPECT_TRUE(ReadBytes(path).empty());
}

TEST(SceneListFile, PreviewNeedsAWholeHeader)
{
    Table table;
    std::vector<uint8_t> bytes = ReadBytes(Save(table, "preview.psf"));
    SceneListInfo info;
    {
        File f;
        f.OpenRead(TempPath("preview.psf").c_str());
        EXPECT_TRUE(ReadSceneListHeader(f, info));
        EXPECT_EQ(info.tapeName, "Summer");
    }
    bytes[0] = 0x21;  // not 1314
    WriteBytes(TempPath("preview.psf"), bytes);
    File f;
    f.OpenRead(TempPath("preview.psf").c_str());
    EXPECT_FALSE(ReadSceneListHeader(f, info));
}
