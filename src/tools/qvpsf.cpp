// qvpsf: shows a scene list file (.psf) for people who edit after capturing:
// the tape and one line per scene, the same as CSV for a spreadsheet, or an
// edit decision list (CMX 3600) for an editor.  `qvpsf --help` tells how.
// A missing, truncated or damaged file is reported and the exit status is
// not 0.
#include "listview/RowTexts.h"
#include "platform/MemoryBlock.h"
#include "sceneops/SceneListCodec.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

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

// ---- edit decision list -------------------------------------------------

// How an EDL counts frames: as the module counts them, --tv 2 is 25 frames
// per second, and 0 and 1 are 30 frames per second with drop-frame numbering.
struct EdlClock {
    int fps;
    bool drop;

    explicit EdlClock(int tv) : fps(qv::GetFrameRate(tv)), drop(fps == 30) {}

    // A valid time code of this clock: fields in range, and with drop-frame
    // numbering not one of the two numbers left out at most minute starts.
    bool IsValid(uint32_t t) const
    {
        int h = (t >> 24) & 0xFF, m = (t >> 16) & 0xFF, s = (t >> 8) & 0xFF, f = t & 0xFF;
        if (qv::IsNoTimeCode(t) || h > 23 || m > 59 || s > 59 || f >= fps) return false;
        return !(drop && s == 0 && f < 2 && m % 10 != 0);
    }

    // Zero-based frame number of a valid time code.
    int32_t Frames(uint32_t t) const { return qv::TimeCodeToFrames(t, drop ? 1 : 2) - 1; }

    // A scene's length in frames; 0 when it has no two valid time codes.
    int32_t Length(const SceneRecord& r) const
    {
        if (!IsValid(r.dwTimeCodeIn) || !IsValid(r.dwTimeCodeOut)) return 0;
        int32_t length = Frames(r.dwTimeCodeOut) - Frames(r.dwTimeCodeIn);
        return length > 0 ? length : 0;
    }

    // "hh:mm:ss:ff"; drop-frame codes take ';' before the frames.
    std::string Text(uint32_t t) const
    {
        char text[qv::TIME_TEXT_SIZE];
        qv::FormatTimeCode(t, fps == 25 ? 2 : 0, true, text, sizeof text);
        if (drop) text[8] = ';';
        return text;
    }

    // The time code of a frame number; drop-frame numbering skips frame
    // numbers 0 and 1 of every minute but every tenth.
    std::string TextOfFrames(int32_t n) const
    {
        if (drop) {
            const int32_t tenMinutes = 17982, minute = 1798;
            int32_t rest = n % tenMinutes;
            n += 18 * (n / tenMinutes) + (rest < 2 ? 0 : 2 * ((rest - 2) / minute));
        }
        return Text(qv::FramesToTimeCode(n, fps == 25 ? 2 : 0));
    }
};

// Reel names hold 8 characters: letters (upper-cased), digits and '_'.
std::string ReelOf(const std::string& tapeName)
{
    std::string reel = tapeName.substr(0, 8);
    for (char& c : reel) {
        unsigned char u = static_cast<unsigned char>(c);
        if (u >= 'a' && u <= 'z') c = static_cast<char>(u - 'a' + 'A');
        else if (!((u >= 'A' && u <= 'Z') || (u >= '0' && u <= '9'))) c = '_';
    }
    return reel.empty() ? "AX" : reel;
}

const char kReelRule[] =
    "The reel of every event is the tape name's first 8 characters, letters\n"
    "upper-cased, digits kept and any other character made '_'; a tape without\n"
    "a name gives reel AX.\n";

// One event per scene (only marked ones when asked), laid end to end on the
// record side from 01:00:00:00.  Scenes without two valid time codes, or
// ending where they begin, have nothing to cut and are left out.
int WriteEdl(const Scenes& scenes, const char* path, int tv, bool markedOnly)
{
    const EdlClock clock(tv);
    std::string title = OneLine(scenes.info.tapeName.empty() ? std::string(path) : scenes.info.tapeName);
    std::printf("TITLE: %s\nFCM: %s\n", title.c_str(), clock.drop ? "DROP FRAME" : "NON-DROP FRAME");
    const std::string reel = ReelOf(scenes.info.tapeName);
    int32_t record = clock.Frames(0x01000000);
    int event = 0;
    for (size_t i = 0; i < scenes.records.size(); ++i) {
        const SceneRecord& r = scenes.records[i];
        if (markedOnly && !r.bMarked) continue;
        const int32_t length = clock.Length(r);
        if (length == 0) {
            std::fprintf(stderr, "qvpsf: scene %zu has no time codes to cut at; left out\n", i + 1);
            continue;
        }
        if (++event > 999) {
            std::fprintf(stderr, "qvpsf: an edit decision list holds at most 999 events\n");
            return 1;
        }
        std::printf("\n%03d  %-8s V     C        %s %s %s %s\n", event, reel.c_str(), clock.Text(r.dwTimeCodeIn).c_str(),
                    clock.Text(r.dwTimeCodeOut).c_str(), clock.TextOfFrames(record).c_str(),
                    clock.TextOfFrames(record + length).c_str());
        record += length;
        std::string comment = OneLine(std::string(r.szComment, strnlen(r.szComment, sizeof r.szComment)));
        std::string file(r.szCaptureFile, strnlen(r.szCaptureFile, sizeof r.szCaptureFile));
        if (!comment.empty()) std::printf("* COMMENT: %s\n", comment.c_str());
        if (!file.empty()) std::printf("* SOURCE FILE: %s\n", OneLine(file).c_str());
    }
    return 0;
}

// ---- command line --------------------------------------------------------

const char kUsage[] =
    "usage: qvpsf show FILE [--tv 0|1|2]   the tape and one line per scene\n"
    "       qvpsf csv FILE [--tv 0|1|2]    the same as CSV (RFC 4180) with a header row\n"
    "       qvpsf edl FILE [--tv 0|1|2] [--marked]\n"
    "                                      an edit decision list (CMX 3600), one\n"
    "                                      event per scene, to import into an editor\n"
    "       qvpsf --help                   this text\n"
    "\n"
    "--tv      the tape's TV standard, which the file does not record: 2 (25 frames\n"
    "          per second, the default), 0 or 1 (30 frames per second, drop-frame\n"
    "          time code, as the pre-scan module counts it; 1 shows the frame number\n"
    "          after a '.')\n"
    "--marked  edl: only the scenes marked for capture\n"
    "\n"
    "The EDL goes to standard output; its record times run from 01:00:00:00 and\n"
    "each event carries the scene's comment and captured file as comment lines.\n";

int BadArguments(const std::string& why)
{
    std::fprintf(stderr, "qvpsf: %s\nrun 'qvpsf --help' for the usage\n", why.c_str());
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
#ifdef _WIN32
    // The same bytes as everywhere: CSV rows end in "\r\n", not "\r\r\n".
    _setmode(_fileno(stdout), _O_BINARY);
#endif
    if (argc == 2 && std::strcmp(argv[1], "--help") == 0) {
        std::printf("%s\n%s", kUsage, kReelRule);
        return 0;
    }
    if (argc < 3) return BadArguments(argc < 2 ? "no command given" : "no scene list file given");
    std::string command = argv[1];
    const char* path = argv[2];
    if (command != "show" && command != "csv" && command != "edl")
        return BadArguments("unknown command '" + command + "' (show, csv or edl)");
    int tv = 2;
    bool markedOnly = false;
    for (int i = 3; i < argc; ++i) {
        std::string option = argv[i];
        if (option == "--tv") {
            std::string value = i + 1 < argc ? argv[++i] : "";
            if (value != "0" && value != "1" && value != "2") return BadArguments("--tv takes 0, 1 or 2");
            tv = value[0] - '0';
        } else if (option == "--marked" && command == "edl") {
            markedOnly = true;
        } else {
            return BadArguments("unknown option '" + option + "' for " + command);
        }
    }

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
    int status = 0;
    if (command == "edl") {
        status = WriteEdl(scenes, path, tv, markedOnly);
    } else if (command == "show") {
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
    if (status == 0 && result.status != qv::ReadStatus::Complete) {
        std::fprintf(stderr, "qvpsf: %s: the file ends early or is damaged after %d of %d scenes\n", path,
                     result.nEntries, scenes.info.nDeclaredScenes);
        return 1;
    }
    return status;
}
