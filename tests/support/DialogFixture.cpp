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
    HWND h = qvShowPreScanDlg(m_hostWindow);
    ASSERT_NE(h, nullptr);
    PumpPending();  // the posted device check
}

std::string DialogFixture::Title()
{
    char text[1024] = "";
    GetWindowTextA(Wnd(), text, sizeof text);
    return text;
}

int DialogFixture::RowCount()
{
    return static_cast<int>(SendMessageA(Item(IDC_SCENE_LIST), LVM_GETITEMCOUNT, 0, 0));
}

std::string DialogFixture::CellText(int row, int column)
{
    char text[1024] = "";
    LVITEMA item = {};
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = sizeof text;
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
    SceneInfo s;
    std::memset(&s, 0, sizeof s);
    s.dwTimeCodeIn = tcIn;
    s.dwTimeCodeOut = tcOut;
    s.stRecorded = {2003, 7, 5, 4, 15, 6, 9, 0};
    s.dwThumbSize = thumbBytes;
    s.dwPositionIn = tcIn / 2;
    s.dwPositionOut = tcOut / 2;
    return s;
}

Thumbnail MakeThumbnail(uint8_t r, uint8_t g, uint8_t b, int width, int height)
{
    Thumbnail t;
    std::memset(&t.header, 0, sizeof t.header);
    t.header.biSize = sizeof t.header;
    t.header.biWidth = width;
    t.header.biHeight = height;
    t.header.biPlanes = 1;
    t.header.biBitCount = 24;
    int stride = (width * 3 + 3) & ~3;
    t.bits.assign(static_cast<size_t>(stride) * height, 0);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            uint8_t* p = &t.bits[static_cast<size_t>(y) * stride + x * 3];
            p[0] = b;
            p[1] = g;
            p[2] = r;
        }
    t.header.biSizeImage = static_cast<DWORD>(t.bits.size());
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

void DialogFixture::StartScan()
{
    Click(IDC_START_SCAN);
    ASSERT_EQ(Dlg().m_nState, PS_SCANNING);
}

void DialogFixture::OpenWithScenes(int n)
{
    OpenDialog();
    StartScan();
    for (int i = 0; i < n; ++i) FeedScene(Tc(0, 0, 10 * i, 0), Tc(0, 0, 10 * i + 5, 0));
    PressKey(VK_ESCAPE);
    ASSERT_EQ(Dlg().m_nState, PS_IDLE);
    ASSERT_EQ(RowCount(), n);
}

} // namespace qvtest
