// The session a host starts and ends: what it keeps of the host's record,
// the settings file it reads (defaults under the user's documents folder,
// stored values, fields at their limit and one past), and the folder rules
// that ask the user before making a folder.
#include "ResourceIds.h"
#include "platform/ResourceLib.h"
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

const char kShellFolders[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

// Points the user's documents folder elsewhere (null: nowhere).
void SetPersonal(const char* v, DWORD type = REG_SZ)
{
    v ? RegSetKeyValueA(HKEY_CURRENT_USER, kShellFolders, "Personal", type, v, strlen(v) + 1)
      : RegDeleteKeyValueA(HKEY_CURRENT_USER, kShellFolders, "Personal");
}

class SessionTest : public testing::Test {
protected:
    void SetUp() override { qvPreScanUnInit(), DeleteIni(), ScriptedHost::Instance().Reset(); }
    void Init(PreScanInitInfo info = MakeInitInfo()) { qvPreScanUnInit(); ASSERT_EQ(qvPreScanInit(&info), 1); }
};

std::string Title() { return qv::LoadResString(IDS_MODULE_TITLE); }

} // namespace

TEST_F(SessionTest, InitStartsOverEachTimeAndUnInitEndsIt)
{
    EXPECT_TRUE(qvPreScanInit(nullptr) == 0 && qvPreScanUnInit() == 1);  // no session: nothing happens
    // Each initialisation takes the host's record again.  The 20-byte extension (20: no terminator) and the help path
    // (-1: none) are kept to their limit and cut past it; the standard
    // reduces to three values.
    struct Row { size_t ext, extKept; int help, helpKept; int32_t tv, tvKept; } rows[] = {
        {4, 4, 259, 259, 0, 0}, {19, 19, 260, 259, 1, 1}, {20, 19, 400, 259, 0x67676767, 2},  // text-like bytes
        {4, 4, -1, 0, 2, 2}, {4, 4, 0, 0, 7, 2}, {4, 4, 259, 259, -1, 2}};                     // after the field
    for (const Row& r : rows) {
        SCOPED_TRACE(testing::Message() << "extension " << r.ext << ", help " << r.help << ", tv " << r.tv);
        std::string help(r.help > 0 ? size_t(r.help) : 0, 'h');
        PreScanInitInfo info = MakeInitInfo(".", r.tv, r.help < 0 ? nullptr : help.c_str());
        std::memset(info.szCaptureExt + 1, 'e', r.ext - 1);
        ASSERT_EQ(qvPreScanInit(&info), 1);
        EXPECT_EQ(std::string(g_session.szCaptureExt), "." + std::string(r.extKept - 1, 'e'));
        EXPECT_EQ(std::string(g_szHelpFile), std::string(size_t(r.helpKept), 'h'));
        std::string name = g_session.szCaptureName;
        EXPECT_EQ(name.substr(name.size() - r.extKept), g_session.szCaptureExt) << "the name ends in the (cut) extension";
        EXPECT_EQ(g_session.nTvStandard, r.tvKept);
    }
    EXPECT_TRUE(qvPreScanUnInit() == 1 && !HasSession() && !g_session.szCaptureFolder[0] && qvPreScanUnInit() == 1);
    EXPECT_EQ(std::string(g_szHelpFile), std::string(259, 'h')) << "the help path outlives the session";
}

// An empty file: the folders go under the user's documents folder (made
// when missing), or are that folder when it cannot be made; the text keys
// are written back at once.
TEST_F(SessionTest, EmptySettingsFileGetsDefaultsUnderTheDocumentsFolder)
{
    const std::string docs = MakeTempDir("Docs"), name = qv::LoadResString(IDS_DEFAULT_CAPTURE_NAME) + ".avi";
    struct Row { const char* personal; DWORD type; std::string folder; bool made; } rows[] = {  // null: no value
        {docs.c_str(), REG_SZ, docs + "\\" + Title(), true}, {docs.c_str(), REG_EXPAND_SZ, docs + "\\" + Title(), true},
        {nullptr, 0, "C:\\My Documents\\" + Title(), true}, {"Q:\\no such drive", REG_SZ, "Q:\\no such drive", false}};
    char saved[MAX_PATH] = "";
    DWORD cb = sizeof saved;
    bool had = !RegGetValueA(HKEY_CURRENT_USER, kShellFolders, "Personal", RRF_RT_REG_SZ, nullptr, saved, &cb);
    for (const Row& r : rows) {
        SCOPED_TRACE(r.folder);
        SetPersonal(r.personal, r.type);
        DeleteIni();
        Init();
        EXPECT_EQ(std::string(g_session.szSavePSFDir), r.folder);
        EXPECT_EQ(std::string(g_session.szCaptureFolder), r.folder);
        EXPECT_EQ(std::string(g_session.szCaptureName), name);
        EXPECT_EQ(ReadIni("SavePSFDir"), r.folder);
        EXPECT_EQ(ReadIni("PSCaptureFileName"), r.folder + "\\" + name);
        EXPECT_EQ(qfdIsDirA(r.folder.c_str()) != FALSE, r.made);
    }
    SetPersonal(had ? saved : nullptr);
    RemoveDirectoryA(rows[2].folder.c_str()), RemoveDirectoryA("C:\\My Documents");
    EXPECT_EQ(g_session.szProductionLibFolder, qv::LoadResString(IDS_DEFAULT_LIBRARY_FOLDER));
    EXPECT_EQ(g_session.nScanMethodIndex, 2);
}

// The capture file splits into folder and name (which takes the host's
// extension, and keeps it when cut to its 99 characters); a scan method
// below one becomes two, others are kept; a folder at its field's limit is
// kept whole, one past it is cut inside the field.
TEST_F(SessionTest, StoredSettingsAreKeptWithinTheirFields)
{
    const std::string n95(95, 'n');
    struct Row { std::string stored, ext, folder, name; int method, methodKept; size_t lists; } rows[] = {
        {"D:\\Video\\Holiday.mpg", ".avi", "D:\\Video", "Holiday.avi", 3, 3, 259},
        {"D:\\Tape.mpeg", ".avi", "D:\\", "Tape.avi", 7, 7, 260},  // a drive root keeps its backslash
        {"D:\\Video\\Tape.mpg", "", "D:\\Video", "Tape.mpg", 0, 2, 600},
        {"D:\\V\\" + n95 + ".mpg", ".avi", "D:\\V", n95 + ".avi", -5, 2, 10},
        {"D:\\V\\" + n95 + "n.mpg", ".avi", "D:\\V", n95 + ".avi", 1, 1, 10},
        {"D:\\V\\" + n95 + n95 + ".mpg", ".avi", "D:\\V", n95 + ".avi", 2, 2, 10}};
    for (const Row& r : rows) {
        SCOPED_TRACE(r.stored);
        std::string lists = "C:\\" + std::string(r.lists - 3, 'd'), library = "C:\\" + std::string(r.lists - 3, 'l');
        WriteIni("PSCaptureFileName", r.stored.c_str());
        WriteIni("ScanMethodIndex", std::to_string(r.method).c_str());
        WriteIni("SavePSFDir", lists.c_str());
        WriteIni("ProductionLibFolder", library.c_str());
        Init(MakeInitInfo(r.ext.c_str()));
        EXPECT_EQ(std::string(g_session.szCaptureFolder), r.folder);
        EXPECT_EQ(std::string(g_session.szCaptureName), r.name);
        EXPECT_EQ(ReadIni("PSCaptureFileName"), r.stored) << "the user's setting is not rewritten";
        EXPECT_EQ(g_session.nScanMethodIndex, r.methodKept);
        EXPECT_EQ(ReadIni("ScanMethodIndex"), std::to_string(r.methodKept));
        EXPECT_EQ(std::string(g_session.szSavePSFDir), lists.substr(0, 259));
        EXPECT_STREQ(g_session.szSceneListFile, "") << "the next field is untouched";
        EXPECT_EQ(std::string(g_session.szProductionLibFolder), library.substr(0, 259));
    }
}

TEST_F(SessionTest, EnsureFolderExistsAsksAndAnswers)
{
    Init();
    std::string base = MakeTempDir("Ensure");
    // What the user typed; the answer to "create it?" (0: no question); the
    // message that follows (or 0); the result; the path kept, a folder that exists.
    struct Row { std::string typed; int answer; UINT warning; int result; std::string kept; } rows[] = {
        {"  " + base + "\\", 0, 0, FOLDER_READY, base}, {"C:\\", 0, 0, FOLDER_READY, "C:\\"},  // a root keeps its backslash
        {"    ", 0, IDS_NAME_REQUIRED, FOLDER_EMPTY_NAME, ""},
        {base + "\\New\\", IDNO, 0, FOLDER_NOT_CREATED, ""},
        {base + "\\a\\b\\c", IDYES, 0, FOLDER_READY, base + "\\a\\b\\c"},
        {"Q:\\no drive\\here", IDYES, IDS_FOLDER_NOT_CREATED, FOLDER_NOT_CREATED, ""}};
    for (const Row& r : rows) {
        SCOPED_TRACE(r.typed);
        ModalResponder responder;
        std::string folder = r.typed.substr(0, r.typed.find_last_not_of('\\') + 1);
        if (r.answer) responder.ExpectMessageRes(IDS_ASK_CREATE_FOLDER, folder.c_str(), r.answer);
        if (r.warning) responder.ExpectMessageRes(r.warning, IDOK);
        char path[MAX_PATH];
        EXPECT_EQ(EnsureFolderExists(std::strcpy(path, r.typed.c_str())), r.result);
        if (!r.kept.empty()) EXPECT_TRUE(path == r.kept && qfdIsDirA(path)) << path;
        if (r.answer == IDNO) EXPECT_FALSE(qfdIsDirA(folder.c_str()));
        responder.Verify();
    }
    EXPECT_EQ(EnsureFolderExists(nullptr), FOLDER_NO_ARGUMENT);
    EXPECT_FALSE(qfIsFileExistA(base.c_str())) << "a folder is no file to preview";
}
