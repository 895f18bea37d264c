#pragma once

// Row loops shared by the image core: whole-view fills, row copies and index clamps.

#include "image/pixel_view.h"

namespace vistrane::image {

// Writes the view's bytesPerPixel bytes of `pixel` into every pixel; row padding is untouched.
void FillPixels(const PixelView& view, const BYTE* pixel);

// Copies the first to.RowBytes() bytes of each of to's rows from the same row of `from`, which
// must be at least as wide in bytes and as tall.
void CopyRowBytes(const PixelView& from, const PixelView& to);

// Every index above maxIndex becomes maxIndex (1-byte views).
void ClampIndices(const PixelView& view, BYTE maxIndex);

}  // namespace vistrane::image
