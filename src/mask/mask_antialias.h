#pragma once

// Softening a mask's hard edges. A pixel is on an edge when one of its eight neighbours inside
// the mask differs from it; such a pixel becomes the rounded mean of its 3 x 3 neighbourhood
// (the part inside the mask), read from the mask as it was before. Pixels whose neighbourhood
// is uniform, the inside and the outside of a selection, keep their bytes, so a hard-edged
// shape gains a fringe of partial opacities one pixel wide on each side of its outline.
// Cost: one pass over the mask with a copy of three rows.

#include "image/pixel_view.h"

namespace vistrane::mask {

// False when the row copies cannot be had (nothing changed then).
bool AntiAliasEdges(const image::PixelView& mask);

}  // namespace vistrane::mask
