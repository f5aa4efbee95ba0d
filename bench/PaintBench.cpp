// Painting: one full repaint of the pre-scan dialog's scene list showing
// thumbnail rows (every visible row, all six cells drawn by the module),
// against drawing as many 80x60 thumbnails with DrawDib straight into a
// window of the same size: the least any list of thumbnails must draw.
#include "BenchSupport.h"
#include "ResourceIds.h"

#include <commctrl.h>
#include <vfw.h>

#include <algorithm>
#include <cstdio>

using namespace bench;

namespace {

const int kScenes = 40;

double RepaintList(HWND list)
{
    double t0 = NowSeconds();
    InvalidateRect(list, nullptr, TRUE);
    UpdateWindow(list);
    GdiFlush();
    return NowSeconds() - t0;
}

double DrawThumbnails(HWND wnd, HDRAWDIB dd, const Thumbnail& thumb, int rows, int rowHeight)
{
    double t0 = NowSeconds();
    HDC dc = GetDC(wnd);
    for (int r = 0; r < rows; ++r) {
        BITMAPINFOHEADER bih = thumb.header;
        DrawDibDraw(dd, dc, 40, r * rowHeight + 2, 80, 60, &bih, const_cast<uint8_t*>(thumb.bits.data()), 0, 0, 80,
                    60, DDF_BACKGROUNDPAL);
    }
    ReleaseDC(wnd, dc);
    GdiFlush();
    return NowSeconds() - t0;
}

} // namespace

int main(int argc, char** argv)
{
    Options opt = ParseOptions(argc, argv);
    int reps = opt.smoke ? 1 : std::max(opt.reps, 21);
    InitCommonControls();
    StartBenchSession("qv-bench-paint");
    HWND host = CreateHostWindow();
    HWND dlg = qvShowPreScanDlg(host);
    if (!dlg) return 1;
    HWND list = GetDlgItem(dlg, IDC_SCENE_LIST);
    PumpPending();
    SendMessageA(GetDlgItem(dlg, IDC_START_SCAN), BM_CLICK, 0, 0);
    for (int i = 0; i < kScenes; ++i) {
        Thumbnail thumb = MakeThumbnail(i);
        SceneInfo begin = MakeScene(i, false, static_cast<uint32_t>(thumb.bits.size()));
        qvSetSceneDataBegin(&begin, &thumb.header, thumb.bits.data());
        SceneInfo end = MakeScene(i, true, 0);
        qvSetSceneDataEnd(&end);
    }
    qvForceToStopPreScan(0);
    PumpPending();
    SendMessageA(list, LVM_ENSUREVISIBLE, 0, FALSE);
    PumpPending();

    int visible = static_cast<int>(SendMessageA(list, LVM_GETCOUNTPERPAGE, 0, 0)) + 1;  // and the partly shown one
    RECT rowRect = {LVIR_BOUNDS, 0, 0, 0};
    SendMessageA(list, LVM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&rowRect));
    int rowHeight = rowRect.bottom - rowRect.top;
    RECT client;
    GetClientRect(list, &client);

    HWND plain = CreateWindowA("STATIC", "baseline", WS_POPUP | WS_VISIBLE, 420, 0, client.right, client.bottom,
                               nullptr, nullptr, nullptr, nullptr);
    HDRAWDIB dd = DrawDibOpen();
    Thumbnail thumb = MakeThumbnail(7);
    PumpPending();

    std::vector<double> paint, base;
    RepaintList(list);  // first use of fonts and bitmaps
    DrawThumbnails(plain, dd, thumb, visible, rowHeight);
    for (int r = 0; r < reps; ++r) {
        paint.push_back(RepaintList(list) * 1e3);
        base.push_back(DrawThumbnails(plain, dd, thumb, visible, rowHeight) * 1e3);
    }
    Row row;
    row.figure = "Full repaint of the scene list, " + std::to_string(visible) + " thumbnail rows visible";
    row.unit = "ms";
    row.value = StatsOf(paint);
    row.baseline = "DrawDib of as many 80x60 thumbnails";
    row.base = StatsOf(base);
    row.target = "<= 16 ms (one 60 Hz frame)";
    row.met = row.value.median <= 16.0;
    Report(row);

    DrawDibClose(dd);
    DestroyWindow(plain);
    {
        MessageBoxAnswerer answerNo(IDNO);
        qvForceToStopPreScan(1);
    }
    DestroyWindow(host);
    qvPreScanUnInit();
    return 0;
}
