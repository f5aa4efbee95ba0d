// Every export driven as a careless or hostile host might drive it: without
// a session or a dialog, with null pointers and bad indices, with texts at
// and past their fields' limits and with thumbnail sizes that lie.  (The
// tape texts a user types are limited by their edit boxes: DialogLifeTest.)  Nothing
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

TEST_F(HostileHostTest, TextsAtTheirLimitAndOnePast)
{
    struct Case {
        const char* field;
        size_t limit;
        std::function<size_t(size_t)> offer;  // offers n characters, returns those kept
    } cases[] = {
        {"scene file from the feed", 259, [&](size_t n) {
             SceneInfo s = MakeScene(Tc(0, 1, int(n % 60), 0), Tc(0, 1, int(n % 60), 10));
             std::memset(s.szSceneFile, 'U', n);  // 260: no NUL in the field
             qvSetSceneDataBegin(&s, nullptr, nullptr);
             qvSetSceneDataEnd(&s);
             return std::strlen(g_arScenes.GetAt(SceneTableSize() - 1)->szSceneFile);
         }},
        {"comment", 519, [&](size_t n) {
             Dlg().SetSceneComment(0, std::string(n, 'c').c_str());
             EXPECT_EQ(g_arScenes.GetAt(0)->szCaptureFile[0], 0) << "the next field stays untouched";
             return std::strlen(g_arScenes.GetAt(0)->szComment);
         }},
        {"captured file name", 259, [&](size_t n) {
             qvSetCapSceneFileName(0, std::string(n, 'p').c_str());
             return std::strlen(g_arScenes.GetAt(0)->szCaptureFile);
         }},
    };
    OpenDialog();
    StartScan();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.field);
        if (c.limit == 519) {  // from the comment on: the scan stopped, the first scene marked
            PressKey(VK_ESCAPE);
            MarkRow(0);
        }
        EXPECT_EQ(c.offer(c.limit), c.limit);
        EXPECT_EQ(c.offer(c.limit + 1), c.limit);
    }
}

TEST_F(HostileHostTest, ThumbnailSizesThatLieAndIndicesOutOfRange)
{
    OpenDialog();
    StartScan();
    Thumbnail thumb = MakeThumbnail(10, 20, 30);
    const uint32_t whole = static_cast<uint32_t>(thumb.bits.size());
    struct Case {
        uint32_t claimed;
        bool withPixels;
        uint32_t stored;  // bytes the table keeps
        bool blank;       // a blank picture in their place
    } cases[] = {{0, true, 0, false}, {whole, false, 0, false}, {whole - 1, true, whole, true},
                 {0xFFFFFFF0u, true, whole, false}};  // fewer bytes than the header describes; near 4 GiB
    for (int row = 0; row < 4; ++row) {
        const Case& c = cases[row];
        SCOPED_TRACE(c.claimed);
        SceneInfo scene = MakeScene(Tc(0, 1, row, 0), 0, c.claimed);
        qvSetSceneDataBegin(&scene, c.withPixels ? &thumb.header : nullptr, c.withPixels ? thumb.bits.data() : nullptr);
        scene.dwTimeCodeOut = Tc(0, 1, row, 10);
        qvSetSceneDataEnd(&scene);
        EXPECT_EQ(g_arScenes.GetAt(row)->dwThumbSize, c.stored);
        const uint8_t* bits = c.stored ? g_arThumbBits.GetAt(g_arThumbBits.GetSize() - 1) : nullptr;
        if (bits) EXPECT_EQ(std::memcmp(bits, c.blank ? std::vector<uint8_t>(whole).data() : thumb.bits.data(), whole), 0);
    }
    // Null pointers and indices no scene has change nothing.
    qvSetSceneDataBegin(nullptr, nullptr, nullptr);
    qvSetSceneDataEnd(nullptr);
    for (int32_t n : {-1, INT_MIN, INT_MAX, 4}) {
        qvSetSceneBitmapData(n, &thumb.header, thumb.bits.data(), int32_t(whole));
        qvSetCapSceneFileName(n, "C:\\Captures\\x.avi");
    }
    EXPECT_EQ(SceneTableSize(), 4);
    EXPECT_EQ(g_arThumbBits.GetSize(), 2);
}
