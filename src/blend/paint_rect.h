#pragma once

// Painting one colour over a rectangle in a blend mode through an optional mask: the bulk form
// of "kernel, then merge step" for every pixel, behind C_Image::PaintMasked.

#include "blend/blend_kernels.h"
#include "blend/blend_select.h"
#include "image/pixel_view.h"

namespace vistrane::blend {

// Blends `colour` (3 bytes blue, green, red, or 1 byte) in `mode` (already mapped by the fill
// selector for `kind`) over every pixel of `target`, laid over with opacity * mask / 255 (the
// mask view, when not empty, has the target's size). Pixels of effective opacity 0 are not
// touched and draw no dissolve number. False, with the target untouched, when the row buffers
// cannot be had.
bool PaintRect(const image::PixelView& target, const image::PixelView& mask, const BYTE* colour,
               BYTE opacity, int mode, ImageKind kind, BlendContext& context);

}  // namespace vistrane::blend
