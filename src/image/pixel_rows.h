#pragma once

// Row loops shared by the image core: whole-view fills and index clamps.

#include "image/pixel_view.h"

namespace vistrane::image {

// Writes the view's bytesPerPixel bytes of `pixel` into every pixel; row padding is untouched.
void FillPixels(const PixelView& view, const BYTE* pixel);

// Every index above maxIndex becomes maxIndex (1-byte views).
void ClampIndices(const PixelView& view, BYTE maxIndex);

}  // namespace vistrane::image
