// A frame's picture at one pixel per 8x8 block, from the DC coefficient that
// opens each compressed block: the average brightness and colour of the
// block, with no further decoding.
//
// The picture is cut into macroblocks (4 luminance blocks with one block of
// each colour difference), grouped into super blocks: a grid of 5 columns
// and 12 rows (625/50) or 10 rows (525/60) of 27 macroblocks.  Each video
// block of the stream carries one macroblock, and each run of five carries
// one from five super blocks spread over the picture, so that a tape
// dropout leaves scattered holes rather than a stripe.
#include "dv/DvLayout.h"

#include <algorithm>
#include <array>

namespace dv {

namespace {

using namespace layout;

enum { WIDTH = 90, MAX_HEIGHT = 72, VIDEO_BLOCKS = 135, MAX_SEQUENCES = 12 };

// The five macroblocks of a run: from which super block row (counted on
// from the sequence number) and column each comes.
constexpr int RUN_ROW_SHIFT[5] = {2, 6, 8, 0, 4};
constexpr int RUN_COLUMN[5] = {2, 1, 3, 0, 4};

// Where a macroblock lies, in 8x8 blocks from the picture's top left, and
// its shape: 2x2 blocks (16x16 pixels), or 4x1 blocks (32x8, 525/60 only).
struct MacroblockPlace {
    uint8_t row, col;
    bool square;
};
using PlaceTable = std::array<MacroblockPlace, MAX_SEQUENCES * VIDEO_BLOCKS>;

// 625/50: super blocks of 9x3 square macroblocks, numbered down the first
// column, up the second, and so on.
MacroblockPlace Place625(int sbRow, int sbCol, int k)
{
    int c = k / 3, r = (c % 2) ? 2 - k % 3 : k % 3;
    return {uint8_t((sbRow * 3 + r) * 2), uint8_t((sbCol * 9 + c) * 2), true};
}

// 525/60: super blocks 4.5 wide macroblocks of 32x8 pixels by 6 high,
// numbered down and up the columns in turn.  The half column they share
// goes to the left super block's top and the right one's bottom; the
// rightmost super blocks end in three square macroblocks instead.
MacroblockPlace Place525(int sbRow, int sbCol, int k)
{
    if (sbCol == 4 && k >= 24) return {uint8_t(sbRow * 6 + 2 * (k - 24)), uint8_t(88), true};
    int t = k + (sbCol % 2 ? 3 : 0);
    int c = t / 6, r = (c % 2) ? 5 - t % 6 : t % 6;
    return {uint8_t(sbRow * 6 + r), uint8_t(4 * (9 * sbCol / 2 + c)), false};
}

const PlaceTable& Places(System system)
{
    static const auto build = [](System s) {
        PlaceTable table{};
        int sequences = Sequences(s);
        for (int seq = 0; seq < sequences; ++seq)
            for (int v = 0; v < VIDEO_BLOCKS; ++v) {
                int run = v / 5, m = v % 5, sbRow = (seq + RUN_ROW_SHIFT[m]) % sequences;
                table[seq * VIDEO_BLOCKS + v] = s == System::Pal625 ? Place625(sbRow, RUN_COLUMN[m], run)
                                                                    : Place525(sbRow, RUN_COLUMN[m], run);
            }
        return table;
    };
    static const PlaceTable pal = build(System::Pal625), ntsc = build(System::Ntsc525);
    return system == System::Pal625 ? pal : ntsc;
}

// The six compressed blocks of a video block start at these bytes: four of
// luminance (Y), then the red and the blue colour difference (Cr, Cb).
constexpr int BLOCK_START[6] = {4, 18, 32, 46, 60, 70};

// The DC coefficient: a signed 9-bit value, twice the block's mean level
// less 128.  Kept doubled (0-511) for the colour conversion.
int DoubledLevel(const uint8_t* b)
{
    int dc = (b[0] << 1) | (b[1] >> 7);
    return (dc >= 256 ? dc - 512 : dc) + 256;
}

// ITU-R BT.601 studio levels to RGB, in 1/32768 (inputs doubled).
constexpr int Fix(double k)
{
    return static_cast<int>(k * 32768 + 0.5);
}
constexpr int Y_GAIN = Fix(1.164), CB_TO_B = Fix(2.017), CB_TO_G = Fix(0.392), CR_TO_G = Fix(0.813),
              CR_TO_R = Fix(1.596);
uint8_t Clamp(int v)
{
    return static_cast<uint8_t>(std::clamp((v + 32768) >> 16, 0, 255));
}

} // namespace

bool DecodePicture(const uint8_t* frame, size_t size, Picture& out)
{
    if (!IsFrameStart(frame, size)) return false;
    System system = SystemOf(frame);
    const PlaceTable& places = Places(system);
    int height = system == System::Pal625 ? 72 : 60;

    // Doubled levels per block; blocks a damaged frame lacks stay black.
    std::array<int, WIDTH * MAX_HEIGHT> y, cr, cb;
    y.fill(32), cr.fill(256), cb.fill(256);
    size_t blocks = std::min(size, FrameBytes(system)) / BLOCK_BYTES, decoded = 0;
    for (size_t i = 0; i < blocks; ++i) {
        const uint8_t* block = frame + i * BLOCK_BYTES;
        int seq = int(i / BLOCKS_PER_SEQUENCE), index = int(i % BLOCKS_PER_SEQUENCE);
        if (PlaceOf(index).section != VIDEO || !InPlace(block, seq, index)) continue;
        const MacroblockPlace& mb = places[seq * VIDEO_BLOCKS + PlaceOf(index).number];
        // One block of each colour difference covers the whole macroblock.
        int red = DoubledLevel(block + BLOCK_START[4]), blue = DoubledLevel(block + BLOCK_START[5]);
        for (int j = 0; j < 4; ++j) {
            int at = (mb.row + (mb.square ? j / 2 : 0)) * WIDTH + mb.col + (mb.square ? j % 2 : j);
            y[at] = DoubledLevel(block + BLOCK_START[j]);
            cr[at] = red, cb[at] = blue;
        }
        ++decoded;
    }
    if (decoded == 0) return false;

    out.width = WIDTH;
    out.height = height;
    out.bits.assign(out.Stride() * height, 0);
    for (int row = 0; row < height; ++row) {
        uint8_t* line = out.bits.data() + out.Stride() * (height - 1 - row);  // bottom-up
        for (int col = 0; col < WIDTH; ++col) {
            int at = row * WIDTH + col;
            int luma = Y_GAIN * (y[at] - 32), r = cr[at] - 256, b = cb[at] - 256;
            line[col * 3 + 0] = Clamp(luma + CB_TO_B * b);
            line[col * 3 + 1] = Clamp(luma - CB_TO_G * b - CR_TO_G * r);
            line[col * 3 + 2] = Clamp(luma + CR_TO_R * r);
        }
    }
    return true;
}

} // namespace dv
