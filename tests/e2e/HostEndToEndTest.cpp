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
    ASSERT_NE(g_dll, nullptr);  // its export table is checked against the .def by tests/sdk/sdk_test.sh
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
    char library[QV_MAX_PATH] = "", settings[QV_MAX_PATH] = "";  // from the settings, or their default
    LoadStringA(GetModuleHandleA("qvCaptureRC.dll"), IDS_DEFAULT_LIBRARY_FOLDER, settings, sizeof settings);
    QV(qvRestorePreScanDlg)(), QV(qvGetLibFolderFromPreScan)(library);
    EXPECT_TRUE(!IsIconic(dlg) && std::string(library) == settings) << library;

    ModalResponder responder;
    responder.ExpectMessageRes(IDS_ASK_SAVE_CHANGES, IDNO);
    QV(qvForceToStopPreScan)(1);
    responder.Verify();
    EXPECT_TRUE(!IsWindow(dlg) && host.Codes().back() == HOSTREQ_DIALOG_CLOSED && QV(qvGetCurrentSceneNumber)() == 0);
    dlg = QV(qvShowPreScanDlg)(owner);  // ending the session does not close a dialog
    EXPECT_TRUE(QV(qvPreScanUnInit)() == 1 && IsWindow(dlg));
    DestroyWindow(owner);
}
