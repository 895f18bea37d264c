#pragma once

// The row kernels of the fills and the record they read; see fill_runs.h. Kept apart from the
// views so that the AVX2 file includes no inline code that other files also compile.

#include <cstdint>

#include <vistrane/mask/color_match.h>
#include <vistrane/platform/types.h>

namespace vistrane::mask {

struct RowTest;

// Bit i of the result is set when pixel x + i is open, for i < count (1..32); the bits from
// count up are 0. `sourceRow` and `maskRow` are the same row of source and mask.
using OpenBitsFunction = std::uint32_t (*)(const RowTest& test, const BYTE* sourceRow,
                                           const BYTE* maskRow, int x, int count);

struct RowTest {
    OpenBitsFunction openBits = nullptr;
    const S_ColorMatchData* data = nullptr;
    const RGBQUAD* colors = nullptr;  // of a 1-byte source
    int bytesPerPixel = 3;
    // OpenBitsRgb24Avx2: the inclusive accepted ranges, laid out as the 96 bytes of 32 pixels
    // lie: low and high bounds of bytes 0..31, 32..63 and 64..95.
    alignas(32) BYTE rangeBounds[6][32] = {};
    // OpenBitsIndexed: 1 where the index's colour matches.
    BYTE indexAccept[256] = {};
};

std::uint32_t OpenBitsRef(const RowTest& test, const BYTE* sourceRow, const BYTE* maskRow, int x,
                          int count);
std::uint32_t OpenBitsIndexed(const RowTest& test, const BYTE* sourceRow, const BYTE* maskRow,
                              int x, int count);
std::uint32_t OpenBitsRgb24(const RowTest& test, const BYTE* sourceRow, const BYTE* maskRow, int x,
                            int count);
std::uint32_t OpenBitsRgb24Avx2(const RowTest& test, const BYTE* sourceRow, const BYTE* maskRow,
                                int x, int count);

}  // namespace vistrane::mask
