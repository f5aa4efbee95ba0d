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

using namespace qvtest;

namespace {

// The file dialog's name box (its combo box on newer systems, its edit box before).
HWND NameBox(HWND fileDialog)
{
    HWND box = GetDlgItem(fileDialog, 1152);
    return box ? box : GetDlgItem(fileDialog, 1148);
}

// Types `name` into the file dialog's name box and presses OK.
std::function<bool(HWND)> ChooseFile(const std::string& name)
{
    return [name](HWND dialog) {
        SetWindowTextA(NameBox(dialog), name.c_str());
        PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(dialog, IDOK)));
        return NameBox(dialog) != nullptr;
    };
}

bool CancelFileDialog(HWND dialog)
{
    return PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
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
        OpenWithScenes(n);
        SetWindowTextA(Item(IDC_TAPE_NAME), "Holiday");
    }
    void Through(int button, const char* what, std::function<bool(HWND)> act)
    {
        ModalResponder responder;
        responder.ExpectWindow(what, act);
        Click(button);
        responder.Verify();
    }
    void Save(const std::string& name) { Through(IDC_SAVE_LIST, "save dialog", ChooseFile(name)); }
    void Open(const std::string& name) { Through(IDC_OPEN_LIST, "open dialog", ChooseFile(name)); }
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

TEST_F(SceneListFileTest, CancelledSaveOrOpenChangesNothing)
{
    ScanScenes(2);
    std::string before = g_session.szSceneListFile;
    Through(IDC_SAVE_LIST, "save dialog", CancelFileDialog);
    EXPECT_EQ(std::string(g_session.szSceneListFile), before);
    EXPECT_EQ(Dlg().m_bModified, 1);
    ModalResponder responder;
    responder.ExpectMessageRes(IDS_ASK_SAVE_CHANGES, IDCANCEL);
    Click(IDC_OPEN_LIST);
    responder.Verify();
    EXPECT_EQ(qvGetCurrentSceneNumber(), 2);
}

TEST_F(SceneListFileTest, OpenReplacesTheListWithTheFile)
{
    ScanScenes(4);
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
    EXPECT_EQ(CellText(2, 4), "the jetty");
    EXPECT_EQ(Dlg().m_bModified, 0);
    char name[128];
    GetWindowTextA(Item(IDC_TAPE_NAME), name, sizeof name);
    EXPECT_STREQ(name, "Holiday");
    EXPECT_EQ(ReadIni("ProductionLibFolder"), std::string(g_session.szProductionLibFolder));
}

// A saved one-scene list, changed on disk and opened again.
TEST_F(SceneListFileTest, OpeningOldShortAndForeignFiles)
{
    const size_t kHeader = 1314, kRecord = 1140;
    struct Case {
        const char* what;
        const char* name;
        std::function<void(std::vector<uint8_t>&)> change;
        uint32_t in, thumbBytes;  // the scene's once open
        int versionOnDisk;
        uint32_t inOnDisk;
    } cases[] = {
        {"version 1: frame counts, rewritten as current", "old.psf",
         [](auto& b) { Put32(b, 1304, 1), Put32(b, kHeader, 1800); }, Tc(0, 1, 12, 0), 14400, 3, Tc(0, 1, 12, 0)},
        {"fewer pixels than the header describes", "short.psf",
         [](auto& b) { b.resize(kHeader + kRecord + 40 + 16), Put32(b, kHeader + 24, 16); }, 0, 16, 3, 0},
        {"another extension is not opened", "notes.txt", [](auto& b) { Put32(b, kHeader, 1800); }, 0, 14400, 3, 1800},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        ScanScenes(1);
        Save(m_dir + "\\list.psf");
        std::vector<uint8_t> bytes = ReadBytes(m_dir + "\\list.psf");
        c.change(bytes);
        std::string path = m_dir + "\\" + c.name;
        WriteBytes(path, bytes);
        Open(path);
        EXPECT_EQ(std::string(g_session.szSceneListFile), path);
        ASSERT_EQ(qvGetCurrentSceneNumber(), 1);
        EXPECT_EQ(g_arScenes.GetAt(0)->dwTimeCodeIn, c.in);
        EXPECT_EQ(g_arScenes.GetAt(0)->dwThumbSize, c.thumbBytes);
        std::vector<uint8_t> after = ReadBytes(path);
        EXPECT_EQ(Get32(after, 1304), c.versionOnDisk);
        EXPECT_EQ(static_cast<uint32_t>(Get32(after, kHeader)), c.inOnDisk);
        // The row draws; a picture with too few pixels is left out.
        RECT cell = {};
        Dlg().m_listScenes.GetCellRect(0, 1, LVIR_BOUNDS, cell);
        RedrawWindow(Item(IDC_SCENE_LIST), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
        HDC dc = GetDC(Item(IDC_SCENE_LIST));
        COLORREF centre = GetPixel(dc, (cell.left + cell.right) / 2, (cell.top + cell.bottom) / 2);
        ReleaseDC(Item(IDC_SCENE_LIST), dc);
        EXPECT_EQ(centre == RGB(200, 40, 40), c.thumbBytes > 16);
        TearDown();
        SetUp();
    }
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
    EXPECT_EQ(FindFirstFileA((m_dir + "\\*.tmp").c_str(), &found), INVALID_HANDLE_VALUE);  // no temporary file left
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
    WriteBytes(other, {'n', 'o'});
    std::string previewName, previewDescription, afterOther;
    bool readOnly = false;
    ModalResponder responder;
    responder.ExpectWindow("open dialog", [&](HWND dialog) {
        HWND area = ExtraArea(dialog);
        if (!area) return false;
        readOnly = (GetWindowLongA(GetDlgItem(area, IDC_PSF_TAPE_NAME), GWL_STYLE) & ES_READONLY) != 0;
        HWND box = NameBox(dialog);
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
