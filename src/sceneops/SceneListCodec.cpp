#include "sceneops/SceneListCodec.h"

#include "platform/BoundedCopy.h"
#include "platform/MemoryBlock.h"
#include "scenes/TimeCode.h"

#include <cstring>

namespace qv {
namespace {

std::string FieldText(const char* field, size_t cb)
{
    return std::string(field, BoundedLength(field, cb));
}

// Reads exactly `cb` bytes.  A short read is the end of a truncated file:
// an entry is taken whole or not at all.
bool ReadWhole(File& file, void* p, uint32_t cb)
{
    uint32_t got = 0;
    return file.Read(p, cb, got) && got == cb;
}

void TerminateTexts(SceneRecord& r)
{
    r.szSceneFile[sizeof r.szSceneFile - 1] = 0;
    r.szComment[sizeof r.szComment - 1] = 0;
    r.szCaptureFile[sizeof r.szCaptureFile - 1] = 0;
}

SceneListInfo InfoOf(const SceneListHeader& h)
{
    SceneListInfo info;
    info.tapeName = FieldText(h.szTapeName, sizeof h.szTapeName);
    info.tapeDescription = FieldText(h.szTapeDescription, sizeof h.szTapeDescription);
    info.captureFolder = FieldText(h.szCaptureFolder, sizeof h.szCaptureFolder);
    info.productionLibFolder = FieldText(h.szProductionLibFolder, sizeof h.szProductionLibFolder);
    info.nVersion = h.nVersion;
    info.nDeclaredScenes = h.nSceneCount < 0 ? 0 : h.nSceneCount;
    info.nHeaderSize = h.wHeaderSize;
    return info;
}

} // namespace

bool ReadSceneListHeader(File& file, SceneListInfo& info)
{
    SceneListHeader h;
    std::memset(&h, 0, sizeof h);
    uint32_t got = 0;
    if (!file.Read(&h, sizeof h, got) || got != sizeof h || h.wHeaderSize != kSceneListHeaderSize) return false;
    info = InfoOf(h);
    return true;
}

ReadResult ReadSceneList(File& file, int nTvStandard, SceneListSink& sink, Marks marks)
{
    ReadResult result;
    // Every text of the header is bounded by its field.
    SceneListHeader h;
    std::memset(&h, 0, sizeof h);
    // An empty file, one shorter than the header, or an oldest-version file
    // without its shared thumbnail header is no scene list: nothing reaches
    // the sink, so the list it would have replaced stays as it was.
    if (!ReadWhole(file, &h, sizeof h)) return result;
    const bool convert = h.nVersion <= 1;
    const bool shared = h.nVersion <= 0;
    ThumbHeader sharedHeader;
    if (shared && !ReadWhole(file, &sharedHeader, sizeof sharedHeader)) return result;

    SceneListInfo info = InfoOf(h);
    sink.OnHeader(info);

    result.status = ReadStatus::Complete;
    for (int i = 0; i < info.nDeclaredScenes; ++i) {
        auto* record = static_cast<SceneRecord*>(AllocBlock(sizeof(SceneRecord)));
        if (!record) { result.status = ReadStatus::NoMemory; break; }
        if (!ReadWhole(file, record, sizeof *record)) {
            FreeBlock(record);
            result.status = ReadStatus::Truncated;
            break;
        }
        TerminateTexts(*record);
        record->bMerged = 0;
        if (marks == Marks::Clear) record->bMarked = 0;
        if (h.nVersion < 3) record->dwPositionIn = record->dwPositionOut = QV_NO_POSITION;
        if (convert) {
            record->dwTimeCodeIn = FramesToTimeCode(static_cast<int32_t>(record->dwTimeCodeIn), nTvStandard);
            record->dwTimeCodeOut = FramesToTimeCode(static_cast<int32_t>(record->dwTimeCodeOut), nTvStandard);
        }

        auto* header = static_cast<ThumbHeader*>(AllocBlock(sizeof(ThumbHeader)));
        if (!header) {
            FreeBlock(record);
            result.status = ReadStatus::NoMemory;
            break;
        }
        if (shared) {
            std::memcpy(header, &sharedHeader, sizeof *header);
        } else if (!ReadWhole(file, header, sizeof *header)) {
            FreeBlock(record);
            FreeBlock(header);
            result.status = ReadStatus::Truncated;
            break;
        }

        // The pixel count comes from the file: nothing larger than what the
        // file still holds is ever allocated.
        uint8_t* bits = nullptr;
        uint32_t size = record->dwThumbSize;
        if (size > 0) {
            if (static_cast<int64_t>(size) > file.Remaining()) {
                FreeBlock(record);
                FreeBlock(header);
                result.status = ReadStatus::Truncated;
                break;
            }
            bits = static_cast<uint8_t*>(AllocBlock(size));
            if (!bits || !ReadWhole(file, bits, size)) {
                result.status = bits ? ReadStatus::Truncated : ReadStatus::NoMemory;
                FreeBlock(bits);
                FreeBlock(record);
                FreeBlock(header);
                break;
            }
        }
        ++result.nEntries;
        if (!sink.OnEntry(i, record, header, bits)) {
            result.status = ReadStatus::Stopped;
            break;
        }
    }
    return result;
}

bool WriteSceneList(File& file, const SceneListTexts& texts, SceneListSource& source)
{
    int count = source.Count();
    if (count > kMaxScenesInList) return false;
    SceneListHeader h;
    std::memset(&h, 0, sizeof h);
    h.wHeaderSize = kSceneListHeaderSize;
    h.nSceneCount = static_cast<int16_t>(count);
    FillField(h.szTapeName, texts.tapeName);
    FillField(h.szTapeDescription, texts.tapeDescription);
    FillField(h.szCaptureFolder, texts.captureFolder);
    FillField(h.szProductionLibFolder, texts.productionLibFolder);
    h.nVersion = kSceneListVersion;
    if (!file.Write(&h, sizeof h)) return false;

    for (int i = 0; i < count; ++i) {
        SceneRecord* record = source.Record(i);
        if (!record) return false;
        record->bMerged = 0;
        const ThumbHeader* header = source.Header(i);
        const uint8_t* bits = source.Bits(i);
        // A scene without pixels is written as one: its size says 0, so the
        // entries that follow stay in step.
        SceneRecord copy;
        std::memcpy(&copy, record, sizeof copy);
        if (!bits) copy.dwThumbSize = 0;
        ThumbHeader noHeader;
        std::memset(&noHeader, 0, sizeof noHeader);
        if (!file.Write(&copy, sizeof copy)) return false;
        if (!file.Write(header ? header : &noHeader, sizeof noHeader)) return false;
        if (copy.dwThumbSize && !file.Write(bits, copy.dwThumbSize)) return false;
    }
    return file.Flush();
}

} // namespace qv
