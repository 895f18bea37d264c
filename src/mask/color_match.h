#pragma once

// Preparing and applying the colour-match table, and reading a source pixel as a colour.

#include <vistrane/mask/color_match.h>
#include <vistrane/platform/types.h>

#include "image/pixel_view.h"

namespace vistrane::mask {

// `bgr` is blue, green, red.
void PrepareColorMatch(S_ColorMatchData* data, const BYTE* bgr, COLOR_MATCH_MODE mode,
                       int tolerance);
bool MatchColor(const BYTE* bgr, const S_ColorMatchData& data);

// The blue, green, red of pixel (x, y): its bytes for a 3-byte view, its colour-table entry for
// a 1-byte view.
inline const BYTE* ColorAt(const image::ConstPixelView& source, int x, int y) {
    const BYTE* p = source.Pixel(x, y);
    return source.bytesPerPixel == 3 ? p : &source.colors[*p].rgbBlue;
}

}  // namespace vistrane::mask
