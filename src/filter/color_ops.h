#pragma once

// Whole-image colour operations over pixel views, behind C_Image's colour members. A mask view,
// when not empty, has the image's size; the row routines of color_rows.h apply the mask rule.

#include "filter/color_rows.h"
#include "image/pixel_view.h"

#include <vistrane/companion/helper.h>

namespace vistrane::image {
class Progress;
}

namespace vistrane::filter {

enum class ColorRowOp { kLut, kGray, kNegative, kShiftHsv, kShiftYuv };

struct ColorOpArgs {
    ColorRowOp op = ColorRowOp::kLut;
    ChannelTables tables{};                     // kLut
    const int* shifts = nullptr;                // kShiftHsv, kShiftYuv: three shifts
    const image::Progress* progress = nullptr;  // told about every band of rows
};

// Runs one operation over every row of a 24-bit or grey view (grey views: the LUT uses the red
// table, the shifts work on the palette colour and keep its grey average). False, with the view
// untouched, when its working memory cannot be had or the host cancels.
bool ApplyColorOp(const image::PixelView& view, const image::PixelView& mask,
                  const ColorOpArgs& args, C_Helper& helper);
// Negative of the pixels whose mask byte is exactly 255 (all of them without a mask).
void NegativeWhereSelected(const image::PixelView& view, const image::PixelView& mask);
// Recolours the 24-bit pixels whose mask byte is 255 (all without a mask): YUV keeps the luma
// and imposes (a, b) as (U, V); HSL keeps the lightness and imposes (a, b) as hue and
// saturation, turning hue-less pixels into their grey average.
void Colorize(const image::PixelView& view, const image::PixelView& mask, bool yuv, BYTE a, BYTE b,
              C_Helper& helper);
// Fills storage row k (k = 0 the first row in memory, the bottom of the picture) with the
// colour of level (d / 2 + top * k) / d, d = max(rows - 1, 1): YUV levels Y (top 255), HSL
// levels L (top 240).
void VerticalGradientFill(const image::PixelView& view, bool yuv, BYTE a, BYTE b, C_Helper& helper);
// dst (8-bit, the source's size) gets the grey of each source pixel: the common value when
// R = G = B, else (R + G + B) / 3. 8-bit sources are read through their colour table; dst may
// be the source itself.
void GreyLevels(const image::PixelView& dst, const image::PixelView& source);
// One byte per destination: Y, U, V (yuv) or R, G, B of each pixel.
void SeparateInto(const image::PixelView& source, const image::PixelView* planes, bool yuv,
                  C_Helper& helper);
// The 24-bit view's pixels from three sources' levels (YFromRGB of each source pixel).
void CombineFrom(const image::PixelView& view, const image::PixelView* sources, bool yuv,
                 C_Helper& helper);
void SwapFirstAndThirdBytes(const image::PixelView& view);

}  // namespace vistrane::filter
