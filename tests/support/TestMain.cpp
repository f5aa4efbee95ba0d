// Entry point of the Windows test executables.
#include "support/TestEnvironment.h"
#include "session/Session.h"

#include <commctrl.h>
#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    INITCOMMONCONTROLSEX icc = {sizeof icc, ICC_WIN95_CLASSES | ICC_STANDARD_CLASSES};
    InitCommonControlsEx(&icc);
    // The module's code is linked into the test: its resources are the exe's.
    g_hModule = GetModuleHandleA(nullptr);
    qvtest::AppDataDir();  // private settings folder for this run
    return RUN_ALL_TESTS();
}
