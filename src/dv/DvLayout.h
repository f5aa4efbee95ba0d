// Inside the DV reader: where each DIF block of a frame belongs, told by the
// three ID bytes every block starts with.
//
//   byte 0: section type in the top 3 bits (header, subcode, VAUX, audio,
//           video); bit 4 reserved, written as 1; the low 4 bits free for
//           the recorder
//   byte 1: DIF sequence number in the top 4 bits; bit 3 the channel (0 for
//           the 25 Mbit/s formats read here)
//   byte 2: the block's number within its section of the sequence
#pragma once

#include "dv/DvStream.h"

#include <array>

namespace dv::layout {

enum Section : uint8_t { HEADER = 0, SUBCODE = 1, VAUX = 2, AUDIO = 3, VIDEO = 4 };

// What block `index` (0-149) of every DIF sequence is.  Every sequence is
// laid out alike: the header block, two subcode blocks, three VAUX blocks,
// then nine rows of one audio block followed by fifteen video blocks.
struct BlockPlace {
    uint8_t section;
    uint8_t number;
};
inline constexpr std::array<BlockPlace, BLOCKS_PER_SEQUENCE> PLACES = [] {
    std::array<BlockPlace, BLOCKS_PER_SEQUENCE> t{};
    t[0] = {HEADER, 0};
    t[1] = {SUBCODE, 0}, t[2] = {SUBCODE, 1};
    t[3] = {VAUX, 0}, t[4] = {VAUX, 1}, t[5] = {VAUX, 2};
    for (int i = 6; i < BLOCKS_PER_SEQUENCE; ++i) {
        int row = (i - 6) / 16, col = (i - 6) % 16;
        t[i] = col == 0 ? BlockPlace{AUDIO, uint8_t(row)} : BlockPlace{VIDEO, uint8_t(row * 15 + col - 1)};
    }
    return t;
}();
inline const BlockPlace& PlaceOf(int index)
{
    return PLACES[index];
}

// Block `index` of sequence `sequence` carries the ID that belongs there.
inline bool InPlace(const uint8_t* block, int sequence, int index)
{
    const BlockPlace& place = PlaceOf(index);
    return (block[0] >> 5) == place.section && (block[1] & 0xF8) == (sequence << 4) && block[2] == place.number;
}

// The header block's DSF bit: set for 625/50, clear for 525/60.
inline System SystemOf(const uint8_t* header)
{
    return (header[3] & 0x80) ? System::Pal625 : System::Ntsc525;
}

// Bytes a frame start is told by: the header block and the three blocks
// after it.  A stray byte pattern that looks like a header block rarely has
// the subcode and VAUX blocks of sequence 0 behind it.
constexpr size_t START_BYTES = 4 * BLOCK_BYTES;
bool IsFrameStart(const uint8_t* p, size_t available);

// Whole blocks from the start of `frame` that sit where they belong.
size_t BlocksInPlace(const uint8_t* frame, size_t size, System system);
// What a frame that starts with a header block tells, given how many of its
// blocks sit where they belong.
FrameInfo Describe(const uint8_t* frame, size_t size, size_t blocksInPlace);

inline int Sequences(System system)
{
    return static_cast<int>(FrameBytes(system) / (BLOCK_BYTES * BLOCKS_PER_SEQUENCE));
}

} // namespace dv::layout
