// The session a host starts and ends: what it keeps of the host's record,
// the settings file it reads (defaults under the user's documents folder,
// stored values, fields at their limit and one past), the index file name it
// hands back, and the folder rules that ask the user before making a folder.
#include "ResourceIds.h"
#include "platform/ResourceLib.h"
#include "platform/SupportLib.h"
#include "session/FolderRules.h"
#include "session/Session.h"
#include "support/ModalResponder.h"
#include "support/Portable.h"
#include "support/ScriptedHost.h"
#include "support/TestEnvironment.h"

#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <string>
#include <vector>

using namespace qvtest;

namespace {

const char kShellFolders[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

// Points the user's documents folder elsewhere (or nowhere) for one test.
class PersonalFolder {
public:
    PersonalFolder()
    {
        char v[MAX_PATH] = "";
        DWORD cb = sizeof v;
        if (!RegGetValueA(HKEY_CURRENT_USER, kShellFolders, "Personal", RRF_RT_REG_SZ, nullptr, v, &cb)) m_saved = v;
    }
    ~PersonalFolder() { m_saved ? Set(m_saved->c_str()) : Remove(); }
    void Set(const char* v) { RegSetKeyValueA(HKEY_CURRENT_USER, kShellFolders, "Personal", REG_SZ, v, strlen(v) + 1); }
    void Remove() { RegDeleteKeyValueA(HKEY_CURRENT_USER, kShellFolders, "Personal"); }

private:
    std::optional<std::string> m_saved;
};

class SessionTest : public testing::Test {
protected:
    void SetUp() override
    {
        qvPreScanUnInit();
        DeleteIni();
        ScriptedHost::Instance().Reset();
    }
    void TearDown() override { qvPreScanUnInit(); }
    void Init(PreScanInitInfo info = MakeInitInfo())
    {
        qvPreScanUnInit();
        ASSERT_EQ(qvPreScanInit(&info), 1);
    }
};

std::string Title() { return qv::LoadResString(IDS_MODULE_TITLE); }

} // namespace

TEST_F(SessionTest, InitStartsOverEachTimeAndUnInitEndsIt)
{
    EXPECT_EQ(qvPreScanInit(nullptr), 0);
    EXPECT_EQ(qvPreScanUnInit(), 1);  // no session: nothing happens
    // Each initialisation takes the standard again and rereads the settings.
    for (auto [given, kept] : {std::pair{0, 0}, {1, 1}, {2, 2}, {7, 2}, {-1, 2}, {0x7FFFFFFF, 2}}) {
        PreScanInitInfo info = MakeInitInfo(".avi", given);
        ASSERT_EQ(qvPreScanInit(&info), 1);
        EXPECT_EQ(g_session.nTvStandard, kept) << "given " << given;
        EXPECT_EQ(g_session.nQuickScanSpeed, 0) << "given " << given;
        g_session.nQuickScanSpeed = 3;
    }
    EXPECT_TRUE(ScriptedHost::Instance().Requests().empty()) << "initialisation asks nothing of the host";
    EXPECT_EQ(qvPreScanUnInit(), 1);
    EXPECT_FALSE(HasSession());
    EXPECT_STREQ(g_session.szCaptureFolder, "");
    EXPECT_EQ(qvPreScanUnInit(), 1);
    EXPECT_STREQ(g_szHelpFile, "C:\\help\\qv.hlp") << "the help path outlives the session";
}

// The host's 20-byte extension and its help path, at their limit and past it.
TEST_F(SessionTest, HostTextsAreKeptToTheirLimitAndCutPastIt)
{
    // Characters in the extension field (20: no terminator) and kept; in the
    // help path (-1: none) and kept.
    struct Row { size_t ext, extKept; int help, helpKept; } rows[] = {
        {4, 4, 259, 259}, {19, 19, 260, 259}, {20, 19, 400, 259}, {4, 4, -1, 0}};
    for (const Row& r : rows) {
        SCOPED_TRACE(testing::Message() << "extension " << r.ext << ", help " << r.help);
        std::string help(r.help > 0 ? size_t(r.help) : 0, 'h');
        PreScanInitInfo info = MakeInitInfo(".", 0x67676767, r.help < 0 ? nullptr : help.c_str());
        std::memset(info.szCaptureExt + 1, 'e', r.ext - 1);  // text-like bytes follow the field
        Init(info);
        EXPECT_EQ(std::string(g_session.szCaptureExt), "." + std::string(r.extKept - 1, 'e'));
        EXPECT_EQ(std::string(g_szHelpFile), std::string(size_t(r.helpKept), 'h'));
        std::string name = g_session.szCaptureName;  // ends in the (cut) extension
        EXPECT_EQ(name.substr(name.size() - r.extKept), g_session.szCaptureExt);
    }
}

TEST_F(SessionTest, IndexFileNameFollowsTheCaptureFolder)
{
    const std::string full(QV_MAX_PATH - 1, 'f');  // fills its field: cut inside the caller's 260 bytes
    struct Row { const char* folder; std::string expected; } rows[] = {  // null folder: before any session
        {nullptr, "\\PSIndex.avi"}, {"D:\\Video", "D:\\Video\\PSIndex.avi"}, {"D:\\", "D:\\PSIndex.avi"},
        {"", "\\PSIndex.avi"}, {full.c_str(), full}};
    for (const Row& r : rows) {
        SCOPED_TRACE(r.folder ? r.folder : "(no session)");
        if (r.folder) {
            Init();
            std::strcpy(g_session.szCaptureFolder, r.folder);
        }
        Guarded<QV_MAX_PATH> out;
        qvGetPreScanIndexFileName(out.field);
        EXPECT_EQ(out.Text(), r.expected);
        EXPECT_TRUE(out.Intact());
    }
    qvGetPreScanIndexFileName(nullptr);  // ignored
}

// An empty file: the folders go under the user's documents folder (made
// when missing), or are that folder when it cannot be made; the text keys
// are written back at once, the numbers are not.
TEST_F(SessionTest, EmptySettingsFileGetsDefaultsUnderTheDocumentsFolder)
{
    const std::string docs = MakeTempDir("Docs"), name = qv::LoadResString(IDS_DEFAULT_CAPTURE_NAME) + ".avi";
    struct Row { const char* personal; std::string folder; bool made; } rows[] = {  // null: no value
        {docs.c_str(), docs + "\\" + Title(), true}, {nullptr, "C:\\My Documents\\" + Title(), true},
        {"Q:\\no such drive", "Q:\\no such drive", false}};
    for (const Row& r : rows) {
        SCOPED_TRACE(r.folder);
        PersonalFolder personal;
        r.personal ? personal.Set(r.personal) : personal.Remove();
        DeleteIni();
        Init();
        EXPECT_EQ(std::string(g_session.szSavePSFDir), r.folder);
        EXPECT_EQ(std::string(g_session.szCaptureFolder), r.folder);
        EXPECT_EQ(std::string(g_session.szCaptureName), name);
        EXPECT_EQ(ReadIni("SavePSFDir"), r.folder);
        EXPECT_EQ(ReadIni("PSCaptureFileName"), r.folder + "\\" + name);
        EXPECT_EQ(qfdIsDirA(r.folder.c_str()) != FALSE, r.made);
    }
    RemoveDirectoryA(rows[1].folder.c_str());
    RemoveDirectoryA("C:\\My Documents");
    EXPECT_EQ(std::string(g_szIniPath), IniPath());
    EXPECT_EQ(std::string(g_session.szProductionLibFolder), qv::LoadResString(IDS_DEFAULT_LIBRARY_FOLDER));
    EXPECT_EQ(ReadIni("ProductionLibFolder"), g_session.szProductionLibFolder);
    for (const char* key : {"WantIndexFile", "QuickScanSpeed", "ScanMethodIndex"}) EXPECT_EQ(ReadIni(key), kIniMissing);
    EXPECT_EQ((std::vector{g_session.nScanMethodIndex, g_session.nWantIndexFile, g_session.nQuickScanSpeed}),
              (std::vector{2, 0, 0}));
}

// Stored values are kept, a scan method below one becomes two, the capture
// file splits into folder and name (which takes the host's extension, and
// keeps it when cut to its 99 characters), and a folder past its field's
// limit is cut inside it.
TEST_F(SessionTest, StoredSettingsAreKeptWithinTheirFields)
{
    for (const char* key : {"WantIndexFile", "SaveToLibrary", "QuickScanSpeed"}) WriteIni(key, "4");
    for (auto [stored, kept] : {std::pair{"3", 3}, {"7", 7}, {"0", 2}, {"-5", 2}}) {
        WriteIni("ScanMethodIndex", stored);
        Init();
        EXPECT_EQ(g_session.nScanMethodIndex, kept) << stored;
        EXPECT_EQ(ReadIni("ScanMethodIndex"), std::to_string(kept)) << stored;
    }
    EXPECT_EQ((std::vector{g_session.nWantIndexFile, g_session.nSaveToLibrary, g_session.nQuickScanSpeed}),
              (std::vector{4, 4, 4}));

    const std::string n95(95, 'n');
    struct Row { std::string stored, ext, folder, name; } rows[] = {
        {"D:\\Video\\Holiday.mpg", ".avi", "D:\\Video", "Holiday.avi"},
        {"D:\\Tape.mpeg", ".avi", "D:\\", "Tape.avi"},  // a drive root keeps its backslash
        {"D:\\Video\\Tape.mpg", "", "D:\\Video", "Tape.mpg"}, {"D:\\V\\" + n95 + ".mpg", ".avi", "D:\\V", n95 + ".avi"},
        {"D:\\V\\" + n95 + "n.mpg", ".avi", "D:\\V", n95 + ".avi"},
        {"D:\\V\\" + n95 + n95 + ".mpg", ".avi", "D:\\V", n95 + ".avi"}};
    for (const Row& r : rows) {
        SCOPED_TRACE(r.stored);
        WriteIni("PSCaptureFileName", r.stored.c_str());
        Init(MakeInitInfo(r.ext.c_str()));
        EXPECT_EQ(std::string(g_session.szCaptureFolder), r.folder);
        EXPECT_EQ(std::string(g_session.szCaptureName), r.name);
        EXPECT_EQ(ReadIni("PSCaptureFileName"), r.stored) << "the user's setting is not rewritten";
    }
    for (size_t length : {259u, 260u, 600u}) {
        SCOPED_TRACE(length);
        std::string lists = "C:\\" + std::string(length - 3, 'd'), library = "C:\\" + std::string(length - 3, 'l');
        WriteIni("SavePSFDir", lists.c_str());
        WriteIni("ProductionLibFolder", library.c_str());
        Init();
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
        {"  " + base + "\\", 0, 0, FOLDER_READY, base},
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
    ModalResponder responder;
    responder.ExpectMessageRes(IDS_NAME_REQUIRED, IDOK);  // once: only when asked to warn
    char spaces[] = "   ", quiet[] = "  ", text[] = " Tape ";
    EXPECT_EQ(TrimSpaces(spaces, 1) + TrimSpaces(quiet, 0), 0);
    EXPECT_EQ(TrimSpaces(text, 1), 1);
    EXPECT_STREQ(text, "Tape");
    responder.Verify();
}

TEST(SupportLib, FoldersAndFilesAreToldApart)
{
    for (auto [given, kept] : {std::pair{"D:\\", "D:\\"}, {"D:\\Video\\", "D:\\Video"}, {"\\", "\\"}, {"ab", "ab"}}) {
        char path[16];
        qfdDelSlashA(std::strcpy(path, given));
        EXPECT_STREQ(path, kept) << given;
    }
    char folder[MAX_PATH], small[8];
    ASSERT_GT(q32GetAppDataFolderA(folder, sizeof folder, 0, 1), 0);
    EXPECT_EQ(std::string(folder), AppDataDir());
    EXPECT_EQ(q32GetAppDataFolderA(small, sizeof small, 0, 1), 0) << "a folder is never cut";
    EXPECT_STREQ(small, "");
    std::string dir = MakeTempDir("Kinds"), file = dir + "\\a.avi";
    CloseHandle(CreateFileA(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    EXPECT_TRUE(qfIsFileExistA(file.c_str()) && qfdIsDirA(dir.c_str()));
    EXPECT_FALSE(qfIsFileExistA(dir.c_str()) || qfdIsDirA(file.c_str()) || qfIsFileExistA(nullptr) || qfdIsDirA(""));
}
