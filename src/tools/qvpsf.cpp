// qvpsf: shows a scene list file (.psf) for people who edit after capturing.
//
//   qvpsf show FILE [--tv 0|1|2]   the tape and one line per scene
//   qvpsf csv FILE [--tv 0|1|2]    the same as CSV with a header row
//
// --tv is the tape's TV standard, which the file does not record: 2 (25
// frames per second) by default, 0 or 1 for the 30-frame standards (1 shows
// the frame number after a '.').  A missing, truncated or damaged file is
// reported and the exit status is not 0.
#include "listview/RowTexts.h"
#include "platform/MemoryBlock.h"
#include "sceneops/SceneListCodec.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

struct Scenes : qv::SceneListSink {
    qv::SceneListInfo info;
    std::vector<SceneRecord> records;
    void OnHeader(const qv::SceneListInfo& i) override { info = i; }
    bool OnEntry(int, SceneRecord* r, ThumbHeader* h, uint8_t* b) override
    {
        records.push_back(*r);
        qv::FreeBlock(r);
        qv::FreeBlock(h);
        qv::FreeBlock(b);
        return true;
    }
};

std::string Csv(const std::string& field)
{
    if (field.find_first_of(",\"\r\n") == std::string::npos) return field;
    std::string quoted = "\"";
    for (char c : field) {
        if (c == '"') quoted += '"';
        quoted += c;
    }
    return quoted + "\"";
}

std::string OneLine(std::string text)
{
    for (char& c : text)
        if (c == '\n' || c == '\r') c = ' ';
    return text;
}

// One scene's fields, as both outputs show them.
struct SceneLine {
    qv::RowTexts texts;
    std::string duration;
};

SceneLine LineOf(SceneRecord& r, int tv, const qv::RowTextSources& src)
{
    SceneLine line;
    line.texts = qv::MakeRowTexts(r, false, src);
    char duration[qv::TIME_TEXT_SIZE];
    qv::FormatDuration(r.dwTimeCodeIn, r.dwTimeCodeOut, tv, duration, sizeof duration);
    line.duration = duration;
    return line;
}

int Usage()
{
    std::fprintf(stderr, "usage: qvpsf show|csv FILE [--tv 0|1|2]\n");
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3) return Usage();
    std::string command = argv[1];
    const char* path = argv[2];
    int tv = 2;
    for (int i = 3; i < argc; ++i) {
        if (std::strcmp(argv[i], "--tv") == 0 && i + 1 < argc) tv = std::atoi(argv[++i]);
        else return Usage();
    }
    if ((command != "show" && command != "csv") || tv < 0 || tv > 2) return Usage();

    qv::File file;
    if (!file.OpenRead(path)) {
        std::fprintf(stderr, "qvpsf: %s: cannot be opened\n", path);
        return 1;
    }
    Scenes scenes;
    qv::ReadResult result = qv::ReadSceneList(file, tv, scenes, qv::Marks::Keep);
    if (result.status == qv::ReadStatus::NoHeader || scenes.info.nHeaderSize != qv::kSceneListHeaderSize) {
        std::fprintf(stderr, "qvpsf: %s: not a scene list file\n", path);
        return 1;
    }

    qv::RowTextSources src;
    src.nTvStandard = tv;
    src.bThumbnailView = false;
    src.pszUnknownDate = "no date";
    src.pszCapturedPrefix = "captured: ";
    src.pszScenePrefix = "scanned: ";
    if (command == "show") {
        std::printf("tape:        %s\ndescription: %s\ncapture:     %s\nlibrary:     %s\nversion:     %d\nscenes:      %zu\n",
                    scenes.info.tapeName.c_str(), OneLine(scenes.info.tapeDescription).c_str(),
                    scenes.info.captureFolder.c_str(), scenes.info.productionLibFolder.c_str(), scenes.info.nVersion,
                    scenes.records.size());
        for (size_t i = 0; i < scenes.records.size(); ++i) {
            SceneRecord& r = scenes.records[i];
            SceneLine line = LineOf(r, tv, src);
            const qv::RowTexts& t = line.texts;
            std::printf("%4zu  %s  %s  %s  %s  %s  %s  %s\n", i + 1, t.in.c_str(), t.out.c_str(), line.duration.c_str(),
                        t.date.c_str(), r.bMarked ? "marked" : "-", OneLine(t.comment).c_str(), OneLine(t.files).c_str());
        }
    } else {
        std::printf("scene,in,out,duration,recorded,marked,comment,captured file,scene file\r\n");
        for (size_t i = 0; i < scenes.records.size(); ++i) {
            SceneRecord& r = scenes.records[i];
            SceneLine line = LineOf(r, tv, src);
            const qv::RowTexts& t = line.texts;
            std::printf("%zu,%s,%s,%s,%s,%d,%s,%s,%s\r\n", i + 1, t.in.c_str(), t.out.c_str(), line.duration.c_str(),
                        Csv(t.date).c_str(), r.bMarked ? 1 : 0, Csv(t.comment).c_str(), Csv(r.szCaptureFile).c_str(),
                        Csv(r.szSceneFile).c_str());
        }
    }
    if (result.status != qv::ReadStatus::Complete) {
        std::fprintf(stderr, "qvpsf: %s: the file ends early or is damaged after %d of %d scenes\n", path,
                     result.nEntries, scenes.info.nDeclaredScenes);
        return 1;
    }
    return 0;
}
