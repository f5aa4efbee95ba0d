// Every export driven as a careless or hostile host might drive it: without
// a session or a dialog, with null pointers and bad indices, with texts at
// and past their fields' limits and with thumbnail sizes that lie.  Nothing
// may crash, a text that does not fit is cut inside its field, no buffer the
// host hands over is written past its end, and a size is never believed
// past the bytes given.
#include "ResourceIds.h"
#include "scenes/SceneStore.h"
#include "session/Session.h"
#include "support/DialogFixture.h"

#include <climits>
#include <cstring>
#include <functional>
#include <iterator>
#include <tuple>

using namespace qvtest;
using HostileHostTest = DialogFixture;

TEST_F(HostileHostTest, EveryExportIsIdleWithoutADialogOrASession)
{
    Guarded<QV_MAX_PATH> folder, index;
    SceneInfo s = MakeScene(Tc(0, 0, 1, 0), Tc(0, 0, 2, 0));
    Thumbnail t = MakeThumbnail(1, 2, 3);
    struct Case {
        const char* name;
        std::function<long()> call;  // the export's result, or what it left behind
        long withSession, without;
    } cases[] = {
        {"qvPreScanInit(null)", [] { return long(qvPreScanInit(nullptr)); }, 0, 0},
        {"qvMinimizePreScanDlg", [] { qvMinimizePreScanDlg(); return long(g_hPreScanWnd != nullptr); }, 0, 0},
        {"qvRestorePreScanDlg", [] { qvRestorePreScanDlg(); return long(g_hPreScanWnd != nullptr); }, 0, 0},
        {"qvForceToStopPreScan", [] { qvForceToStopPreScan(1); return long(g_bStopScan + g_bForcedStop); }, 0, 0},
        {"qvGetCurrentSceneNumber", [] { return long(qvGetCurrentSceneNumber()); }, 0, 0},
        {"qvGetLibFolderFromPreScan", [&] { qvGetLibFolderFromPreScan(folder.field); qvGetLibFolderFromPreScan(nullptr);
             return long(folder.Intact() && folder.Text() == std::string(QV_MAX_PATH, 'g')); }, 1, 1},
        {"qvGetPreScanIndexFileName", [&] { qvGetPreScanIndexFileName(index.field); qvGetPreScanIndexFileName(nullptr);
             return long(index.Intact() && index.Text().find("PSIndex.avi") != std::string::npos); }, 1, 1},
        {"qvPSClearUncompleteScene", [] { return long(qvPSClearUncompleteScene()); }, 0, 0},
        {"qvSetSceneDataBegin", [&] { qvSetSceneDataBegin(&s, nullptr, nullptr); return long(SceneTableSize()); }, 0, 0},
        {"qvSetSceneDataEnd", [&] { qvSetSceneDataEnd(&s); return long(SceneTableSize()); }, 0, 0},
        {"qvSetSceneBitmapData", [&] { qvSetSceneBitmapData(0, &t.header, t.bits.data(), 100);
             return long(g_arThumbBits.GetSize()); }, 0, 0},
        {"qvSetCapSceneFileName", [] { qvSetCapSceneFileName(0, "C:\\x.avi"); return long(SceneTableSize()); }, 0, 0},
        {"qvShowPreScanDlg", [&] { return long(qvShowPreScanDlg(m_hostWindow) != nullptr); }, -1, 0},  // -1: not asked
        {"qvPreScanUnInit", [] { return long(qvPreScanUnInit()); }, 1, 1},  // last: it ends the session
    };
    for (bool session : {true, false})
        for (const Case& c : cases)
            if (!session || c.withSession >= 0) EXPECT_EQ(c.call(), session ? c.withSession : c.without) << c.name << session;
}

// A host's text at its field's limit is kept whole; one past it (the scene
// file then has no terminator in its field) is cut to the limit.
TEST_F(HostileHostTest, HostTextsAreCutInsideTheirFields)
{
    OpenDialog();
    StartScan();
    for (size_t n : {259u, 260u}) {
        SceneInfo s = MakeScene(Tc(0, 1, int(n % 60), 0), Tc(0, 1, int(n % 60), 10));
        std::memset(s.szSceneFile, 'U', n);
        qvSetSceneDataBegin(&s, nullptr, nullptr);
        qvSetSceneDataEnd(&s);
        EXPECT_EQ(std::strlen(g_arScenes.GetAt(SceneTableSize() - 1)->szSceneFile), 259u) << n;
    }
    PressKey(VK_ESCAPE);
    MarkRow(0);  // the host names the files of the marked scenes
    for (size_t n : {259u, 260u}) {
        qvSetCapSceneFileName(0, std::string(n, 'p').c_str());
        EXPECT_EQ(std::strlen(g_arScenes.GetAt(0)->szCaptureFile), 259u) << n;
    }
}

// A thumbnail is kept as the host sent it whenever the pixels its header
// describes lie within the bytes delivered (and never more than those are
// read); a header that describes more, or does not say how much, gets a
// blank picture.  Null pointers and indices no scene has change nothing.
TEST_F(HostileHostTest, ThumbnailsKeptVerbatimOrBlankAndBadIndicesIgnored)
{
    OpenDialog();
    StartScan();
    const uint32_t kMjpg = 0x47504A4D, k24 = 80 * 3 * 60;
    struct Case {  // stored: bytes the table keeps, 0 for no thumbnail; kept: header and bytes as sent
        const char* what;
        uint32_t compression, sizeImage, delivered;
        uint16_t bitCount;
        bool withPixels;
        uint32_t stored;
        bool kept;
    } cases[] = {
        {"24-bit, bytes to spare", 0, 0, k24 + 100, 24, true, k24 + 100, true},
        {"8-bit", 0, 0, 80 * 60, 8, true, 80 * 60, true},
        {"compressed", kMjpg, 700, 700, 24, true, 700, true},
        {"near 4 GiB claimed", 0, 0, 0xFFFFFFF0u, 24, true, k24, true},
        {"compressed, fewer bytes than it states", kMjpg, 700, 699, 24, true, k24, false},
        {"compressed, no size stated", kMjpg, 0, 700, 24, true, k24, false},
        {"24-bit, fewer bytes than it describes", 0, 0, k24 - 1, 24, true, k24, false},
        {"no bytes claimed", 0, 0, 0, 24, true, 0, false},
        {"no pixels", 0, 0, k24, 24, false, 0, false},
    };
    std::vector<uint8_t> pixels(20000);
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<uint8_t>(i * 7 + 1);
    int thumbs = 0, rows = int(std::size(cases));
    for (int row = 0; row < rows; ++row) {
        const Case& c = cases[row];
        SCOPED_TRACE(c.what);
        BITMAPINFOHEADER sent = {sizeof sent, 80, 60, 1, c.bitCount, c.compression, c.sizeImage, 0, 0, 0, 0};
        SceneInfo begin = MakeScene(Tc(0, 1, row, 0), 0, c.delivered), end = MakeScene(Tc(0, 1, row, 0), Tc(0, 1, row, 5));
        qvSetSceneDataBegin(&begin, c.withPixels ? &sent : nullptr, c.withPixels ? pixels.data() : nullptr);
        qvSetSceneDataEnd(&end);
        ASSERT_EQ(g_arScenes.GetAt(row)->dwThumbSize, c.stored);
        ASSERT_EQ(g_arThumbBits.GetSize(), thumbs += c.stored != 0);
        if (!c.stored) continue;
        const ThumbHeader* header = g_arThumbHeaders.GetAt(thumbs - 1);
        const uint8_t* bits = g_arThumbBits.GetAt(thumbs - 1);
        EXPECT_EQ(std::memcmp(header, &sent, sizeof sent) == 0, c.kept);
        EXPECT_EQ(std::memcmp(bits, pixels.data(), c.stored) == 0, c.kept);
        if (!c.kept) EXPECT_EQ(std::tuple(header->biBitCount, header->biCompression, bits[0] | bits[k24 - 1]), std::tuple(24, 0u, 0));
    }
    UpdateWindow(Item(IDC_SCENE_LIST));  // what cannot be drawn is a blank cell
    qvSetSceneDataBegin(nullptr, nullptr, nullptr);
    qvSetSceneDataEnd(nullptr);
    const BITMAPINFOHEADER whole = {sizeof whole, 80, 60, 1, 24, BI_RGB, k24, 0, 0, 0, 0};
    for (int32_t n : {-1, INT_MIN, INT_MAX, rows}) {
        qvSetSceneBitmapData(n, &whole, pixels.data(), int32_t(k24));
        qvSetCapSceneFileName(n, "C:\\Captures\\x.avi");
    }
    EXPECT_EQ(SceneTableSize(), rows);
    qvSetSceneBitmapData(rows - 2, &whole, pixels.data(), int32_t(k24));  // late, for a scene begun without one
    EXPECT_EQ(g_arThumbBits.GetSize(), thumbs + 1);
    EXPECT_EQ(g_arScenes.GetAt(rows - 2)->dwThumbSize, k24);
    PressKey(VK_ESCAPE);
}
