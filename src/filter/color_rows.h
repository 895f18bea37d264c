#pragma once

// Row routines of the colour operations and statistics, for C_Image's colour and palette
// members. A row is `count` pixels of 3 bytes (blue, green, red) or 1 byte.
//
// The mask rule: with a mask row, mask byte m leaves the pixel (0), replaces it (255) or mixes
// old and new through glb_MultiplyLUT (in between), which is the blend merge step with m as the
// opacity; without a mask every pixel is replaced.

#include <vistrane/companion/helper.h>
#include <vistrane/platform/types.h>

namespace vistrane::filter {

class HsvShifter;

// The three tables of a per-channel operation; a grey row uses only `red`.
struct ChannelTables {
    const BYTE* red;
    const BYTE* green;
    const BYTE* blue;
};

// Rows of the colour operations, under the mask rule. `scratch` holds count * 3 bytes.
void LutRowTrueColor(BYTE* row, int count, const ChannelTables& tables, const BYTE* mask,
                     BYTE* scratch);
void LutRowGrey(BYTE* row, int count, const BYTE* table, const BYTE* mask, BYTE* scratch);
// Grey (B + G + R) / 3 in all three bytes.
void GrayRowTrueColor(BYTE* row, int count, const BYTE* mask, BYTE* scratch);
// 255 - c in every byte; bytesPerPixel 1 or 3.
void NegativeRow(BYTE* row, int count, int bytesPerPixel, const BYTE* mask, BYTE* scratch);
// C_Helper::OffsetYUV of every pixel.
void ShiftYuvRowTrueColor(BYTE* row, int count, const int* shifts, const BYTE* mask, BYTE* scratch,
                          C_Helper& helper);
// C_Helper::OffsetHSV of every pixel, through a shifter built once per operation.
void ShiftHsvRowTrueColor(BYTE* row, int count, const HsvShifter& shifter, const BYTE* mask,
                          BYTE* scratch);
// A grey-editable row: each byte's palette colour is shifted and the grey (R + G + B) / 3 of
// the result becomes the byte.
void ShiftRowGrey(BYTE* row, int count, bool hsv, const int* shifts, const RGBQUAD* colors,
                  const BYTE* mask, BYTE* scratch, C_Helper& helper);

// Statistics. Pixels with a mask byte of 0 are not counted; a null mask counts every pixel.
// Histogram counts are added to red, green and blue (256 each) and the counted pixels to
// *counted; 8-bit rows are looked up in `colors` and count their red in the blue table too.
void HistogramRow(const BYTE* row, int count, int bytesPerPixel, const RGBQUAD* colors,
                  const BYTE* mask, LONG* red, LONG* green, LONG* blue, DWORD* counted);
// Sums of R, G and B and the count of the counted pixels.
struct ColorSums {
    unsigned long long red = 0, green = 0, blue = 0, pixels = 0;
};
void SumRow(const BYTE* row, int count, int bytesPerPixel, const RGBQUAD* colors, const BYTE* mask,
            ColorSums& sums);
// Marks the colours of a 24-bit row in a 2^24-bit set (bit B mod 8 of byte (R * 256 + G) * 32
// + B / 8) and returns how many were new.
unsigned long MarkColorsRow(const BYTE* row, int count, BYTE* bitSet);
// Adds one to usage[index] for every byte of an 8-bit row.
void CountIndicesRow(const BYTE* row, int count, unsigned long* usage);

}  // namespace vistrane::filter
