// One scene of the scene table, stored verbatim in scene list files, so its
// layout is a file format: declared once, checked at compile time.
#pragma once

#include "qvPreScan.h"

#include <cstdint>

struct SceneRecord {
    QV_SCENE_INFO_FIELDS            // as the scene's begin gave them (end fields from its end)
    int32_t nIndex;                 // the scene's number
    int32_t bMerged;                // 1 = made by merging; can be split again
    int32_t bMarked;                // 1 = marked for capture
    char szComment[QV_COMMENT_SIZE];
    char szCaptureFile[QV_MAX_PATH];  // the file the host captured for it
    uint8_t abReserved[40];
};
QV_CHECK_SIZE(SceneRecord, 1140);
QV_CHECK_OFFSET(SceneRecord, dwTimeCodeIn, 0);
QV_CHECK_OFFSET(SceneRecord, dwTimeCodeOut, 4);
QV_CHECK_OFFSET(SceneRecord, stRecorded, 8);
QV_CHECK_OFFSET(SceneRecord, dwThumbSize, 24);
QV_CHECK_OFFSET(SceneRecord, szSceneFile, 28);
QV_CHECK_OFFSET(SceneRecord, dwPositionIn, 288);
QV_CHECK_OFFSET(SceneRecord, dwPositionOut, 292);
QV_CHECK_OFFSET(SceneRecord, adwHostData, 296);
QV_CHECK_OFFSET(SceneRecord, nIndex, 308);
QV_CHECK_OFFSET(SceneRecord, bMerged, 312);
QV_CHECK_OFFSET(SceneRecord, bMarked, 316);
QV_CHECK_OFFSET(SceneRecord, szComment, 320);
QV_CHECK_OFFSET(SceneRecord, szCaptureFile, 840);
QV_CHECK_OFFSET(SceneRecord, abReserved, 1100);

// The 40-byte bitmap information header that comes with each thumbnail,
// kept verbatim (the platform's BITMAPINFOHEADER, declared here portably).
struct ThumbHeader {
    uint32_t biSize;
    int32_t biWidth;
    int32_t biHeight;
    uint16_t biPlanes;
    uint16_t biBitCount;
    uint32_t biCompression;
    uint32_t biSizeImage;
    int32_t biXPelsPerMeter;
    int32_t biYPelsPerMeter;
    uint32_t biClrUsed;
    uint32_t biClrImportant;
};
QV_CHECK_SIZE(ThumbHeader, 40);
QV_CHECK_OFFSET(ThumbHeader, biWidth, 4);
QV_CHECK_OFFSET(ThumbHeader, biHeight, 8);
QV_CHECK_OFFSET(ThumbHeader, biBitCount, 14);
QV_CHECK_OFFSET(ThumbHeader, biClrImportant, 36);

// The bytes of pixels that follow a thumbnail header as it describes them:
// rows padded to four bytes for uncompressed pictures, the stated image size
// for compressed ones.  0 when the header does not say (no size, no known
// depth, a size beyond 32 bits).
inline uint32_t DescribedThumbnailBytes(const ThumbHeader& h)
{
    const uint32_t kRgb = 0, kBitFields = 3;
    if (h.biCompression != kRgb && h.biCompression != kBitFields) return h.biSizeImage;
    switch (h.biBitCount) {
    case 1: case 4: case 8: case 16: case 24: case 32: break;
    default: return 0;
    }
    int64_t width = h.biWidth, height = h.biHeight < 0 ? -static_cast<int64_t>(h.biHeight) : h.biHeight;
    if (width <= 0 || height <= 0 || width > 0x7FFFFFFF / 32) return 0;
    int64_t bytes = (width * h.biBitCount + 31) / 32 * 4 * height;
    return bytes > 0xFFFFFFFFll ? 0 : static_cast<uint32_t>(bytes);
}

// The bytes of pixels a thumbnail header describes (rows padded to four
// bytes), or 0 for a header the list cannot draw safely: only uncompressed
// 16-, 24- and 32-bit pictures of at most 1024 x 1024 carry no colour table
// or masks beyond the header.
inline uint32_t ThumbnailBytes(const ThumbHeader& h)
{
    const uint32_t kRgb = 0;
    if (h.biCompression != kRgb || (h.biBitCount != 16 && h.biBitCount != 24 && h.biBitCount != 32)) return 0;
    int64_t width = h.biWidth, height = h.biHeight < 0 ? -static_cast<int64_t>(h.biHeight) : h.biHeight;
    if (width <= 0 || width > 1024 || height <= 0 || height > 1024) return 0;
    int64_t stride = (width * h.biBitCount + 31) / 32 * 4;
    return static_cast<uint32_t>(stride * height);
}
