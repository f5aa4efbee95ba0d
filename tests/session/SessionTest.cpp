// The exports a host calls before and after a session, and the session they keep.
#include "ResourceIds.h"
#include "qvPreScan.h"
#include "session/Session.h"
#include "support/ScriptedHost.h"
#include "support/TestEnvironment.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

using namespace qvtest;

namespace {

class SessionTest : public testing::Test {
protected:
    void SetUp() override
    {
        qvPreScanUnInit();
        DeleteIni();
        ScriptedHost::Instance().Reset();
    }
    void TearDown() override { qvPreScanUnInit(); }
};

std::string IndexFileName()
{
    char path[QV_MAX_PATH];
    std::memset(path, '#', sizeof path);
    qvGetPreScanIndexFileName(path);
    return path;
}

} // namespace

TEST_F(SessionTest, InitRefusesANullRecord)
{
    EXPECT_EQ(qvPreScanInit(nullptr), 0);
    EXPECT_FALSE(HasSession());
}

TEST_F(SessionTest, InitCopiesTheHostRecord)
{
    PreScanInitInfo info = MakeInitInfo(".avi", 1, "C:\\Help\\capture.hlp");
    ASSERT_EQ(qvPreScanInit(&info), 1);
    EXPECT_TRUE(HasSession());
    EXPECT_EQ(g_session.hHost, info.hHost);
    EXPECT_EQ(g_session.pfnHostRequest, &ScriptedHost::Proc);
    EXPECT_STREQ(g_session.szCaptureExt, ".avi");
    EXPECT_EQ(g_session.nTvStandard, 1);
    EXPECT_STREQ(g_szHelpFile, "C:\\Help\\capture.hlp");
    EXPECT_EQ(g_session.pDialog, nullptr);
    EXPECT_NE(g_hResInst, nullptr);
    // Initialisation itself asks nothing of the host.
    EXPECT_TRUE(ScriptedHost::Instance().Requests().empty());
}

TEST_F(SessionTest, TvStandardReducesToThreeValues)
{
    for (auto [given, kept] : {std::pair{0, 0}, {1, 1}, {2, 2}, {7, 2}, {-1, 2}, {0x7FFFFFFF, 2}}) {
        PreScanInitInfo info = MakeInitInfo(".avi", given);
        qvPreScanInit(&info);
        EXPECT_EQ(g_session.nTvStandard, kept) << "given " << given;
    }
}

TEST_F(SessionTest, OverlongHostTextsAreCutNeverOverrun)
{
    PreScanInitInfo info = MakeInitInfo();
    std::memset(info.szCaptureExt, 'x', sizeof info.szCaptureExt);  // no NUL in its 20 bytes
    std::string help(400, 'h');
    info.pszHelpFile = help.c_str();
    ASSERT_EQ(qvPreScanInit(&info), 1);
    EXPECT_EQ(std::string(g_session.szCaptureExt), std::string(19, 'x'));
    EXPECT_EQ(std::string(g_szHelpFile), std::string(259, 'h'));
    // The capture name still ends in the (cut) extension and fits its field.
    EXPECT_LT(std::strlen(g_session.szCaptureName), sizeof g_session.szCaptureName);
}

TEST_F(SessionTest, NullHelpPathGivesAnEmptyOne)
{
    PreScanInitInfo info = MakeInitInfo();
    info.pszHelpFile = nullptr;
    ASSERT_EQ(qvPreScanInit(&info), 1);
    EXPECT_STREQ(g_szHelpFile, "");
}

TEST_F(SessionTest, SecondInitStartsOverAndForgetsTheDialog)
{
    PreScanInitInfo info = MakeInitInfo(".avi", 0);
    qvPreScanInit(&info);
    g_session.nQuickScanSpeed = 3;
    info.nTvStandard = 2;
    EXPECT_EQ(qvPreScanInit(&info), 1);
    EXPECT_EQ(g_session.nTvStandard, 2);
    EXPECT_EQ(g_session.nQuickScanSpeed, 0);  // reread from the file
    EXPECT_EQ(qvGetCurrentSceneNumber(), 0);
}

TEST_F(SessionTest, UnInitEndsTheSessionAndIsHarmlessTwice)
{
    EXPECT_EQ(qvPreScanUnInit(), 1);  // no session: nothing happens
    PreScanInitInfo info = MakeInitInfo();
    qvPreScanInit(&info);
    EXPECT_EQ(qvPreScanUnInit(), 1);
    EXPECT_FALSE(HasSession());
    EXPECT_STREQ(g_session.szCaptureFolder, "");
    EXPECT_EQ(qvPreScanUnInit(), 1);
    // The help path outlives the session.
    EXPECT_STREQ(g_szHelpFile, "C:\\help\\qv.hlp");
}

TEST_F(SessionTest, IndexFileNameFollowsTheCaptureFolder)
{
    EXPECT_EQ(IndexFileName(), "\\PSIndex.avi");  // before any initialisation
    PreScanInitInfo info = MakeInitInfo();
    qvPreScanInit(&info);
    std::strcpy(g_session.szCaptureFolder, "D:\\Video");
    EXPECT_EQ(IndexFileName(), "D:\\Video\\PSIndex.avi");
    std::strcpy(g_session.szCaptureFolder, "D:\\");
    EXPECT_EQ(IndexFileName(), "D:\\PSIndex.avi");
    // A folder that fills its field: the path is cut at 259 characters.
    std::memset(g_session.szCaptureFolder, 'f', 259);
    g_session.szCaptureFolder[259] = 0;
    EXPECT_EQ(IndexFileName().size(), 259u);
    qvGetPreScanIndexFileName(nullptr);  // ignored
}

TEST_F(SessionTest, ExportsWithoutADialogDoNothing)
{
    char buffer[QV_MAX_PATH] = "unchanged";
    // Before a session...
    EXPECT_EQ(qvGetCurrentSceneNumber(), 0);
    EXPECT_EQ(qvPSClearUncompleteScene(), 0);
    qvGetLibFolderFromPreScan(buffer);
    qvMinimizePreScanDlg();
    qvRestorePreScanDlg();
    qvForceToStopPreScan(1);
    SceneInfo scene = {};
    qvSetSceneDataBegin(&scene, nullptr, nullptr);
    qvSetSceneDataEnd(&scene);
    qvSetSceneBitmapData(0, nullptr, nullptr, 1);
    qvSetCapSceneFileName(0, "C:\\x.avi");
    EXPECT_STREQ(buffer, "unchanged");
    // ...and with a session but no dialog.
    PreScanInitInfo info = MakeInitInfo();
    qvPreScanInit(&info);
    EXPECT_EQ(qvGetCurrentSceneNumber(), 0);
    EXPECT_EQ(qvPSClearUncompleteScene(), 0);
    qvGetLibFolderFromPreScan(buffer);
    qvForceToStopPreScan(0);
    qvSetSceneDataBegin(&scene, nullptr, nullptr);
    qvSetSceneDataEnd(nullptr);
    qvSetSceneDataBegin(nullptr, nullptr, nullptr);
    qvSetCapSceneFileName(-1, nullptr);
    EXPECT_STREQ(buffer, "unchanged");
    EXPECT_EQ(g_bStopScan, 0);
    EXPECT_TRUE(ScriptedHost::Instance().Requests().empty());
}
