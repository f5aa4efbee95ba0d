// Fixed fields at their limit and one past it, from every way in: the
// host's initialisation record, the settings file, the user's comment, the
// scene feed's thumbnail size, and a list file's pixel count.  A text that
// fits is kept whole; one that does not is cut inside its field; a size that
// lies is never believed past what was really handed over.
#include "ResourceIds.h"
#include "platform/BoundedCopy.h"
#include "platform/File.h"
#include "sceneops/SceneListCodec.h"
#include "scenes/SceneStore.h"
#include "session/Session.h"
#include "support/DialogFixture.h"
#include "support/TestEnvironment.h"

#include <cstring>

using namespace qvtest;

namespace {

class OverlongInputTest : public DialogFixture {
protected:
    void Restart(const PreScanInitInfo& info)
    {
        qvPreScanUnInit();
        ASSERT_EQ(qvPreScanInit(&info), 1);
    }
};

struct Limit {
    size_t length;   // characters offered
    size_t kept;     // characters the field keeps
};

} // namespace

TEST_F(OverlongInputTest, CaptureExtensionOfNineteenAndTwenty)
{
    for (Limit l : {Limit{19, 19}, Limit{20, 19}}) {
        PreScanInitInfo info = MakeInitInfo();
        std::memset(info.szCaptureExt, 0, sizeof info.szCaptureExt);
        info.szCaptureExt[0] = '.';
        std::memset(info.szCaptureExt + 1, 'e', l.length - 1);  // 20: no NUL in the field
        Restart(info);
        EXPECT_EQ(std::strlen(g_session.szCaptureExt), l.kept) << l.length;
        EXPECT_LT(std::strlen(g_session.szCaptureName), sizeof g_session.szCaptureName) << l.length;
    }
}

TEST_F(OverlongInputTest, CaptureNameAndFoldersFromTheSettingsFile)
{
    std::string folder = MakeTempDir("Overlong");
    for (size_t name : {99u, 100u, 200u}) {
        WriteIni("PSCaptureFileName", (folder + "\\" + std::string(name - 4, 'n') + ".avi").c_str());
        Restart(MakeInitInfo());
        SCOPED_TRACE(name);
        EXPECT_LE(std::strlen(g_session.szCaptureName), 99u);
        EXPECT_STREQ(g_session.szCaptureName + std::strlen(g_session.szCaptureName) - 4, ".avi");
        EXPECT_EQ(std::string(g_session.szCaptureFolder), folder);
    }
    for (size_t length : {259u, 260u, 400u}) {
        WriteIni("SavePSFDir", ("C:\\" + std::string(length - 3, 'd')).c_str());
        WriteIni("ProductionLibFolder", ("C:\\" + std::string(length - 3, 'l')).c_str());
        Restart(MakeInitInfo());
        SCOPED_TRACE(length);
        EXPECT_LE(std::strlen(g_session.szSavePSFDir), 259u);
        EXPECT_LE(std::strlen(g_session.szProductionLibFolder), 259u);
    }
}

TEST_F(OverlongInputTest, CommentOfFiveHundredNineteenAndTwenty)
{
    OpenDialog();
    StartScan();
    FeedScene(Tc(0, 0, 1, 0), Tc(0, 0, 2, 0));
    PressKey(VK_ESCAPE);
    SceneRecord* r = g_arScenes.GetAt(0);
    for (Limit l : {Limit{519, 519}, Limit{520, 519}, Limit{5000, 519}}) {
        Dlg().SetSceneComment(0, std::string(l.length, 'c').c_str());
        EXPECT_EQ(std::strlen(r->szComment), l.kept) << l.length;
        EXPECT_EQ(r->szCaptureFile[0], 0) << "the next field stays untouched";
    }
}

TEST_F(OverlongInputTest, ThumbnailSizesThatLie)
{
    OpenDialog();
    StartScan();
    Thumbnail thumb = MakeThumbnail(10, 20, 30);
    const uint32_t whole = static_cast<uint32_t>(thumb.bits.size());
    struct Case {
        const char* what;
        uint32_t claimed;
        bool withPixels;
        uint32_t stored;  // bytes the table keeps
        bool blank;       // a blank picture in its place
    } cases[] = {
        {"size 0", 0, true, 0, false},
        {"no pixels", whole, false, 0, false},
        {"exact", whole, true, whole, false},
        {"fewer bytes than the header describes", whole - 1, true, whole, true},
        {"near 4 GiB", 0xFFFFFFF0u, true, whole, false},
    };
    int row = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        uint32_t in = Tc(0, 1, row, 0);
        SceneInfo begin = MakeScene(in, 0, c.claimed);
        qvSetSceneDataBegin(&begin, c.withPixels ? &thumb.header : nullptr, c.withPixels ? thumb.bits.data() : nullptr);
        SceneInfo end = MakeScene(in, in + 10);
        qvSetSceneDataEnd(&end);
        ASSERT_EQ(qvGetCurrentSceneNumber(), row + 1);
        EXPECT_EQ(g_arScenes.GetAt(row)->dwThumbSize, c.stored);
        if (c.stored) {
            const uint8_t* bits = g_arThumbBits.GetAt(g_arThumbBits.GetSize() - 1);
            EXPECT_EQ(bits[0], c.blank ? 0 : thumb.bits[0]);
        }
        ++row;
    }
    UpdateWindow(Item(IDC_SCENE_LIST));
    PressKey(VK_ESCAPE);
}

namespace {

// A list file whose one entry has a full header but only 16 bytes of pixels.
class ShortPixelsSource : public qv::SceneListSource {
public:
    ShortPixelsSource() : m_thumb(MakeThumbnail(1, 1, 1))
    {
        std::memset(&m_record, 0, sizeof m_record);
        m_record.dwTimeCodeIn = Tc(0, 0, 1, 0);
        m_record.dwTimeCodeOut = Tc(0, 0, 2, 0);
        m_record.dwThumbSize = 16;
        std::memcpy(&m_header, &m_thumb.header, sizeof m_header);
    }
    int Count() const override { return 1; }
    SceneRecord* Record(int) override { return &m_record; }
    const ThumbHeader* Header(int) const override { return &m_header; }
    const uint8_t* Bits(int) const override { return m_thumb.bits.data(); }

private:
    Thumbnail m_thumb;
    SceneRecord m_record;
    ThumbHeader m_header;
};

} // namespace

TEST_F(OverlongInputTest, ListFileWithFewerPixelsThanItsHeaderOpensAndDraws)
{
    std::string path = MakeTempDir("ShortPixels") + "\\short.psf";
    {
        qv::File file;
        ASSERT_TRUE(file.Create(path.c_str()));
        ShortPixelsSource source;
        ASSERT_TRUE(qv::WriteSceneList(file, qv::SceneListTexts(), source));
    }
    OpenDialog();
    qv::CopyBounded(g_session.szSceneListFile, path.c_str());
    Dlg().OpenChosenSceneList();
    ASSERT_EQ(qvGetCurrentSceneNumber(), 1);
    EXPECT_EQ(g_arScenes.GetAt(0)->dwThumbSize, 16u);
    InvalidateRect(Item(IDC_SCENE_LIST), nullptr, TRUE);
    UpdateWindow(Item(IDC_SCENE_LIST));  // the row draws without its picture
    EXPECT_EQ(RowCount(), 1);
}
