// Time codes, frame counts and recording dates as the scene list shows them.
//
// Portable: no Windows headers.  Every conversion takes the tape's TV
// standard code as the session holds it: 2 = 25 frames per second; 0 and 1 =
// 30 frames per second with drop-frame counting, 1 showing the frame number
// after a '.' instead of a ':'.
#pragma once

#include <cstddef>
#include <cstdint>

struct RecordedTime;

namespace qv {

// Room for any time code or frame-count text, "--:--:--:--" included.
enum { TIME_TEXT_SIZE = 32, DATE_TEXT_SIZE = 64 };

extern const char kNoTimeText[];  // "--:--:--:--"

int GetFrameRate(int nTvStandard);

// Splits a frame count into hours, minutes, seconds and frames (plain
// counting, no frames dropped).  Hours are not limited.
void FramesToTime(int32_t nFrames, int nTvStandard, int& nHours, int& nMinutes, int& nSeconds, int& nFrameNo);

// The packed time code of a frame count (versions 0 and 1 of list files).
uint32_t FramesToTimeCode(int32_t nFrames, int nTvStandard);

// The frame count of a packed time code, one above the zero-based frame
// number; with the 30-frame standards two frame numbers are left out at
// every minute but every tenth.  Durations are differences of two counts.
int32_t TimeCodeToFrames(uint32_t dwTimeCode, int nTvStandard);

// True when the packed value carries no time code (hours byte >= 128).
inline bool IsNoTimeCode(uint32_t dwTimeCode) { return (dwTimeCode & 0x80000000u) != 0; }

// "hh:mm:ss:ff" (or "hh:mm:ss.ff" for standard 1); with bLongHours 0 the
// hours are not padded.  A negative count gives "--:--:--:--".
void FormatFrameCount(int32_t nFrames, int nTvStandard, bool bLongHours, char* out, size_t cb);

// The packed time code's bytes shown as they stand; no time code gives
// "--:--:--:--".
void FormatTimeCode(uint32_t dwTimeCode, int nTvStandard, bool bLongHours, char* out, size_t cb);

// The scene's duration text: the difference of the two frame counts.
void FormatDuration(uint32_t dwIn, uint32_t dwOut, int nTvStandard, char* out, size_t cb);

// "yyyy/mm/dd\n hh:mm:ss" (two lines) or "yyyy/mm/dd  hh:mm:ss" (one line),
// month and day padded with blanks.  A date whose year, month and day are
// all 0 gives `unknownText`.
void FormatRecordedDate(const RecordedTime& st, bool bTwoLines, const char* unknownText, char* out, size_t cb);

} // namespace qv
