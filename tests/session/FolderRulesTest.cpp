// Folder and name rules that talk to the user: the warnings and the question
// before a folder is made, answered as a user would.
#include "ResourceIds.h"
#include "platform/SupportLib.h"
#include "session/FolderRules.h"
#include "session/Session.h"
#include "support/ModalResponder.h"
#include "support/ScriptedHost.h"
#include "support/TestEnvironment.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

using namespace qvtest;

namespace {

class FolderRulesTest : public testing::Test {
protected:
    void SetUp() override
    {
        PreScanInitInfo info = MakeInitInfo();
        ASSERT_EQ(qvPreScanInit(&info), 1);
    }
    void TearDown() override { qvPreScanUnInit(); }
};

} // namespace

TEST_F(FolderRulesTest, TrimWarnsOnceWhenNothingIsLeft)
{
    ModalResponder responder;
    responder.ExpectMessageRes(IDS_NAME_REQUIRED, IDOK);
    char spaces[] = "   ";
    EXPECT_EQ(TrimSpaces(spaces, 1), 0);
    EXPECT_STREQ(spaces, "");
    char quiet[] = "  ";
    EXPECT_EQ(TrimSpaces(quiet, 0), 0);
    char text[] = " Tape ";
    EXPECT_EQ(TrimSpaces(text, 1), 1);
    EXPECT_STREQ(text, "Tape");
    responder.Verify();
    EXPECT_EQ(responder.Seen().size(), 1u);
}

TEST_F(FolderRulesTest, ExistingFolderIsReadyWithoutAQuestion)
{
    ModalResponder responder;
    std::string dir = MakeTempDir("Ready") + "\\";
    char path[MAX_PATH];
    std::strcpy(path, ("  " + dir).c_str());
    EXPECT_EQ(EnsureFolderExists(path), FOLDER_READY);
    EXPECT_EQ(std::string(path), dir.substr(0, dir.size() - 1));  // trimmed, no trailing backslash
    EXPECT_EQ(EnsureFolderExists(nullptr), FOLDER_NO_ARGUMENT);
    responder.Verify();
    EXPECT_TRUE(responder.Seen().empty());
}

TEST_F(FolderRulesTest, EmptyNameIsWarnedAbout)
{
    ModalResponder responder;
    responder.ExpectMessageRes(IDS_NAME_REQUIRED, IDOK);
    char path[] = "    ";
    EXPECT_EQ(EnsureFolderExists(path), FOLDER_EMPTY_NAME);
    responder.Verify();
}

TEST_F(FolderRulesTest, MissingFolderDeclinedIsNotMade)
{
    std::string parent = MakeTempDir("Declined");
    std::string folder = parent + "\\New";
    ModalResponder responder;
    responder.ExpectMessageRes(IDS_ASK_CREATE_FOLDER, folder.c_str(), IDNO);
    char path[MAX_PATH];
    std::strcpy(path, (folder + "\\").c_str());
    EXPECT_EQ(EnsureFolderExists(path), FOLDER_NOT_CREATED);
    EXPECT_FALSE(qfdIsDirA(folder.c_str()));
    responder.Verify();
}

TEST_F(FolderRulesTest, MissingFolderAcceptedIsMadeWithItsParents)
{
    std::string folder = MakeTempDir("Accepted") + "\\a\\b\\c";
    ModalResponder responder;
    responder.ExpectMessageRes(IDS_ASK_CREATE_FOLDER, folder.c_str(), IDYES);
    char path[MAX_PATH];
    std::strcpy(path, folder.c_str());
    EXPECT_EQ(EnsureFolderExists(path), FOLDER_READY);
    EXPECT_TRUE(qfdIsDirA(folder.c_str()));
    responder.Verify();
}

TEST_F(FolderRulesTest, FolderThatCannotBeMadeIsReported)
{
    const char* bad = "Q:\\no drive\\here";
    ModalResponder responder;
    responder.ExpectMessageRes(IDS_ASK_CREATE_FOLDER, bad, IDYES).ExpectMessageRes(IDS_FOLDER_NOT_CREATED, IDOK);
    char path[MAX_PATH];
    std::strcpy(path, bad);
    EXPECT_EQ(EnsureFolderExists(path), FOLDER_NOT_CREATED);
    responder.Verify();
}

TEST_F(FolderRulesTest, FileNameKindsTrimInPlace)
{
    char spaced[] = "  clip.avi ";
    EXPECT_EQ(GetFileNameKind(spaced), 2);
    EXPECT_STREQ(spaced, "clip.avi");
    char plain[] = "clip";
    EXPECT_EQ(GetFileNameKind(plain), 0);
    char dots[] = "...";
    EXPECT_EQ(GetFileNameKind(dots), 0);
    char blanks[] = "  ";
    EXPECT_EQ(GetFileNameKind(blanks), 1);
    EXPECT_EQ(GetFileNameKind(nullptr), -1);
}

TEST_F(FolderRulesTest, CaptureNameTakesTheHostExtension)
{
    std::strcpy(g_session.szCaptureName, "Tape.mpeg");
    ApplyCaptureExtension();
    EXPECT_STREQ(g_session.szCaptureName, "Tape.avi");
    std::strcpy(g_session.szCaptureName, "");
    ApplyCaptureExtension();
    EXPECT_STREQ(g_session.szCaptureName, "");
}

TEST(SupportLib, DelSlashKeepsDriveRoots)
{
    char root[] = "D:\\";
    qfdDelSlashA(root);
    EXPECT_STREQ(root, "D:\\");
    char folder[] = "D:\\Video\\";
    qfdDelSlashA(folder);
    EXPECT_STREQ(folder, "D:\\Video");
}

TEST(SupportLib, AppDataFolderEndsInABackslashAndExists)
{
    char folder[MAX_PATH];
    ASSERT_GT(q32GetAppDataFolderA(folder, sizeof folder, 0, 1), 0);
    EXPECT_EQ(std::string(folder), AppDataDir());
    EXPECT_TRUE(qfdIsDirA(folder));
    char small[8];
    EXPECT_EQ(q32GetAppDataFolderA(small, sizeof small, 0, 1), 0);  // refuses to cut a folder
    EXPECT_STREQ(small, "");
}

TEST(SupportLib, FileAndFolderTestsTellThemApart)
{
    std::string dir = MakeTempDir("Kinds");
    std::string file = dir + "\\a.avi";
    HANDLE h = CreateFileA(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    CloseHandle(h);
    EXPECT_TRUE(qfIsFileExistA(file.c_str()));
    EXPECT_FALSE(qfIsFileExistA(dir.c_str()));
    EXPECT_TRUE(qfdIsDirA(dir.c_str()));
    EXPECT_FALSE(qfdIsDirA(file.c_str()));
    EXPECT_FALSE(qfIsFileExistA(nullptr));
    EXPECT_FALSE(qfdIsDirA(""));
}
