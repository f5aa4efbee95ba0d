// Saving and opening scene lists through the real file dialogs: the name
// typed into the dialog, OK pressed, the file's bytes and the list read back.
#include "ResourceIds.h"
#include "sceneops/SceneListFile.h"
#include "scenes/SceneStore.h"
#include "session/Session.h"
#include "support/DialogFixture.h"
#include "support/TestEnvironment.h"

#include <cstring>

using namespace qvtest;

namespace {

// The file dialog's name box (its combo box on newer systems, its edit box before).
HWND NameBox(HWND fileDialog)
{
    HWND box = GetDlgItem(fileDialog, 1152);
    return box ? box : GetDlgItem(fileDialog, 1148);
}

// Types `name` into the file dialog's name box and presses OK; an empty name cancels.
std::function<bool(HWND)> ChooseFile(const std::string& name)
{
    return [name](HWND dialog) {
        SetWindowTextA(NameBox(dialog), name.c_str());
        int button = name.empty() ? IDCANCEL : IDOK;
        PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(dialog, button)));
        return NameBox(dialog) != nullptr;
    };
}

std::string ItemText(HWND dlg, int id)
{
    char text[600] = "";
    GetDlgItemTextA(dlg, id, text, sizeof text);
    return text;
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
    void Through(int button, ModalResponder& responder)
    {
        Click(button);
        responder.Verify();
    }
    void Save(const std::string& name) { Through(IDC_SAVE_LIST, ModalResponder().ExpectWindow("save", ChooseFile(name))); }
    std::string m_dir;
};

} // namespace

TEST(SceneListNames, ExtensionRules)
{
    for (auto [given, completed, had] : {std::tuple<const char*, const char*, bool>{"C:\\a.b\\tape.psf", "", true},
                                          {"C:\\tapes.psf\\tape", "C:\\tapes.psf\\tape.psf", false},
                                          {"C:\\t\\tape.PSF", "C:\\t\\tape.psf", false},
                                          {"C:\\t\\tape.txt", "C:\\t\\tape.psf", false}}) {
        char path[260];
        std::strcpy(path, given);
        EXPECT_EQ(HasListExtension(path), had) << given;
        CompleteListExtension(path, sizeof path);
        EXPECT_STREQ(path, *completed ? completed : given);
    }
}

// A cancelled save, a save, and the file opened again over a changed list.
TEST_F(SceneListFileTest, SaveAndOpenAgain)
{
    ScanScenes(4);
    std::strcpy(g_arScenes.GetAt(2)->szComment, "the jetty");
    std::string before = g_session.szSceneListFile;
    Save("");
    EXPECT_EQ(g_session.szSceneListFile, before);
    ASSERT_EQ(Dlg().m_bModified, 1);
    Save(m_dir + "\\four");
    std::string path = m_dir + "\\four.psf";
    EXPECT_EQ(std::string(g_session.szSceneListFile), path);
    EXPECT_EQ(Get32(ReadBytes(path), 0), 0x00040522);  // header size 1314, four scenes
    EXPECT_EQ(Dlg().m_bModified, 0);
    EXPECT_EQ(Title(), Dlg().m_strCaption + " - " + path);
    EXPECT_EQ(ReadIni("SavePSFDir"), m_dir);
    EXPECT_TRUE(Enabled(IDC_START_SCAN));  // controls back after the dialog

    Through(IDC_START_SCAN, ModalResponder().ExpectMessageRes(IDS_ASK_KEEP_LIST, IDYES));
    FeedScene(Tc(0, 5, 0, 0), Tc(0, 5, 1, 0));
    PressKey(VK_ESCAPE);
    SetWindowTextA(Item(IDC_TAPE_NAME), "Other");
    Through(IDC_OPEN_LIST, ModalResponder().ExpectMessageRes(IDS_ASK_SAVE_CHANGES, IDCANCEL));
    ASSERT_EQ(RowCount(), 5);
    Through(IDC_OPEN_LIST, ModalResponder().ExpectMessageRes(IDS_ASK_SAVE_CHANGES, IDNO).ExpectWindow("open", ChooseFile(path)));
    EXPECT_EQ(qvGetCurrentSceneNumber(), 4);
    EXPECT_EQ(RowCount(), 4);
    EXPECT_EQ(CellText(2, 4), "the jetty");
    EXPECT_EQ(Dlg().m_bModified, 0);
    EXPECT_EQ(ItemText(Wnd(), IDC_TAPE_NAME), "Holiday");
    EXPECT_EQ(ReadIni("ProductionLibFolder"), std::string(g_session.szProductionLibFolder));
}

// A saved one-scene list, marked and renamed, changed on disk and opened again. A file
// that cannot replace the list changes nothing: the list, its marks, the
// folders and the settings stay, and the file is not rewritten.
TEST_F(SceneListFileTest, OpeningOldShortDamagedAndForeignFiles)
{
    const size_t kHeader = 1314, kRecord = 1140;
    auto damage = [](int16_t count, int32_t version, size_t size) {
        return [=](std::vector<uint8_t>& b) {
            Put32(b, 0, 1314 | static_cast<uint16_t>(count) << 16), Put32(b, 1304, version), b[784] = 'D';  // another capture folder
            b.resize(size);
        };
    };
    struct Case {
        const char* what;
        const char* name;
        std::function<void(std::vector<uint8_t>&)> change;
        bool kept;                          // the list stays
        uint32_t in, thumbBytes, inOnDisk;  // the scene's once open; the file's after
    } cases[] = {
        {"version 1: frame counts, rewritten as current", "old.psf",
         [](auto& b) { Put32(b, 1304, 1), Put32(b, kHeader, 1800); }, false, Tc(0, 1, 12, 0), 14400, Tc(0, 1, 12, 0)},
        {"fewer pixels than the header describes", "short.psf",
         [](auto& b) { b.resize(kHeader + kRecord + 40 + 16), Put32(b, kHeader + 24, 16); }, false, 0, 16, 0},
        {"another extension is not opened", "notes.txt", [](auto& b) { Put32(b, kHeader, 1800); }, true, 0, 14400},
        {"empty", "empty.psf", damage(1, 3, 0), true, 0, 14400},
        {"shorter than its header", "cut.psf", damage(1, 3, kHeader - 1), true, 0, 14400},
        {"oldest version without its shared header", "v0.psf", damage(0, 0, kHeader), true, 0, 14400},
        {"oldest version, shared header cut short", "v0cut.psf", damage(-1, 0, kHeader + 39), true, 0, 14400},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        ScanScenes(1);
        Save(m_dir + "\\list.psf");
        MarkRow(0);
        SetWindowTextA(Item(IDC_TAPE_NAME), "Other");  // a change: opening asks first
        std::string folder = g_session.szCaptureFolder, iniCapture = ReadIni("PSCaptureFileName");
        std::vector<uint8_t> bytes = ReadBytes(m_dir + "\\list.psf");
        c.change(bytes);
        std::string path = m_dir + "\\" + c.name;
        WriteBytes(path, bytes);
        Through(IDC_OPEN_LIST, ModalResponder().ExpectMessageRes(IDS_ASK_SAVE_CHANGES, IDNO).ExpectWindow("open", ChooseFile(path)));
        ASSERT_EQ(qvGetCurrentSceneNumber() * 10 + RowCount(), 11);
        EXPECT_EQ(g_arScenes.GetAt(0)->dwTimeCodeIn, c.in);
        EXPECT_EQ(g_arScenes.GetAt(0)->dwThumbSize, c.thumbBytes);
        EXPECT_EQ(Dlg().m_listScenes.m_nMarkedCount + Enabled(IDC_CAPTURE) + Dlg().m_bModified, c.kept ? 3 : 0);
        std::vector<uint8_t> after = ReadBytes(path);
        if (c.kept) {
            EXPECT_EQ(after, bytes);
            EXPECT_EQ(g_session.szCaptureFolder, folder);
            EXPECT_EQ(ReadIni("PSCaptureFileName"), iniCapture);
        } else {
            EXPECT_EQ(std::string(g_session.szSceneListFile), path);
            EXPECT_EQ(Get32(after, 1304), 3);
            EXPECT_EQ(static_cast<uint32_t>(Get32(after, kHeader)), c.inOnDisk);
        }
        // The row draws; a picture with too few pixels is left out.
        RECT cell = {};
        Dlg().m_listScenes.GetCellRect(0, 1, LVIR_BOUNDS, cell);
        RedrawWindow(Item(IDC_SCENE_LIST), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
        HDC dc = GetDC(Item(IDC_SCENE_LIST));
        EXPECT_EQ(GetPixel(dc, (cell.left + cell.right) / 2, (cell.top + cell.bottom) / 2) == RGB(200, 40, 40), c.thumbBytes > 16);
        ReleaseDC(Item(IDC_SCENE_LIST), dc);
        TearDown();
        SetUp();
    }
}

// Another program holds the file open: it cannot be replaced, and stays as it was.
TEST_F(SceneListFileTest, FailedSaveLeavesThePreviousFile)
{
    ScanScenes(2);
    std::string path = m_dir + "\\kept.psf";
    Save(path);
    std::vector<uint8_t> before = ReadBytes(path);
    FeedScene(Tc(0, 9, 0, 0), Tc(0, 9, 1, 0));
    HANDLE held = CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    Through(IDC_SAVE_LIST, ModalResponder()
                               .ExpectWindow("save", ChooseFile(path))
                               .ExpectWindow("replace?", [](HWND box) { return PostMessageA(box, WM_COMMAND, IDYES, 0); })
                               .ExpectMessageRes(IDS_SAVE_FAILED, path.c_str(), IDOK));
    CloseHandle(held);
    EXPECT_EQ(ReadBytes(path), before);
    EXPECT_EQ(Dlg().m_bModified, 1);
    WIN32_FIND_DATAA found;
    EXPECT_EQ(FindFirstFileA((m_dir + "\\*.tmp").c_str(), &found), INVALID_HANDLE_VALUE);  // no temporary file left
}
