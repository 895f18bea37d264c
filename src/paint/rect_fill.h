#pragma once

// The direct rectangle fill of the shape tools: pixel bytes written without the drawing device.

#include <vistrane/platform/types.h>

#include "image/pixel_view.h"

namespace vistrane::paint {

// Fills height rows of width pixels from (x, y) with the first view.bytesPerPixel bytes of
// `pixel`. Width or height -1 means the whole image. x and y are clamped into the image and the
// extent is then cut at the right and bottom edges; a negative x or y moves to 0 without
// shortening the extent, so the rectangle shifts into the image rather than being clipped.
void FillRectShiftedIn(const image::PixelView& view, long x, long y, long width, long height,
                       const BYTE* pixel);

}  // namespace vistrane::paint
