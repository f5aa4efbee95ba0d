#include "support/DialogFixture.h"

#include "ResourceIds.h"
#include "scenes/SceneStore.h"
#include "session/Session.h"
#include "support/TestEnvironment.h"

#include <commctrl.h>
#include <cstring>

namespace qvtest {

void DialogFixture::SetUp()
{
    DeleteIni();
    Host().Reset();
    PreScanInitInfo info = MakeInitInfo();
    ASSERT_EQ(qvPreScanInit(&info), 1);
    m_hostWindow = CreateWindowA("STATIC", "Host", WS_OVERLAPPEDWINDOW, 0, 0, 400, 300, nullptr, nullptr,
                                 nullptr, nullptr);
}

void DialogFixture::TearDown()
{
    if (g_session.pDialog) {
        // Leave nothing asking questions: the list is forgotten unsaved.
        g_session.pDialog->m_bModified = 0;
        if (g_session.pDialog->IsWindow()) g_session.pDialog->DestroyWindow();
        delete g_session.pDialog;
        g_session.pDialog = nullptr;
    }
    qvPreScanUnInit();
    DestroyWindow(m_hostWindow);
    PumpPending();
    g_bStopScan = 0;
    g_bForcedStop = 0;
}

void DialogFixture::OpenDialog()
{
    ASSERT_NE(qvShowPreScanDlg(m_hostWindow), nullptr);
    PumpPending();  // the posted device check
}

std::string DialogFixture::Title()
{
    char text[1024] = "";
    return GetWindowTextA(Wnd(), text, sizeof text) ? text : "";
}

int DialogFixture::RowCount() { return static_cast<int>(SendMessageA(Item(IDC_SCENE_LIST), LVM_GETITEMCOUNT, 0, 0)); }

std::string DialogFixture::CellText(int row, int column)
{
    char text[1024] = "";
    LVITEMA item = {0, 0, column, 0, 0, text, sizeof text};
    SendMessageA(Item(IDC_SCENE_LIST), LVM_GETITEMTEXTA, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return text;
}

void DialogFixture::Click(int id)
{
    SendMessageA(Item(id), BM_CLICK, 0, 0);
    PumpPending();
}

void DialogFixture::PressKey(UINT vk)
{
    // Through the thread's queue, as a key from the keyboard arrives.
    PostMessageA(GetFocus() ? GetFocus() : Wnd(), WM_KEYDOWN, vk, 1);
    PumpPending();
}

SceneInfo MakeScene(uint32_t tcIn, uint32_t tcOut, uint32_t thumbBytes)
{
    SceneInfo s = {};
    s.dwTimeCodeIn = tcIn, s.dwTimeCodeOut = tcOut, s.dwThumbSize = thumbBytes;
    s.dwPositionIn = tcIn / 2, s.dwPositionOut = tcOut / 2;
    s.stRecorded = {2003, 7, 5, 4, 15, 6, 9, 0};
    return s;
}

Thumbnail MakeThumbnail(uint8_t r, uint8_t g, uint8_t b, int width, int height)
{
    int stride = (width * 3 + 3) & ~3;
    Thumbnail t = {{sizeof(BITMAPINFOHEADER), width, height, 1, 24, BI_RGB, DWORD(stride * height)}, {}};
    t.bits.assign(t.header.biSizeImage, 0);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width * 3; ++x) t.bits[size_t(y) * stride + x] = x % 3 ? x % 3 == 1 ? g : r : b;
    return t;
}

void DialogFixture::FeedScene(uint32_t tcIn, uint32_t tcOut, bool withThumbnail)
{
    Thumbnail thumb = MakeThumbnail(200, 40, 40);
    SceneInfo begin = MakeScene(tcIn, 0, withThumbnail ? static_cast<uint32_t>(thumb.bits.size()) : 0);
    qvSetSceneDataBegin(&begin, withThumbnail ? &thumb.header : nullptr, withThumbnail ? thumb.bits.data() : nullptr);
    SceneInfo end = MakeScene(tcIn, tcOut);
    qvSetSceneDataEnd(&end);
}

void DialogFixture::StartScan() { Click(IDC_START_SCAN); ASSERT_EQ(Dlg().m_nState, PS_SCANNING); }

void DialogFixture::OpenWithScenes(int n)
{
    OpenDialog();
    StartScan();
    for (int i = 0; i < n; ++i) FeedScene(Tc(0, 0, 10 * i, 0), Tc(0, 0, 10 * i + 5, 0));
    PressKey(VK_ESCAPE);
    ASSERT_EQ(Dlg().m_nState, PS_IDLE);
    ASSERT_EQ(RowCount(), n);
}

void DialogFixture::ClickCell(int row, int column, bool shift)
{
    BYTE keys[256];
    GetKeyboardState(keys);
    keys[VK_SHIFT] = shift ? 0x80 : 0;
    SetKeyboardState(keys);
    HWND list = Item(IDC_SCENE_LIST);
    SendMessageA(list, LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
    RECT rc = {};
    Dlg().m_listScenes.GetCellRect(row, column, LVIR_BOUNDS, rc);
    LPARAM at = MAKELPARAM((rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2);
    SendMessageA(list, WM_LBUTTONDOWN, MK_LBUTTON | (shift ? MK_SHIFT : 0), at);
    SendMessageA(list, WM_LBUTTONUP, shift ? MK_SHIFT : 0, at);
    keys[VK_SHIFT] = 0;
    SetKeyboardState(keys);
    PumpPending();
}

} // namespace qvtest
