// The settings file: defaults written back key by key, the documents folder
// from the registry, and the capture file setting split into name and folder.
#include "ResourceIds.h"
#include "platform/ResourceLib.h"
#include "platform/SupportLib.h"
#include "session/Session.h"
#include "session/Settings.h"
#include "support/ScriptedHost.h"
#include "support/TestEnvironment.h"

#include <gtest/gtest.h>

#include <optional>
#include <cstring>
#include <string>

using namespace qvtest;

namespace {

const char kShellFolders[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

// Points the user's documents folder somewhere else for one test and puts
// the original value back afterwards.
class PersonalFolder {
public:
    PersonalFolder()
    {
        HKEY key;
        if (RegOpenKeyExA(HKEY_CURRENT_USER, kShellFolders, 0, KEY_READ, &key) == ERROR_SUCCESS) {
            char value[MAX_PATH] = "";
            DWORD cb = sizeof value;
            if (RegQueryValueExA(key, "Personal", nullptr, nullptr, reinterpret_cast<BYTE*>(value), &cb) ==
                ERROR_SUCCESS)
                m_saved = value;
            RegCloseKey(key);
        }
    }
    ~PersonalFolder()
    {
        if (m_saved) Set(m_saved->c_str());
        else Remove();
    }
    void Set(const char* folder)
    {
        RegSetKeyValueA(HKEY_CURRENT_USER, kShellFolders, "Personal", REG_SZ, folder,
                        static_cast<DWORD>(std::strlen(folder) + 1));
    }
    void Remove() { RegDeleteKeyValueA(HKEY_CURRENT_USER, kShellFolders, "Personal"); }

private:
    std::optional<std::string> m_saved;
};

class SettingsTest : public testing::Test {
protected:
    void SetUp() override
    {
        qvPreScanUnInit();
        DeleteIni();
    }
    void TearDown() override { qvPreScanUnInit(); }
    void Init(const char* ext = ".avi")
    {
        PreScanInitInfo info = MakeInitInfo(ext);
        ASSERT_EQ(qvPreScanInit(&info), 1);
    }
    std::string Title() { return qv::LoadResString(IDS_MODULE_TITLE); }
};

bool IsDir(const std::string& path)
{
    return qfdIsDirA(path.c_str()) != FALSE;
}

} // namespace

TEST_F(SettingsTest, FileLivesInThePrivateFolder)
{
    Init();
    EXPECT_EQ(std::string(g_szAppDataFolder), AppDataDir());
    EXPECT_EQ(std::string(g_szIniPath), IniPath());
    EXPECT_EQ(std::string(g_szMsgTitle), Title());
    EXPECT_LT(std::strlen(g_szMsgTitle), 50u);
}

TEST_F(SettingsTest, EmptyFileGetsDefaultsUnderTheDocumentsFolder)
{
    PersonalFolder personal;
    std::string docs = MakeTempDir("Docs");
    personal.Set(docs.c_str());
    Init();
    std::string expected = docs + "\\" + Title();
    EXPECT_EQ(std::string(g_session.szSavePSFDir), expected);
    EXPECT_EQ(std::string(g_session.szCaptureFolder), expected);
    EXPECT_TRUE(IsDir(expected));  // made when missing
    std::string name = qv::LoadResString(IDS_DEFAULT_CAPTURE_NAME) + ".avi";
    EXPECT_EQ(std::string(g_session.szCaptureName), name);
    EXPECT_EQ(std::string(g_session.szCaptureFileName), expected + "\\" + name);
    EXPECT_EQ(std::string(g_session.szProductionLibFolder), qv::LoadResString(IDS_DEFAULT_LIBRARY_FOLDER));
    // The three text keys are written back at once; the numbers are not.
    EXPECT_EQ(ReadIni("SavePSFDir"), expected);
    EXPECT_EQ(ReadIni("PSCaptureFileName"), expected + "\\" + name);
    EXPECT_EQ(ReadIni("ProductionLibFolder"), qv::LoadResString(IDS_DEFAULT_LIBRARY_FOLDER));
    EXPECT_EQ(ReadIni("WantIndexFile"), kIniMissing);
    EXPECT_EQ(ReadIni("QuickScanSpeed"), kIniMissing);
    EXPECT_EQ(ReadIni("ScanMethodIndex"), kIniMissing);
    EXPECT_EQ(g_session.nScanMethodIndex, 2);
    EXPECT_EQ(g_session.nWantIndexFile, 0);
    EXPECT_EQ(g_session.nSaveToLibrary, 0);
    EXPECT_EQ(g_session.nQuickScanSpeed, 0);
}

TEST_F(SettingsTest, MissingDocumentsValueFallsBackToMyDocuments)
{
    PersonalFolder personal;
    personal.Remove();
    Init();
    std::string expected = "C:\\My Documents\\" + Title();
    EXPECT_EQ(std::string(g_session.szSavePSFDir), expected);
    RemoveDirectoryA(expected.c_str());
    RemoveDirectoryA("C:\\My Documents");
}

TEST_F(SettingsTest, UncreatableFolderFallsBackToTheDocumentsFolder)
{
    PersonalFolder personal;
    personal.Set("Q:\\no such drive");
    Init();
    EXPECT_STREQ(g_session.szSavePSFDir, "Q:\\no such drive");
    EXPECT_STREQ(g_session.szCaptureFolder, "Q:\\no such drive");
}

TEST_F(SettingsTest, StoredValuesAreKept)
{
    WriteIni("SavePSFDir", "E:\\Lists");
    WriteIni("PSCaptureFileName", "D:\\Video\\Holiday.mpg");
    WriteIni("ProductionLibFolder", "F:\\Library");
    WriteIni("WantIndexFile", "1");
    WriteIni("SaveToLibrary", "1");
    WriteIni("ScanMethodIndex", "3");
    WriteIni("QuickScanSpeed", "4");
    Init();
    EXPECT_STREQ(g_session.szSavePSFDir, "E:\\Lists");
    EXPECT_STREQ(g_session.szCaptureFolder, "D:\\Video");
    EXPECT_STREQ(g_session.szCaptureName, "Holiday.avi");
    EXPECT_STREQ(g_session.szProductionLibFolder, "F:\\Library");
    EXPECT_EQ(g_session.nWantIndexFile, 1);
    EXPECT_EQ(g_session.nSaveToLibrary, 1);
    EXPECT_EQ(g_session.nScanMethodIndex, 3);
    EXPECT_EQ(g_session.nQuickScanSpeed, 4);
    // The stored capture path is not rewritten although its extension changed.
    EXPECT_EQ(ReadIni("PSCaptureFileName"), "D:\\Video\\Holiday.mpg");
}

TEST_F(SettingsTest, DriveRootKeepsItsBackslash)
{
    WriteIni("PSCaptureFileName", "D:\\Tape.mpeg");
    Init();
    EXPECT_STREQ(g_session.szCaptureFolder, "D:\\");
    EXPECT_STREQ(g_session.szCaptureName, "Tape.avi");
}

TEST_F(SettingsTest, EmptyExtensionLeavesTheNameAlone)
{
    WriteIni("PSCaptureFileName", "D:\\Video\\Tape.mpg");
    Init("");
    EXPECT_STREQ(g_session.szCaptureName, "Tape.mpg");
}

TEST_F(SettingsTest, ScanMethodBelowOneBecomesTwo)
{
    for (const char* stored : {"0", "-5"}) {
        WriteIni("ScanMethodIndex", stored);
        Init();
        EXPECT_EQ(g_session.nScanMethodIndex, 2) << stored;
        EXPECT_EQ(ReadIni("ScanMethodIndex"), "2") << stored;
    }
    WriteIni("ScanMethodIndex", "7");
    Init();
    EXPECT_EQ(g_session.nScanMethodIndex, 7);  // larger values are taken as they stand
    EXPECT_EQ(ReadIni("ScanMethodIndex"), "7");
}

TEST_F(SettingsTest, OverlongStoredPathsAreCut)
{
    std::string longName = "D:\\" + std::string(300, 'v') + "\\" + std::string(150, 'n') + ".avi";
    WriteIni("PSCaptureFileName", longName.c_str());
    WriteIni("ProductionLibFolder", std::string(600, 'L').c_str());
    Init();
    EXPECT_LT(std::strlen(g_session.szCaptureFileName), sizeof g_session.szCaptureFileName);
    EXPECT_LT(std::strlen(g_session.szCaptureName), sizeof g_session.szCaptureName);
    EXPECT_LT(std::strlen(g_session.szCaptureFolder), sizeof g_session.szCaptureFolder);
    EXPECT_EQ(std::strlen(g_session.szProductionLibFolder), 259u);
}

TEST_F(SettingsTest, WritesAreImmediateAndDecimal)
{
    Init();
    WriteSettingInt("QuickScanSpeed", 3);
    EXPECT_EQ(ReadIni("QuickScanSpeed"), "3");
    WriteSettingInt("WantIndexFile", -1);
    EXPECT_EQ(ReadSettingInt("WantIndexFile", 9), -1);
}
