// Stand-in for the in-house video library: plays an AVI file, or a raw DV
// file (.dv, .dif) as its frames' small pictures, in a small window, frame by
// frame on a timer, scaled with DrawDib, and tells the notify window when the
// file has ended (WM_COMMAND 34438, code 4884).
// One playback at a time.
#pragma once

#include <windows.h>

#include <cstdint>

struct VideoFileInfo {
    uint32_t dwReserved;      // never written by the module
    char szPath[260];         // the file to play
    uint8_t abPlayer[208];    // the player's own
};
static_assert(sizeof(VideoFileInfo) == 472, "the video library's block");

extern VideoFileInfo g_videoFileInfo;

// Above 0 when the file named in the block holds a playable video stream.
int qVideoGetFileInfo(VideoFileInfo* pInfo);
// Prepares playback into hVideo; 1 when ready.
int qVideoPlayBegin(VideoFileInfo* pInfo, HWND hVideo, HWND hNotify, int reserved);
// Action 1 plays, 2 stops.  Negative on failure; stopping when nothing
// plays succeeds, so a preview can always be left.
int qVideoPlayAction(VideoFileInfo* pInfo, int nAction, int, int, int, int);
void qVideoPlayEnd(VideoFileInfo* pInfo, int reserved);
void qVideoFreeFileInfo(VideoFileInfo* pInfo);
