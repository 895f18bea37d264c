#pragma once

// Hard-edged brush tips over an 8-bit view of the n x n tip, behind C_Image's brush members.

#include "image/pixel_view.h"

#include <vistrane/companion/helper.h>

namespace vistrane::paint {

// Sets width x height bytes from (x, y) down to `value`; the caller keeps them inside.
void FillTipRect(const image::PixelView& tip, int x, int y, int width, int height, BYTE value);
// The band of PaintSlashBrushMask: row r gets columns max(0, c - n / 4)..min(n - 1, c + n / 4)
// with c = r (direction 0) or n - 1 - r.
void SlashBand(const image::PixelView& tip, int n, int direction);
// Replaces each non-zero byte by the value of the first (threshold, value) pair whose threshold
// is >= Random0Max(100); tips up to 5 x 5 then get the first value at their centre when
// Random0Max(2) is non-zero.
void DimAtRandom(const image::PixelView& tip, int n, const BYTE* pairs, C_Helper& helper);

// The process-wide curves: the brush curve and the wet-edge curve, 256 bytes each.
BYTE* BrushCurve();
BYTE* WetCurve();

}  // namespace vistrane::paint
