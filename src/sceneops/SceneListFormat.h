// The scene list file (*.psf): a packed header, in version 0 one bitmap
// header shared by every scene, then one entry per scene (the 1140-byte
// scene record, its 40-byte thumbnail header, its thumbnail pixels), and
// nothing after the last entry.  Version 3 is written; 0 to 3 are read.
#pragma once

#include "scenes/SceneRecord.h"

#include <cstdint>

#pragma pack(push, 1)
struct SceneListHeader {
    uint16_t wHeaderSize;           // always 1314
    int16_t nSceneCount;            // the entries that follow
    char szTapeName[QV_MAX_PATH];
    char szTapeDescription[520];    // may fill the field with no NUL
    char szCaptureFolder[QV_MAX_PATH];
    char szProductionLibFolder[QV_MAX_PATH];
    int32_t nVersion;
    uint8_t abReserved[6];
};
#pragma pack(pop)
QV_CHECK_SIZE(SceneListHeader, 1314);
QV_CHECK_OFFSET(SceneListHeader, wHeaderSize, 0);
QV_CHECK_OFFSET(SceneListHeader, nSceneCount, 2);
QV_CHECK_OFFSET(SceneListHeader, szTapeName, 4);
QV_CHECK_OFFSET(SceneListHeader, szTapeDescription, 264);
QV_CHECK_OFFSET(SceneListHeader, szCaptureFolder, 784);
QV_CHECK_OFFSET(SceneListHeader, szProductionLibFolder, 1044);
QV_CHECK_OFFSET(SceneListHeader, nVersion, 1304);
QV_CHECK_OFFSET(SceneListHeader, abReserved, 1308);

namespace qv {

const uint16_t kSceneListHeaderSize = 1314;
const int32_t kSceneListVersion = 3;
// The scene count is a signed 16-bit field: a file holds at most this many.
const int kMaxScenesInList = 32767;

} // namespace qv
