#pragma once

// The direct blit between two images' pixel views, and the clipping it shares with callers.

#include <vistrane/platform/geometry.h>
#include <vistrane/platform/types.h>

#include "image/pixel_view.h"

namespace vistrane::image {

// What the transparent flag compares against: the source's transparent index (1-byte source)
// or its blue, green and red (3-byte source).
struct BlitTransparency {
    bool enabled = false;
    BYTE index = 0;
    RGBTRIPLE color{};
};

// The destination rectangle (x, y, width, height) clipped to the destination, the source from
// (sourceX, sourceY) to its far edges clipped to the source, the two overlaid: returns the area
// in destination coordinates; the source area is it moved by (sourceX - x, sourceY - y).
CRect ClipBlit(const PixelView& destination, const ConstPixelView& source, long x, long y,
               long width, long height, long sourceX, long sourceY);

// Copies `area` of the destination from the source moved by `offset`. Rows are walked from the
// top down. Equal pixel sizes copy bytes (or skip transparent ones); a 1-byte source into a
// 3-byte destination goes through the source's colour table; a 3-byte source into a 1-byte
// destination copies nothing. Cost: one pass over the area, a memcpy per row when opaque.
void DibBltRows(const PixelView& destination, const ConstPixelView& source, const CRect& area,
                CPoint offset, const BlitTransparency& transparency);

}  // namespace vistrane::image
