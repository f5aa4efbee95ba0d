// Saving and opening scene lists through the real file dialogs: the name
// typed into the dialog, OK pressed, the file's bytes and the list read back.
#include "ResourceIds.h"
#include "platform/ResourceLib.h"
#include "sceneops/SceneListFile.h"
#include "sceneops/SceneListFormat.h"
#include "scenes/SceneStore.h"
#include "session/Session.h"
#include "support/DialogFixture.h"
#include "support/TestEnvironment.h"

#include <commdlg.h>
#include <cstring>
#include <fstream>
#include <iterator>

using namespace qvtest;

namespace {

std::vector<uint8_t> ReadBytes(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// Types `name` into the file dialog's name box and presses OK.
std::function<bool(HWND)> ChooseFile(const std::string& name)
{
    return [name](HWND dialog) {
        HWND box = GetDlgItem(dialog, 1152);
        if (!box) box = GetDlgItem(dialog, 1148);
        if (!box) return false;
        SetWindowTextA(box, name.c_str());
        PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(dialog, IDOK)));
        return true;
    };
}

std::function<bool(HWND)> CancelFileDialog()
{
    return [](HWND dialog) {
        PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
        return true;
    };
}

class SceneListFileTest : public DialogFixture {
protected:
    void SetUp() override
    {
        DialogFixture::SetUp();
        m_dir = MakeTempDir("Lists");
        std::strcpy(g_session.szSavePSFDir, m_dir.c_str());
        std::strcpy(g_session.szCaptureFolder, MakeTempDir("Captures").c_str());
    }
    void ScanScenes(int n)
    {
        OpenDialog();
        StartScan();
        for (int i = 0; i < n; ++i) FeedScene(Tc(0, 0, 10 * i, 0), Tc(0, 0, 10 * i + 5, 0));
        PressKey(VK_ESCAPE);
        SetWindowTextA(Item(IDC_TAPE_NAME), "Holiday");
    }
    void Save(const std::string& name)
    {
        ModalResponder responder;
        responder.ExpectWindow("save dialog", ChooseFile(name));
        Click(IDC_SAVE_LIST);
        responder.Verify();
    }
    std::string m_dir;
};

} // namespace

TEST(SceneListNames, ExtensionRules)
{
    EXPECT_TRUE(HasListExtension("C:\\a.b\\tape.psf"));
    EXPECT_FALSE(HasListExtension("C:\\tapes.psf\\tape"));
    EXPECT_FALSE(HasListExtension("tape.PSF"));
    for (auto [given, expected] : {std::pair<const char*, const char*>{"C:\\t\\tape", "C:\\t\\tape.psf"},
                                   {"C:\\t\\tape.psf", "C:\\t\\tape.psf"},
                                   {"C:\\t\\tape.PSF", "C:\\t\\tape.psf"},
                                   {"C:\\t\\tape.txt", "C:\\t\\tape.psf"},
                                   {"C:\\t\\a.b.psf", "C:\\t\\a.b.psf"},
                                   {"C:\\dir.x\\tape", "C:\\dir.x\\tape.psf"}}) {
        char path[260];
        std::strcpy(path, given);
        CompleteListExtension(path, sizeof path);
        EXPECT_STREQ(path, expected);
    }
    char folder[260] = "unchanged";
    CopyFolderOfPath(folder, "tape.psf");
    EXPECT_STREQ(folder, "unchanged");
    CopyFolderOfPath(folder, "C:\\Tapes\\tape.psf");
    EXPECT_STREQ(folder, "C:\\Tapes");
}

TEST_F(SceneListFileTest, SaveWritesTheListAndRemembersTheFolder)
{
    ScanScenes(3);
    ASSERT_EQ(Dlg().m_bModified, 1);
    Save(m_dir + "\\holiday");
    std::string path = m_dir + "\\holiday.psf";
    EXPECT_EQ(std::string(g_session.szSceneListFile), path);
    std::vector<uint8_t> bytes = ReadBytes(path);
    ASSERT_GE(bytes.size(), 1314u);
    SceneListHeader header;
    std::memcpy(&header, bytes.data(), sizeof header);
    EXPECT_EQ(header.nSceneCount, 3);
    EXPECT_EQ(header.nVersion, 3);
    EXPECT_STREQ(header.szTapeName, "Holiday");
    EXPECT_EQ(Dlg().m_bModified, 0);
    EXPECT_EQ(Title(), Dlg().m_strCaption + " - " + path);
    EXPECT_EQ(ReadIni("SavePSFDir"), m_dir);
    EXPECT_TRUE(Enabled(IDC_START_SCAN));  // controls back after the dialog
}

TEST_F(SceneListFileTest, CancelledSaveWritesNothing)
{
    ScanScenes(2);
    std::string before = g_session.szSceneListFile;
    ModalResponder responder;
    responder.ExpectWindow("save dialog", CancelFileDialog());
    Click(IDC_SAVE_LIST);
    responder.Verify();
    EXPECT_EQ(std::string(g_session.szSceneListFile), before);
    EXPECT_EQ(Dlg().m_bModified, 1);
}

TEST_F(SceneListFileTest, OpenReplacesTheListWithTheFile)
{
    ScanScenes(4);
    g_arScenes.GetAt(1)->bMarked = 1;
    std::strcpy(g_arScenes.GetAt(2)->szComment, "the jetty");
    Save(m_dir + "\\four");
    // A different list in the dialog, then the file opened over it.
    ModalResponder responder;
    responder.ExpectMessageRes(IDS_ASK_KEEP_LIST, IDYES);
    Click(IDC_START_SCAN);
    responder.Verify();
    FeedScene(Tc(0, 5, 0, 0), Tc(0, 5, 1, 0));
    PressKey(VK_ESCAPE);
    ASSERT_EQ(qvGetCurrentSceneNumber(), 5);
    {
        ModalResponder open;
        open.ExpectMessageRes(IDS_ASK_SAVE_CHANGES, IDNO).ExpectWindow("open dialog", ChooseFile(m_dir + "\\four.psf"));
        Click(IDC_OPEN_LIST);
        open.Verify();
    }
    EXPECT_EQ(qvGetCurrentSceneNumber(), 4);
    EXPECT_EQ(RowCount(), 4);
    EXPECT_EQ(g_arScenes.GetAt(1)->bMarked, 0);  // marks are not kept
    EXPECT_EQ(CellText(2, 4), "the jetty");
    EXPECT_EQ(Dlg().m_bModified, 0);
    EXPECT_EQ(Dlg().m_strTapeName, "Holiday");
    char name[128];
    GetWindowTextA(Item(IDC_TAPE_NAME), name, sizeof name);
    EXPECT_STREQ(name, "Holiday");
    EXPECT_EQ(ReadIni("ProductionLibFolder"), std::string(g_session.szProductionLibFolder));
}

TEST_F(SceneListFileTest, CancelAtTheSaveQuestionOpensNothing)
{
    ScanScenes(2);
    ModalResponder responder;
    responder.ExpectMessageRes(IDS_ASK_SAVE_CHANGES, IDCANCEL);
    Click(IDC_OPEN_LIST);
    responder.Verify();
    EXPECT_EQ(qvGetCurrentSceneNumber(), 2);
}

TEST_F(SceneListFileTest, OtherExtensionsAreNotOpened)
{
    ScanScenes(2);
    std::string other = m_dir + "\\notes.txt";
    std::ofstream(other) << "not a scene list";
    Dlg().m_bModified = 0;
    ModalResponder responder;
    responder.ExpectWindow("open dialog", ChooseFile(other));
    Click(IDC_OPEN_LIST);
    responder.Verify();
    EXPECT_EQ(qvGetCurrentSceneNumber(), 2);
    EXPECT_EQ(std::string(g_session.szSceneListFile), other);
}

TEST_F(SceneListFileTest, OldVersionIsRewrittenAsCurrent)
{
    ScanScenes(1);
    Save(m_dir + "\\old.psf");
    std::string path = m_dir + "\\old.psf";
    std::vector<uint8_t> bytes = ReadBytes(path);
    bytes[1304] = 1;  // version 1: time codes are frame counts
    uint32_t frames = 1800;
    std::memcpy(&bytes[1314], &frames, 4);
    std::ofstream(path, std::ios::binary | std::ios::trunc).write(reinterpret_cast<char*>(bytes.data()),
                                                                  static_cast<std::streamsize>(bytes.size()));
    ModalResponder responder;
    responder.ExpectWindow("open dialog", ChooseFile(path));
    Click(IDC_OPEN_LIST);
    responder.Verify();
    EXPECT_EQ(g_arScenes.GetAt(0)->dwTimeCodeIn, Tc(0, 1, 12, 0));  // 25 frames per second
    std::vector<uint8_t> rewritten = ReadBytes(path);
    ASSERT_GE(rewritten.size(), 1314u + 1140);
    EXPECT_EQ(rewritten[1304], 3);
    uint32_t tc;
    std::memcpy(&tc, &rewritten[1314], 4);
    EXPECT_EQ(tc, Tc(0, 1, 12, 0));
}

TEST_F(SceneListFileTest, FailedSaveLeavesThePreviousFile)
{
    ScanScenes(2);
    Save(m_dir + "\\kept.psf");
    std::string path = m_dir + "\\kept.psf";
    std::vector<uint8_t> before = ReadBytes(path);
    FeedScene(Tc(0, 9, 0, 0), Tc(0, 9, 1, 0));  // the list changes
    Dlg().m_bModified = 1;
    // Another program holds the file open: it cannot be replaced.
    HANDLE held = CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    ModalResponder responder;
    responder.ExpectWindow("save dialog", ChooseFile(path))
        .ExpectWindow("question whether to replace the file", [](HWND box) {
            PostMessageA(box, WM_COMMAND, IDYES, 0);
            return GetDlgItem(box, IDYES) != nullptr;
        })
        .ExpectMessageRes(IDS_SAVE_FAILED, path.c_str(), IDOK);
    Click(IDC_SAVE_LIST);
    responder.Verify();
    CloseHandle(held);
    EXPECT_EQ(ReadBytes(path), before);
    EXPECT_EQ(Dlg().m_bModified, 1);
    WIN32_FIND_DATAA found;
    HANDLE search = FindFirstFileA((m_dir + "\\*.tmp").c_str(), &found);
    EXPECT_EQ(search, INVALID_HANDLE_VALUE);  // no temporary file left behind
    if (search != INVALID_HANDLE_VALUE) FindClose(search);
}

namespace {

// The extra area of a file dialog: the child dialog that holds the tape fields.
HWND ExtraArea(HWND fileDialog)
{
    for (HWND c = GetWindow(fileDialog, GW_CHILD); c; c = GetWindow(c, GW_HWNDNEXT))
        if (GetDlgItem(c, IDC_PSF_TAPE_NAME)) return c;
    return nullptr;
}

std::string ItemText(HWND dlg, int id)
{
    char text[600] = "";
    GetDlgItemTextA(dlg, id, text, sizeof text);
    return text;
}

} // namespace

TEST_F(SceneListFileTest, OpenDialogPreviewsTheSelectedTape)
{
    ScanScenes(1);
    for (char c : std::string("Lake and boats")) SendMessageA(Item(IDC_TAPE_DESCRIPTION), WM_CHAR, c, 1);
    Save(m_dir + "\\lake.psf");
    std::string other = m_dir + "\\notes.txt";
    std::ofstream(other) << "not a scene list";
    Dlg().m_bModified = 0;
    std::string previewName, previewDescription, afterOther;
    bool readOnly = false;
    ModalResponder responder;
    responder.ExpectWindow("open dialog", [&](HWND dialog) {
        HWND area = ExtraArea(dialog);
        if (!area) return false;
        readOnly = (GetWindowLongA(GetDlgItem(area, IDC_PSF_TAPE_NAME), GWL_STYLE) & ES_READONLY) != 0;
        HWND box = GetDlgItem(dialog, 1152) ? GetDlgItem(dialog, 1152) : GetDlgItem(dialog, 1148);
        OFNOTIFYA note = {};
        note.hdr.hwndFrom = dialog;
        note.hdr.code = CDN_SELCHANGE;
        SetWindowTextA(box, (m_dir + "\\lake.psf").c_str());
        SendMessageA(area, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&note));
        previewName = ItemText(area, IDC_PSF_TAPE_NAME);
        previewDescription = ItemText(area, IDC_PSF_TAPE_DESCRIPTION);
        SetWindowTextA(box, other.c_str());  // another extension empties the fields
        SendMessageA(area, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&note));
        afterOther = ItemText(area, IDC_PSF_TAPE_NAME);
        PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
        return true;
    });
    Click(IDC_OPEN_LIST);
    responder.Verify();
    EXPECT_TRUE(readOnly);
    EXPECT_EQ(previewName, "Holiday");
    EXPECT_EQ(previewDescription, "Lake and boats");
    EXPECT_EQ(afterOther, "");
    EXPECT_EQ(qvGetCurrentSceneNumber(), 1);  // cancelled: nothing opened
}
