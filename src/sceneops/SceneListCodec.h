// Reading and writing scene list files.  Portable: the module, the qvpsf
// tool and the tests share it.  Every block the reader makes is a memory
// block (MemoryBlock.h) handed to the sink, which then owns it.
#pragma once

#include "platform/File.h"
#include "sceneops/SceneListFormat.h"

#include <string>

namespace qv {

// The header's texts, each taken up to its NUL and never past its field.
struct SceneListInfo {
    std::string tapeName, tapeDescription, captureFolder, productionLibFolder;
    int nVersion = 0;
    int nDeclaredScenes = 0;  // the header's count (a negative one reads as 0)
    int nHeaderSize = 0;      // 1314 in every scene list file
};

class SceneListSink {
public:
    virtual ~SceneListSink() = default;
    virtual void OnHeader(const SceneListInfo& info) = 0;
    // One scene; the sink owns the blocks from here on.  `pBits` is null for
    // an entry without pixels.  Return false to stop reading.
    virtual bool OnEntry(int nIndex, SceneRecord* pRecord, ThumbHeader* pHeader, uint8_t* pBits) = 0;
};

enum class ReadStatus {
    Complete,     // every declared entry was read
    NoHeader,     // no whole header (nor the oldest files' shared thumbnail
                  // header): nothing was delivered
    Truncated,    // the file ended (or lied about a size) inside an entry
    NoMemory,     // a block could not be allocated
    Stopped       // the sink asked to stop
};

struct ReadResult {
    ReadStatus status = ReadStatus::NoHeader;
    int nEntries = 0;  // entries delivered to the sink
};

// Reads a whole file.  Versions 0 and 1 hold frame counts, turned into
// packed time codes with the TV standard given; versions below 3 have no
// device positions.  An opened list starts unmarked and unmerged; a viewer
// of the file may keep the marks as they were saved.
enum class Marks { Clear, Keep };
ReadResult ReadSceneList(File& file, int nTvStandard, SceneListSink& sink, Marks marks = Marks::Clear);

// Reads the header alone (the file dialog's preview).  False when fewer than
// 1314 bytes arrive or the header's size field is not 1314.
bool ReadSceneListHeader(File& file, SceneListInfo& info);

class SceneListSource {
public:
    virtual ~SceneListSource() = default;
    virtual int Count() const = 0;
    // The scene record as it is to be written (its merge flag is cleared in
    // the table first), and its thumbnail; either may be missing.
    virtual SceneRecord* Record(int i) = 0;
    virtual const ThumbHeader* Header(int i) const = 0;
    virtual const uint8_t* Bits(int i) const = 0;
};

struct SceneListTexts {
    const char* tapeName = "";
    const char* tapeDescription = "";
    const char* captureFolder = "";
    const char* productionLibFolder = "";
};

// Writes a version 3 file.  True when every block was written whole.
bool WriteSceneList(File& file, const SceneListTexts& texts, SceneListSource& source);

} // namespace qv
