#pragma once

// The cross-fade of the seamless pattern over a pixel view of 1 or 3 bytes a pixel whose bytes
// are intensities.
//
// A band of bh + 1 rows ending at the bottom row is faded into the top rows, then a band of
// bw + 1 columns ending at the right column into the left columns; the caller then keeps the
// top-left (w - bw) x (h - bh) pixels. The bands are one line wider than what is cut away, so
// the last kept row (and column) is also the source of the first: the two edges of the tile
// meet on the same content, as long as the bands stop short of the last kept row and column
// (below about half the picture); wider bands fade those lines as well.

#include <cstdint>

#include "image/pixel_view.h"

namespace vistrane::xform {

// Band sizes of `percent` per cent of the width and of the height, rounded to nearest. False
// when a band would be empty (its first weight would be 0 / 0) or reach the opposite edge
// (its source line would lie outside the picture).
[[nodiscard]] bool SeamlessBands(int width, int height, int percent, int& bandWidth,
                                 int& bandHeight);

// Weight of the band pixel at step k of a band of b: trunc((1 - k / b) * 255) in double
// precision, 255 at k = 0 down to 0 at k = b.
int SeamlessAlpha(int k, int b);

// Both passes, vertical first, in place. `multiply` is glb_MultiplyLUT: a kept byte p and a
// band byte q become multiply[255 - alpha][p] + multiply[alpha][q], each channel on its own.
// Steps run in increasing k, and a band line is read before the line it fades into is
// written, so a band that overlaps the lines it fades into reads them unfaded.
void SeamlessCrossFade(const image::PixelView& view, int bandWidth, int bandHeight,
                       const BYTE (&multiply)[256][256]);

}  // namespace vistrane::xform
