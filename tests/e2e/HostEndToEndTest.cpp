// The built qvPreScan.dll as a host meets it: loaded with LoadLibraryA,
// reached only through its exports, its callback and window messages.
#include "ResourceIds.h"
#include "qvPreScan.h"
#include "support/ModalResponder.h"
#include "support/Portable.h"
#include "support/Pump.h"
#include "support/ScriptedHost.h"
#include "support/TestEnvironment.h"

#include <windows.h>
#include <commctrl.h>
#include <gtest/gtest.h>

using namespace qvtest;

namespace {

const HMODULE g_dll = LoadLibraryA("qvPreScan.dll");

// An export of the loaded DLL, typed as the public header declares it.
template <class F> F Export(const char* name)
{
    return reinterpret_cast<F>(reinterpret_cast<void*>(GetProcAddress(g_dll, name)));
}
#define QV(name) Export<decltype(&name)>(#name)

} // namespace

TEST(HostEndToEnd, ExportsScanFeedStopAndClose)
{
    ASSERT_NE(g_dll, nullptr);
    // The export directory lists the fourteen exports and nothing else.
    auto* base = reinterpret_cast<const uint8_t*>(g_dll);
    auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + reinterpret_cast<const IMAGE_DOS_HEADER*>(base)->e_lfanew);
    auto* dir = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(
        base + nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT].VirtualAddress);
    EXPECT_TRUE(dir->NumberOfFunctions == 14u && dir->NumberOfNames == 14u);
    for (const char* name : {"qvForceToStopPreScan", "qvGetCurrentSceneNumber", "qvGetLibFolderFromPreScan",
                             "qvGetPreScanIndexFileName", "qvMinimizePreScanDlg", "qvPSClearUncompleteScene",
                             "qvPreScanInit", "qvPreScanUnInit", "qvRestorePreScanDlg", "qvSetCapSceneFileName",
                             "qvSetSceneBitmapData", "qvSetSceneDataBegin", "qvSetSceneDataEnd", "qvShowPreScanDlg"})
        EXPECT_NE(GetProcAddress(g_dll, name), nullptr) << name;

    AppDataDir();  // a settings folder of the run's own
    ScriptedHost& host = ScriptedHost::Instance();
    host.Reset();
    PreScanInitInfo info = MakeInitInfo(".avi", 0, "");
    ASSERT_EQ(QV(qvPreScanInit)(&info), 1);

    HWND owner = CreateWindowA("STATIC", "host", WS_OVERLAPPEDWINDOW, 0, 0, 300, 200, nullptr, nullptr, nullptr, nullptr);
    HWND dlg = QV(qvShowPreScanDlg)(owner);
    ASSERT_NE(dlg, nullptr);
    PumpPending();
    SendMessageA(GetDlgItem(dlg, IDC_START_SCAN), BM_CLICK, 0, 0);
    SceneInfo scene = {};
    for (int i = 1; i <= 4; ++i) {
        scene.dwTimeCodeIn = Tc(0, 0, i, 0);
        scene.dwTimeCodeOut = 0;
        QV(qvSetSceneDataBegin)(&scene, nullptr, nullptr);
        scene.dwTimeCodeOut = Tc(0, 0, i, 20);
        if (i < 4) QV(qvSetSceneDataEnd)(&scene);  // the fourth stays open
    }
    HWND list = GetDlgItem(dlg, IDC_SCENE_LIST);
    EXPECT_EQ(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0), 4);
    EXPECT_EQ(QV(qvGetCurrentSceneNumber)(), 3);
    EXPECT_EQ(QV(qvPSClearUncompleteScene)(), 3);  // the open scene goes
    EXPECT_EQ(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0), 3);
    QV(qvMinimizePreScanDlg)();
    QV(qvForceToStopPreScan)(0);  // stop the scan, keep the dialog
    EXPECT_TRUE(IsIconic(dlg) && IsWindow(dlg) && host.Codes().back() == HOSTREQ_STOP_SCAN);
    EXPECT_EQ(host.Last(HOSTREQ_STOP_SCAN)->arg, 3);

    ModalResponder responder;
    responder.ExpectMessageRes(IDS_ASK_SAVE_CHANGES, IDNO);
    QV(qvForceToStopPreScan)(1);
    responder.Verify();
    EXPECT_TRUE(!IsWindow(dlg) && host.Codes().back() == HOSTREQ_DIALOG_CLOSED);
    EXPECT_TRUE(QV(qvGetCurrentSceneNumber)() == 0 && QV(qvPreScanUnInit)() == 1);
    DestroyWindow(owner);
}
