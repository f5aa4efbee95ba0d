// The module's messages with a host's own resource library, one that lacks
// the texts the module added or has them reading other arguments.
#include "ResourceIds.h"
#include "platform/ResourceLib.h"
#include "sceneops/SceneListFormat.h"
#include "support/DialogFixture.h"

using namespace qvtest;

namespace {

class ResourceTextTest : public DialogFixture {
protected:
    // From here on the module takes its texts from the partial library (its
    // dialogs come from the host's: the partial one has none).
    void UsePartialLibrary()
    {
        HMODULE partial = LoadLibraryA("qvCaptureRCPartial.dll");  // stays loaded
        auto instance = reinterpret_cast<HINSTANCE (*)()>(GetProcAddress(partial, "qvCaptureGetNewRCInstanceHandle"));
        ASSERT_NE(instance, nullptr);
        g_hResInst = instance();
    }
    void TearDown() override { g_hResInst = qvCaptureGetNewRCInstanceHandle(), DialogFixture::TearDown(); }
};

} // namespace

TEST_F(ResourceTextTest, HostTextIsUsedOnlyWhenItTakesTheArgument)
{
    UsePartialLibrary();
    EXPECT_EQ(qv::FormatResString(IDS_CAPTURE_FOLDER_TOO_LONG, 259), "Folder: 259 characters at most.");
    EXPECT_EQ(qv::FormatResString(IDS_CAPTURE_NAME_TOO_LONG, 99),  // the host's reads a text
              "The capture file name is too long: it may have at most 99 characters. Nothing was changed.");
    EXPECT_EQ(qv::FormatResString(IDS_SAVE_FAILED, "C:\\t.psf"),  // the host's reads two
              "The scene list could not be saved to C:\\t.psf.\n\nThe file that was there before has been left as it was.");
}

TEST_F(ResourceTextTest, BoxOfAMissingTextIsNotEmpty)
{
    OpenWithScenes(1);
    UsePartialLibrary();
    Dlg().m_nSceneCount = qv::kMaxScenesInList + 1;  // far too many scenes to scan here
    ModalResponder responder;
    responder.UseLibrary(g_hResInst).ExpectMessageRes(IDS_TOO_MANY_SCENES, qv::kMaxScenesInList, IDOK);
    Click(IDC_SAVE_LIST);
    responder.Verify();
    Dlg().m_nSceneCount = 1;
}
