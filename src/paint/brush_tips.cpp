#include "paint/brush_tips.h"

#include <vistrane/blend/image_luts.h>

#include <algorithm>
#include <array>

namespace vistrane::paint {
namespace {

// The brush curve is the brush opacity table with its top end held just below full, so that
// only the last entry reaches 255.
std::array<BYTE, 256> InitialBrushCurve() {
    std::array<BYTE, 256> curve;
    std::copy(glb_BrushOpacities, glb_BrushOpacities + 256, curve.begin());
    constexpr BYTE kTop[8] = {253, 253, 253, 254, 254, 254, 254, 254};
    std::copy(kTop, kTop + 8, curve.begin() + 247);
    curve[255] = 255;
    return curve;
}

// Falls from 15 to 4, rises to 255 at 183..191 and falls back to 160: the rim of a wet stroke
// is darker than its middle.
constexpr std::array<BYTE, 256> kInitialWetCurve = {
    15,  14,  14,  13,  13,  13,  13,  12,  12,  12,  11,  11,  11,  10,  10,  10,  9,   9,   9,
    9,   8,   8,   8,   7,   7,   7,   7,   6,   6,   6,   6,   6,   6,   5,   5,   5,   5,   5,
    5,   5,   5,   5,   4,   5,   5,   5,   5,   5,   5,   5,   5,   6,   6,   6,   7,   7,   8,
    8,   9,   10,  10,  11,  12,  13,  14,  14,  16,  17,  18,  19,  20,  21,  23,  24,  26,  27,
    29,  30,  32,  33,  35,  37,  38,  40,  42,  43,  45,  47,  49,  51,  52,  54,  56,  58,  60,
    62,  64,  65,  67,  69,  71,  73,  75,  76,  78,  80,  82,  84,  86,  88,  89,  91,  93,  95,
    97,  99,  101, 103, 105, 107, 110, 112, 114, 116, 118, 121, 123, 125, 128, 130, 132, 135, 137,
    140, 142, 145, 148, 150, 153, 156, 158, 161, 164, 166, 169, 172, 175, 177, 180, 183, 186, 188,
    191, 194, 197, 199, 202, 205, 207, 210, 213, 215, 218, 220, 223, 225, 227, 230, 232, 234, 236,
    238, 240, 242, 244, 245, 247, 248, 250, 251, 252, 253, 254, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 254, 254, 252, 251, 250, 248, 246, 244, 242, 240, 238, 236, 233, 231, 228, 225, 223,
    220, 217, 215, 212, 209, 206, 203, 201, 198, 195, 193, 190, 188, 186, 184, 182, 180, 178, 176,
    174, 173, 172, 170, 169, 168, 167, 166, 165, 165, 164, 163, 163, 162, 162, 161, 161, 161, 161,
    160, 160, 160, 160, 160, 160, 160, 160, 160,
};

}  // namespace

void FillTipRect(const image::PixelView& tip, int x, int y, int width, int height, BYTE value) {
    for (int j = 0; j < height; ++j) {
        BYTE* row = tip.Row(y + j) + x;
        std::fill(row, row + width, value);
    }
}

void SlashBand(const image::PixelView& tip, int n, int direction) {
    const int half = n / 4;
    for (int r = 0; r < n; ++r) {
        const int c = direction == 0 ? r : n - 1 - r;
        const int from = std::max(0, c - half);
        const int to = std::min(n - 1, c + half);
        BYTE* row = tip.Row(r);
        std::fill(row + from, row + to + 1, BYTE{255});
    }
}

void DimAtRandom(const image::PixelView& tip, int n, const BYTE* pairs, C_Helper& helper) {
    for (int y = 0; y < n; ++y) {
        BYTE* row = tip.Row(y);
        for (int x = 0; x < n; ++x) {
            if (row[x] == 0) {
                continue;
            }
            const int r = helper.Random0Max(100);
            for (int p = 0; p < 4; ++p) {
                if (pairs[2 * p] >= r) {
                    row[x] = pairs[2 * p + 1];
                    break;
                }
            }
        }
    }
    if (n <= 5 && n > 0 && helper.Random0Max(2) != 0) {
        tip.Row(n / 2)[n / 2] = pairs[1];
    }
}

BYTE* BrushCurve() {
    static std::array<BYTE, 256> curve = InitialBrushCurve();
    return curve.data();
}

BYTE* WetCurve() {
    static std::array<BYTE, 256> curve = kInitialWetCurve;
    return curve.data();
}

}  // namespace vistrane::paint
