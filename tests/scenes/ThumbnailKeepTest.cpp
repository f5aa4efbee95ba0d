// A host's thumbnail is kept as it was sent whenever the pixels its header
// describes lie within the bytes delivered; only a header that describes
// more than that, or does not say how much, is replaced by a blank picture.
#include "ResourceIds.h"
#include "scenes/SceneStore.h"
#include "support/DialogFixture.h"

#include <tuple>

using namespace qvtest;

namespace {
class ThumbnailKeepTest : public DialogFixture {};
}

TEST_F(ThumbnailKeepTest, KeptAsTheHostSentIt)
{
    OpenDialog();
    StartScan();
    const uint32_t kMjpg = 0x47504A4D, k24Bit = 80 * 3 * 60;
    struct Case { const char* what; uint32_t compression, sizeImage, delivered; uint16_t bitCount; bool kept; } cases[] = {
        {"24-bit, bytes to spare", 0, 0, k24Bit + 100, 24, true},
        {"8-bit", 0, 0, 80 * 60, 8, true},
        {"compressed", kMjpg, 700, 700, 24, true},
        {"compressed, fewer bytes than it states", kMjpg, 700, 699, 24, false},
        {"compressed, no size stated", kMjpg, 0, 700, 24, false},
        {"24-bit, fewer bytes than it describes", 0, 0, k24Bit - 1, 24, false},
    };
    std::vector<uint8_t> pixels(20000);
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<uint8_t>(i * 7 + 1);
    for (int row = 0; row < 6; ++row) {
        const Case& c = cases[row];
        SCOPED_TRACE(c.what);
        BITMAPINFOHEADER sent = {sizeof sent, 80, 60, 1, c.bitCount, c.compression, c.sizeImage, 0, 0, 0, 0};
        SceneInfo begin = MakeScene(Tc(0, 1, row, 0), 0, c.delivered), end = MakeScene(Tc(0, 1, row, 0), Tc(0, 1, row, 5));
        qvSetSceneDataBegin(&begin, &sent, pixels.data());
        qvSetSceneDataEnd(&end);
        ASSERT_EQ(g_arThumbBits.GetSize(), row + 1);
        const ThumbHeader* header = g_arThumbHeaders.GetAt(row);
        const uint8_t* bits = g_arThumbBits.GetAt(row);
        uint32_t size = g_arScenes.GetAt(row)->dwThumbSize;
        ASSERT_EQ(size, c.kept ? c.delivered : k24Bit);
        EXPECT_EQ(std::memcmp(header, &sent, sizeof sent) == 0, c.kept);
        EXPECT_EQ(std::memcmp(bits, pixels.data(), size) == 0, c.kept);
        if (!c.kept) EXPECT_EQ(std::tuple(header->biBitCount, header->biCompression, bits[0] | bits[size - 1]), std::tuple(24, 0u, 0));
    }
    UpdateWindow(Item(IDC_SCENE_LIST));  // what cannot be drawn is a blank cell
    PressKey(VK_ESCAPE);
}
