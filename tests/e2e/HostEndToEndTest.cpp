// The built qvPreScan.dll as a host meets it: loaded with LoadLibraryA,
// reached only through its exports, its callback and window messages.
#include "ResourceIds.h"
#include "qvPreScan.h"
#include "support/ModalResponder.h"
#include "support/Pump.h"

#include <windows.h>
#include <commctrl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <string>
#include <vector>

using namespace qvtest;

namespace {

struct Module {
    HMODULE dll = nullptr;
    decltype(&qvPreScanInit) init = nullptr;
    decltype(&qvPreScanUnInit) uninit = nullptr;
    decltype(&qvShowPreScanDlg) show = nullptr;
    decltype(&qvForceToStopPreScan) forceStop = nullptr;
    decltype(&qvGetCurrentSceneNumber) sceneNumber = nullptr;
    decltype(&qvPSClearUncompleteScene) clearIncomplete = nullptr;
    decltype(&qvSetSceneDataBegin) begin = nullptr;
    decltype(&qvSetSceneDataEnd) end = nullptr;
    decltype(&qvSetCapSceneFileName) captured = nullptr;
    decltype(&qvGetPreScanIndexFileName) indexFile = nullptr;
};

Module& Dll()
{
    static Module m = [] {
        Module m;
        m.dll = LoadLibraryA("qvPreScan.dll");
        if (!m.dll) return m;
        auto get = [&](const char* name) { return reinterpret_cast<void*>(GetProcAddress(m.dll, name)); };
        m.init = reinterpret_cast<decltype(m.init)>(get("qvPreScanInit"));
        m.uninit = reinterpret_cast<decltype(m.uninit)>(get("qvPreScanUnInit"));
        m.show = reinterpret_cast<decltype(m.show)>(get("qvShowPreScanDlg"));
        m.forceStop = reinterpret_cast<decltype(m.forceStop)>(get("qvForceToStopPreScan"));
        m.sceneNumber = reinterpret_cast<decltype(m.sceneNumber)>(get("qvGetCurrentSceneNumber"));
        m.clearIncomplete = reinterpret_cast<decltype(m.clearIncomplete)>(get("qvPSClearUncompleteScene"));
        m.begin = reinterpret_cast<decltype(m.begin)>(get("qvSetSceneDataBegin"));
        m.end = reinterpret_cast<decltype(m.end)>(get("qvSetSceneDataEnd"));
        m.captured = reinterpret_cast<decltype(m.captured)>(get("qvSetCapSceneFileName"));
        m.indexFile = reinterpret_cast<decltype(m.indexFile)>(get("qvGetPreScanIndexFileName"));
        return m;
    }();
    return m;
}

// The names the DLL's export directory lists.
std::vector<std::string> ExportedNames(HMODULE dll)
{
    auto* base = reinterpret_cast<const uint8_t*>(dll);
    auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
    const auto& dir = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    auto* exports = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(base + dir.VirtualAddress);
    auto* names = reinterpret_cast<const DWORD*>(base + exports->AddressOfNames);
    std::vector<std::string> result;
    for (DWORD i = 0; i < exports->NumberOfNames; ++i) result.push_back(reinterpret_cast<const char*>(base + names[i]));
    EXPECT_EQ(exports->NumberOfFunctions, exports->NumberOfNames);
    return result;
}

std::vector<int32_t> g_requests;
int32_t Host(int32_t code, intptr_t arg)
{
    g_requests.push_back(code);
    if (code == HOSTREQ_GET_DEVICE_STATUS) {
        for (auto& f : reinterpret_cast<DeviceStatus*>(arg)->adwCondition) f = 1;
        return 1;
    }
    return code == HOSTREQ_START_SCAN || code == HOSTREQ_DIALOG_CLOSED ? 1 : 0;
}

SceneInfo Scene(uint32_t in, uint32_t out)
{
    SceneInfo s;
    std::memset(&s, 0, sizeof s);
    s.dwTimeCodeIn = in;
    s.dwTimeCodeOut = out;
    s.dwPositionIn = s.dwPositionOut = QV_NO_POSITION;
    return s;
}

} // namespace

TEST(HostEndToEnd, ExportsExactlyTheFourteenNames)
{
    ASSERT_NE(Dll().dll, nullptr);
    std::vector<std::string> names = ExportedNames(Dll().dll);
    std::sort(names.begin(), names.end());
    std::vector<std::string> expected = {
        "qvForceToStopPreScan", "qvGetCurrentSceneNumber", "qvGetLibFolderFromPreScan", "qvGetPreScanIndexFileName",
        "qvMinimizePreScanDlg", "qvPSClearUncompleteScene", "qvPreScanInit", "qvPreScanUnInit",
        "qvRestorePreScanDlg", "qvSetCapSceneFileName", "qvSetSceneBitmapData", "qvSetSceneDataBegin",
        "qvSetSceneDataEnd", "qvShowPreScanDlg"};
    EXPECT_EQ(names, expected);
}

TEST(HostEndToEnd, ScanFeedStopAndClose)
{
    Module& m = Dll();
    ASSERT_NE(m.dll, nullptr);
    char temp[MAX_PATH];
    GetTempPathA(sizeof temp, temp);
    std::string appData = std::string(temp) + "qv-e2e-settings";
    CreateDirectoryA(appData.c_str(), nullptr);
    SetEnvironmentVariableA("QVPRESCAN_APPDATA", appData.c_str());
    std::string captures = std::string(temp) + "qv-e2e-captures";
    CreateDirectoryA(captures.c_str(), nullptr);
    WritePrivateProfileStringA("MainSec", "PSCaptureFileName", (captures + "\\Tape.avi").c_str(),
                               (appData + "\\qvPreScan.ini").c_str());

    PreScanInitInfo info;
    std::memset(&info, 0, sizeof info);
    info.pfnHostRequest = &Host;
    std::strcpy(info.szCaptureExt, ".avi");
    info.nTvStandard = 0;
    info.pszHelpFile = "";
    ASSERT_EQ(m.init(&info), 1);
    char index[QV_MAX_PATH];
    m.indexFile(index);
    EXPECT_EQ(std::string(index), captures + "\\PSIndex.avi");

    HWND host = CreateWindowA("STATIC", "host", WS_OVERLAPPEDWINDOW, 0, 0, 300, 200, nullptr, nullptr, nullptr, nullptr);
    HWND dlg = m.show(host);
    ASSERT_NE(dlg, nullptr);
    PumpPending();
    SendMessageA(GetDlgItem(dlg, IDC_START_SCAN), BM_CLICK, 0, 0);
    for (int i = 0; i < 3; ++i) {
        SceneInfo b = Scene(uint32_t(i + 1) << 8, 0), e = Scene(uint32_t(i + 1) << 8, (uint32_t(i + 1) << 8) | 20);
        m.begin(&b, nullptr, nullptr);
        m.end(&e);
    }
    SceneInfo open = Scene(9u << 8, 0);
    m.begin(&open, nullptr, nullptr);
    EXPECT_EQ(SendMessageA(GetDlgItem(dlg, IDC_SCENE_LIST), LVM_GETITEMCOUNT, 0, 0), 4);
    EXPECT_EQ(m.sceneNumber(), 3);
    EXPECT_EQ(m.clearIncomplete(), 3);
    m.forceStop(0);  // stop the scan, keep the dialog
    EXPECT_TRUE(IsWindow(dlg));
    EXPECT_EQ(g_requests.back(), HOSTREQ_STOP_SCAN);

    ModalResponder responder;
    responder.ExpectMessageRes(IDS_ASK_SAVE_CHANGES, IDNO);
    m.forceStop(1);
    responder.Verify();
    EXPECT_FALSE(IsWindow(dlg));
    EXPECT_EQ(g_requests.back(), HOSTREQ_DIALOG_CLOSED);
    EXPECT_EQ(m.sceneNumber(), 0);
    EXPECT_EQ(m.uninit(), 1);
    DestroyWindow(host);
}
