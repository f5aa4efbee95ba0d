/*
 * minimal-host.c - the smallest capture host of the DV tape pre-scan module.
 *
 * It opens the pre-scan dialog over its own window and answers the module's
 * requests.  When the user presses Start Scan, a make-believe deck "plays" a
 * tape of four scenes: each scene is reported when it begins and when it
 * ends, two with their thumbnails and two with a thumbnail delivered later.
 * A fifth scene is still open when the tape ends; the host clears it and
 * stops the scan.  Closing the dialog ends the program.
 *
 *   minimal-host          you press Start Scan, then close the dialog
 *   minimal-host --auto   it presses Start Scan itself, closes the dialog
 *                         when the scan has stopped, answers the question
 *                         whether to save the list with No, and exits
 *
 * Build it in the kit's folder (docs/HOST-GUIDE.md, "Building the sample"):
 *   x86_64-w64-mingw32-gcc -std=c11 -Wall -Iinclude samples/minimal-host.c
 *       -Llib -lqvPreScan -o bin/minimal-host.exe
 * so that it runs beside bin/qvPreScan.dll and bin/qvCaptureRC.dll.
 *
 * The host links the module's import library rather than loading it with
 * LoadLibrary: every export is then called with the type the header gives
 * it, and the system loader finds qvPreScan.dll and the resource library
 * that the module imports (qvCaptureRC.dll) when the program starts, or
 * names the one that is missing.
 */
#include <windows.h>

#include "qvPreScan.h"

enum {
    SCENE_COUNT = 4,
    THUMB_WIDTH = 80,
    THUMB_HEIGHT = 60,
    THUMB_STRIDE = (THUMB_WIDTH * 3 + 3) & ~3, /* rows of a DIB: padded to 4 bytes */
    DECK_TIMER = 1,                            /* the deck's next event */
    USER_TIMER = 2                             /* --auto: what a user would do next */
};
/* The Start Scan button of the dialog in the reference resource library. */
#define START_SCAN_BUTTON 12311

static HWND g_host;             /* the host's main window */
static HWND g_dialog;           /* the pre-scan dialog while it is open */
static BOOL g_auto;             /* --auto: play the user */
static BOOL g_deviceReady;      /* request 11 was answered */
static BOOL g_scanStarted, g_scanStopped;
static int g_events;            /* the deck's events so far in this scan */
static uint32_t g_position;     /* the tape position: a packed time code */
static BITMAPINFOHEADER g_thumbHeader;
static BYTE g_thumbBits[THUMB_STRIDE * THUMB_HEIGHT];

static void Say(const char* format, int value)
{
    char line[256];
    DWORD written;
    int length = wsprintfA(line, format, value);
    WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), line, (DWORD)length, &written, NULL);
}

static uint32_t TimeCode(int hours, int minutes, int seconds, int frames)
{
    return (uint32_t)hours << 24 | (uint32_t)minutes << 16 | (uint32_t)seconds << 8 | (uint32_t)frames;
}

/* A bottom-up 24-bit thumbnail of one colour (the pixels are blue, green, red). */
static void PaintThumbnail(BYTE red, BYTE green, BYTE blue)
{
    ZeroMemory(&g_thumbHeader, sizeof g_thumbHeader);
    g_thumbHeader.biSize = sizeof g_thumbHeader;
    g_thumbHeader.biWidth = THUMB_WIDTH;
    g_thumbHeader.biHeight = THUMB_HEIGHT;
    g_thumbHeader.biPlanes = 1;
    g_thumbHeader.biBitCount = 24;
    g_thumbHeader.biCompression = BI_RGB;
    g_thumbHeader.biSizeImage = sizeof g_thumbBits;
    for (int y = 0; y < THUMB_HEIGHT; ++y) {
        for (int x = 0; x < THUMB_WIDTH; ++x) {
            BYTE* pixel = g_thumbBits + y * THUMB_STRIDE + x * 3;
            pixel[0] = blue, pixel[1] = green, pixel[2] = red;
        }
    }
}

/* Scene n of the tape: ten seconds from 0:00:10*n, recorded on 4 July 2003. */
static SceneInfo DescribeScene(int n, BOOL ended)
{
    SceneInfo scene;
    ZeroMemory(&scene, sizeof scene);
    scene.dwTimeCodeIn = TimeCode(0, 0, 10 * n, 0);
    scene.dwTimeCodeOut = ended ? TimeCode(0, 0, 10 * n + 9, 24) : 0; /* 0: the end is not known yet */
    RecordedTime recorded = {2003, 7, 5, 4, 15, 6, (WORD)(10 * n), 0};
    scene.stRecorded = recorded;
    scene.dwPositionIn = QV_NO_POSITION; /* this deck has no device positions */
    scene.dwPositionOut = QV_NO_POSITION;
    return scene;
}

/* The deck's events: scene n begins at event 2n and ends at event 2n+1.
 * Even scenes bring their thumbnail with their begin; odd ones deliver it
 * once they have ended, before the next scene begins. */
static void OnDeckEvent(void)
{
    int n = g_events / 2;
    BOOL begins = g_events % 2 == 0;
    ++g_events;
    g_position = TimeCode(0, 0, 10 * n + (begins ? 0 : 9), 0);
    SceneInfo scene = DescribeScene(n, !begins);
    PaintThumbnail((BYTE)(60 * n), 120, (BYTE)(255 - 60 * n));
    if (begins) {
        scene.dwThumbSize = n % 2 == 0 ? sizeof g_thumbBits : 0;
        qvSetSceneDataBegin(&scene, n % 2 == 0 ? &g_thumbHeader : NULL, n % 2 == 0 ? g_thumbBits : NULL);
        if (n == SCENE_COUNT) {
            /* The tape ends inside this fifth scene: it never ends, so it goes. */
            Say("the tape ended; scenes left after clearing the open one: %d\n", qvPSClearUncompleteScene());
            qvForceToStopPreScan(0); /* stops the scan: request 2 follows */
        }
        return;
    }
    qvSetSceneDataEnd(&scene);
    if (n % 2 == 1) /* the late thumbnail of the scene just completed */
        qvSetSceneBitmapData(qvGetCurrentSceneNumber() - 1, &g_thumbHeader, g_thumbBits, sizeof g_thumbBits);
}

/* Captures the marked scenes: this deck only names a file for each one. */
static int32_t CaptureScenes(const CaptureRequest* request)
{
    int index = 0;
    for (const SceneSpan* span = request->pFirstSpan; span; span = span->pNext, ++index) {
        char path[QV_MAX_PATH];
        wsprintfA(path, "C:\\Captures\\scene %d.avi", index + 1);
        qvSetCapSceneFileName(index, path); /* counts the marked scenes from the top */
    }
    Say("request 3: captured %d scenes\n", index);
    return 1; /* the capture has finished */
}

/* Every request of the module arrives here, on the thread of the dialog. */
static int32_t HostRequest(int32_t request, intptr_t lParam)
{
    switch (request) {
    case HOSTREQ_GET_DEVICE_STATUS: {
        DeviceStatus* status = (DeviceStatus*)lParam;
        for (int i = 0; i < 8; ++i) status->adwCondition[i] = 1; /* connected, playing, a cassette in, ... */
        g_deviceReady = TRUE;
        Say("request %d: the device is ready\n", request);
        return 1;
    }
    case HOSTREQ_START_SCAN: {
        const ScanRequest* scan = (const ScanRequest*)lParam;
        Say("request 1: scan method %d\n", scan->nScanMethod);
        if (scan->nScanMethod == 3) return 0; /* this deck cannot capture while it scans */
        g_events = 0;
        g_scanStarted = TRUE;
        SetTimer(g_host, DECK_TIMER, 100, NULL); /* the deck plays; scenes follow */
        return 1;
    }
    case HOSTREQ_STOP_SCAN:
        KillTimer(g_host, DECK_TIMER);
        g_scanStopped = TRUE;
        Say("request 2: the scan stopped with %d scenes\n", (int)lParam);
        return 1;
    case HOSTREQ_CAPTURE_SCENES:
        return CaptureScenes((const CaptureRequest*)lParam);
    case HOSTREQ_GET_POSITION:
        *(uint32_t*)lParam = g_position;
        return 1;
    case HOSTREQ_SEEK_TIMECODE:
        g_position = *(const uint32_t*)lParam; /* the tape is there at once */
        return 1;
    case HOSTREQ_DIALOG_CLOSED:
        Say("request %d: the dialog closed\n", request);
        g_dialog = NULL;
        PostMessageA(g_host, WM_CLOSE, 0, 0); /* this host has nothing else to offer */
        return 1;
    default:
        return 0; /* playing tape, device positions, choosing a library: not offered here */
    }
}

/* --auto answers the module's question whether to save the list: No. */
static BOOL CALLBACK AnswerNo(HWND window, LPARAM owner)
{
    char name[16];
    if (GetWindow(window, GW_OWNER) == (HWND)owner && GetClassNameA(window, name, sizeof name) &&
        lstrcmpA(name, "#32770") == 0)
        PostMessageA(window, WM_COMMAND, IDNO, 0);
    return TRUE;
}

static void OnUserTimer(void)
{
    if (!g_dialog) return;
    if (g_deviceReady && !g_scanStarted) {
        SendMessageA(GetDlgItem(g_dialog, START_SCAN_BUTTON), BM_CLICK, 0, 0);
    } else if (g_scanStopped) {
        g_scanStopped = FALSE;
        qvForceToStopPreScan(1); /* closes the dialog; it asks whether to save first */
    } else {
        EnumThreadWindows(GetCurrentThreadId(), AnswerNo, (LPARAM)g_dialog);
    }
}

static LRESULT CALLBACK HostWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_TIMER:
        if (wParam == DECK_TIMER) OnDeckEvent();
        if (wParam == USER_TIMER) OnUserTimer();
        return 0;
    case WM_CLOSE:
        if (g_dialog) qvForceToStopPreScan(1); /* the dialog closes before the host */
        DestroyWindow(window);
        return 0;
    case WM_DESTROY:
        PostQuitMessage(0);
        return 0;
    default:
        return DefWindowProcA(window, message, wParam, lParam);
    }
}

int main(int argc, char** argv)
{
    g_auto = argc > 1 && lstrcmpA(argv[1], "--auto") == 0;
    WNDCLASSA windowClass;
    ZeroMemory(&windowClass, sizeof windowClass);
    windowClass.lpfnWndProc = HostWindowProc;
    windowClass.hInstance = GetModuleHandleA(NULL);
    windowClass.hCursor = LoadCursorA(NULL, (LPCSTR)IDC_ARROW);
    windowClass.hbrBackground = (HBRUSH)(COLOR_APPWORKSPACE + 1);
    windowClass.lpszClassName = "MinimalCaptureHost";
    RegisterClassA(&windowClass);
    g_host = CreateWindowA("MinimalCaptureHost", "Minimal capture host", WS_OVERLAPPEDWINDOW | WS_VISIBLE,
                           CW_USEDEFAULT, CW_USEDEFAULT, 480, 320, NULL, NULL, windowClass.hInstance, NULL);

    PreScanInitInfo info;
    ZeroMemory(&info, sizeof info);
    info.hHost = g_host;
    info.pfnHostRequest = HostRequest;
    lstrcpyA(info.szCaptureExt, ".avi");
    info.nTvStandard = 2;    /* a 25-frame tape */
    info.pszHelpFile = "";   /* no help file */
    if (!g_host || !qvPreScanInit(&info)) return 1;

    g_dialog = qvShowPreScanDlg(g_host);
    if (!g_dialog) {
        qvPreScanUnInit();
        return 1;
    }
    if (g_auto) SetTimer(g_host, USER_TIMER, 200, NULL);

    /* A plain loop: the module routes its dialog's keys itself. */
    MSG message;
    while (GetMessageA(&message, NULL, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    qvPreScanUnInit(); /* after the dialog has closed */
    Say("the session ended\n", 0);
    return 0;
}
