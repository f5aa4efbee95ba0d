/*
 * qvPreScan.h - what a capture host needs to drive the DV tape pre-scan module.
 *
 * The module (qvPreScan.dll) exports fourteen undecorated functions; the host
 * hands it one callback, HostRequestProc, through which the module asks for
 * every tape movement, capture and device query.  All records below are
 * little-endian with 64-bit pointers and are laid out byte for byte; every
 * size and offset is checked at compile time.
 *
 * The record part of this header is plain C and needs no Windows headers, so
 * the portable tools and tests can share it; the function declarations appear
 * only when compiling for Windows.
 */
#ifndef QVPRESCAN_H
#define QVPRESCAN_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define QV_STATIC_ASSERT(cond, msg) static_assert(cond, msg)
extern "C" {
#else
#define QV_STATIC_ASSERT(cond, msg) _Static_assert(cond, msg)
#endif

#define QV_CHECK_SIZE(type, size) QV_STATIC_ASSERT(sizeof(type) == (size), #type " size")
#define QV_CHECK_OFFSET(type, field, off) \
    QV_STATIC_ASSERT(offsetof(type, field) == (off), #type "." #field " offset")

/* Fixed text fields, in bytes including the terminating NUL. */
enum {
    QV_MAX_PATH = 260,
    QV_CAPTURE_EXT_SIZE = 20,
    QV_CAPTURE_NAME_SIZE = 100,
    QV_COMMENT_SIZE = 520
};

/* A packed time code: hours, minutes, seconds, frames from the high byte down.
 * A high byte with bit 7 set means the tape had no time code there. */
#define QV_NO_POSITION 0xFFFFFFFFu

/* ---- Host requests (module -> host) ---------------------------------- */

/* Request codes.  Code 7 is never sent. */
enum HostRequestCode {
    HOSTREQ_START_SCAN = 1,        /* ScanRequest*                               */
    HOSTREQ_STOP_SCAN = 2,         /* the completed-scene count, as a number    */
    HOSTREQ_CAPTURE_SCENES = 3,    /* CaptureRequest*                            */
    HOSTREQ_PLAY_SPAN = 4,         /* SceneSpan*                                 */
    HOSTREQ_STOP_PLAY = 5,         /* null                                       */
    HOSTREQ_SEEK_TIMECODE = 6,     /* uint32_t* packed time code                 */
    HOSTREQ_CHOOSE_LIBRARY = 8,    /* LibraryRequest*                            */
    HOSTREQ_DIALOG_CLOSED = 9,     /* null                                       */
    HOSTREQ_GET_POSITION = 10,     /* uint32_t* filled by the host               */
    HOSTREQ_GET_DEVICE_STATUS = 11,/* DeviceStatus*                              */
    HOSTREQ_SEEK_POSITION = 12     /* uint32_t* device position                  */
};

/* The host's callback: a request code and one pointer-sized argument. */
typedef int32_t (*HostRequestProc)(int32_t nRequest, intptr_t lParam);

/* Request 1: start a scan.  Zero-filled before any field is set. */
typedef struct ScanRequest {
    int32_t nScanMethod;        /* 1, 2, or 3 = scan while the host captures  */
    int32_t bSaveToLibrary;
    int32_t bWantIndexFile;     /* 0 for a quick scan and for method 3         */
    int32_t nQuickScanSpeed;    /* 0 = normal, 1..4 quick; 0 for method 3      */
    char szCaptureName[150];
    char szCaptureFolder[QV_MAX_PATH];
    uint8_t abPadding[2];
    int32_t nSceneCount;        /* completed scenes already in the list       */
    uint8_t abReserved[80];
} ScanRequest;
QV_CHECK_SIZE(ScanRequest, 512);
QV_CHECK_OFFSET(ScanRequest, nScanMethod, 0);
QV_CHECK_OFFSET(ScanRequest, bSaveToLibrary, 4);
QV_CHECK_OFFSET(ScanRequest, bWantIndexFile, 8);
QV_CHECK_OFFSET(ScanRequest, nQuickScanSpeed, 12);
QV_CHECK_OFFSET(ScanRequest, szCaptureName, 16);
QV_CHECK_OFFSET(ScanRequest, szCaptureFolder, 166);
QV_CHECK_OFFSET(ScanRequest, abPadding, 426);
QV_CHECK_OFFSET(ScanRequest, nSceneCount, 428);
QV_CHECK_OFFSET(ScanRequest, abReserved, 432);

/* One stretch of tape: an element of the capture chain, or the whole
 * argument of request 4 (then pNext is null). */
typedef struct SceneSpan {
    uint32_t dwTimeCodeIn;
    uint32_t dwTimeCodeOut;
    struct SceneSpan* pNext;
    uint32_t dwPositionIn;
    uint32_t dwPositionOut;
} SceneSpan;
QV_CHECK_SIZE(SceneSpan, 24);
QV_CHECK_OFFSET(SceneSpan, dwTimeCodeIn, 0);
QV_CHECK_OFFSET(SceneSpan, dwTimeCodeOut, 4);
QV_CHECK_OFFSET(SceneSpan, pNext, 8);
QV_CHECK_OFFSET(SceneSpan, dwPositionIn, 16);
QV_CHECK_OFFSET(SceneSpan, dwPositionOut, 20);

/* Request 3: capture the marked scenes.  Zero-filled before use. */
typedef struct CaptureRequest {
    int32_t nSpanCount;         /* the list's marked count                    */
    uint8_t abPadding1[4];
    SceneSpan* pFirstSpan;      /* chain in table order, or null              */
    char szCaptureName[150];
    char szTapeName[100];
    char szCaptureFolder[QV_MAX_PATH];
    uint8_t abPadding2[2];
    int32_t bSaveToLibrary;
    uint8_t abReserved[84];
} CaptureRequest;
QV_CHECK_SIZE(CaptureRequest, 616);
QV_CHECK_OFFSET(CaptureRequest, nSpanCount, 0);
QV_CHECK_OFFSET(CaptureRequest, abPadding1, 4);
QV_CHECK_OFFSET(CaptureRequest, pFirstSpan, 8);
QV_CHECK_OFFSET(CaptureRequest, szCaptureName, 16);
QV_CHECK_OFFSET(CaptureRequest, szTapeName, 166);
QV_CHECK_OFFSET(CaptureRequest, szCaptureFolder, 266);
QV_CHECK_OFFSET(CaptureRequest, abPadding2, 526);
QV_CHECK_OFFSET(CaptureRequest, bSaveToLibrary, 528);
QV_CHECK_OFFSET(CaptureRequest, abReserved, 532);

/* Request 8: let the host choose the production library folder. */
typedef struct LibraryRequest {
    int32_t bSaveToLibrary;     /* in: the check box; out: nonzero = switch on */
    char szLibraryFolder[172];  /* in: the dialog's folder; out: the host's    */
} LibraryRequest;
QV_CHECK_SIZE(LibraryRequest, 176);
QV_CHECK_OFFSET(LibraryRequest, bSaveToLibrary, 0);
QV_CHECK_OFFSET(LibraryRequest, szLibraryFolder, 4);

/* Request 11: the device is ready only when all eight flags are nonzero. */
typedef struct DeviceStatus {
    int32_t adwCondition[8];
} DeviceStatus;
QV_CHECK_SIZE(DeviceStatus, 32);
QV_CHECK_OFFSET(DeviceStatus, adwCondition, 0);

/* ---- Initialisation record (host -> module) -------------------------- */

typedef struct PreScanInitInfo {
    void* hHost;                        /* kept, never used by the module    */
    HostRequestProc pfnHostRequest;
    char szCaptureExt[QV_CAPTURE_EXT_SIZE]; /* with its dot, e.g. ".avi"     */
    int32_t nTvStandard;                /* 0, 1 (30 fps) or other (25 fps)   */
    const char* pszHelpFile;            /* NUL-terminated, at most 259 chars */
} PreScanInitInfo;
QV_CHECK_SIZE(PreScanInitInfo, 48);
QV_CHECK_OFFSET(PreScanInitInfo, hHost, 0);
QV_CHECK_OFFSET(PreScanInitInfo, pfnHostRequest, 8);
QV_CHECK_OFFSET(PreScanInitInfo, szCaptureExt, 16);
QV_CHECK_OFFSET(PreScanInitInfo, nTvStandard, 36);
QV_CHECK_OFFSET(PreScanInitInfo, pszHelpFile, 40);

/* ---- Scene descriptor (host -> module, with each scene's begin and end) */

/* Recording date and time; year, month and day all 0 mean no date. */
typedef struct RecordedTime {
    uint16_t wYear, wMonth, wDayOfWeek, wDay;
    uint16_t wHour, wMinute, wSecond, wMilliseconds;
} RecordedTime;
QV_CHECK_SIZE(RecordedTime, 16);

/* The scene descriptor's fields; a stored scene record begins with the same
 * fields, so both declarations share this list. */
#define QV_SCENE_INFO_FIELDS                                                  \
    uint32_t dwTimeCodeIn;   /* packed time code of the first frame        */ \
    uint32_t dwTimeCodeOut;  /* of the last frame; 0 = end not yet known   */ \
    RecordedTime stRecorded;                                                  \
    uint32_t dwThumbSize;    /* bytes of thumbnail pixels                  */ \
    char szSceneFile[QV_MAX_PATH]; /* file the host wrote while scanning   */ \
    uint32_t dwPositionIn;   /* device position, QV_NO_POSITION = none     */ \
    uint32_t dwPositionOut;                                                   \
    uint32_t adwHostData[3]; /* kept as given, never interpreted           */

typedef struct SceneInfo {
    QV_SCENE_INFO_FIELDS
} SceneInfo;
QV_CHECK_SIZE(SceneInfo, 308);
QV_CHECK_OFFSET(SceneInfo, dwTimeCodeIn, 0);
QV_CHECK_OFFSET(SceneInfo, dwTimeCodeOut, 4);
QV_CHECK_OFFSET(SceneInfo, stRecorded, 8);
QV_CHECK_OFFSET(SceneInfo, dwThumbSize, 24);
QV_CHECK_OFFSET(SceneInfo, szSceneFile, 28);
QV_CHECK_OFFSET(SceneInfo, dwPositionIn, 288);
QV_CHECK_OFFSET(SceneInfo, dwPositionOut, 292);
QV_CHECK_OFFSET(SceneInfo, adwHostData, 296);

/* ---- Messages the module's dialog understands ------------------------- */

/* A scene began or completed, for the pre-scan dialog (the scene feed calls
 * its handler): wParam = the scene's table position, lParam 1 = begun,
 * 0 = completed. */
#define WM_PRESCAN_SCENE 0x0401
/* The video player's end-of-playback notification (WM_COMMAND id/codes). */
#define QV_VIDEO_NOTIFY_ID 34438
#define QV_VIDEO_NOTIFY_STOPPED 4883
#define QV_VIDEO_NOTIFY_ENDED 4884

#ifdef _WIN32
#include <windows.h>

/* Plain declarations: the import library's thunks serve a host that links
 * qvPreScan.dll, and the same names link straight to the module's static
 * library in the in-process tests. */
#define QVPRESCAN_API

/* Session */
QVPRESCAN_API int32_t qvPreScanInit(const PreScanInitInfo* pInfo);
QVPRESCAN_API int32_t qvPreScanUnInit(void);
/* Dialog */
QVPRESCAN_API HWND qvShowPreScanDlg(HWND hParent);
QVPRESCAN_API void qvMinimizePreScanDlg(void);
QVPRESCAN_API void qvRestorePreScanDlg(void);
QVPRESCAN_API void qvForceToStopPreScan(int32_t bClose);
QVPRESCAN_API int32_t qvGetCurrentSceneNumber(void);
QVPRESCAN_API void qvGetLibFolderFromPreScan(char* pszFolder);       /* 260 bytes */
QVPRESCAN_API void qvGetPreScanIndexFileName(char* pszPath);         /* 260 bytes */
QVPRESCAN_API int32_t qvPSClearUncompleteScene(void);
/* Scene feed */
QVPRESCAN_API void qvSetSceneDataBegin(const SceneInfo* pScene, const BITMAPINFOHEADER* pHeader,
                                       const void* pBits);
QVPRESCAN_API void qvSetSceneDataEnd(const SceneInfo* pScene);
QVPRESCAN_API void qvSetSceneBitmapData(int32_t nScene, const BITMAPINFOHEADER* pHeader,
                                        const void* pBits, int32_t nBytes);
QVPRESCAN_API void qvSetCapSceneFileName(int32_t nScene, const char* pszPath);
#endif /* _WIN32 */

#ifdef __cplusplus
}
#endif

#endif /* QVPRESCAN_H */
