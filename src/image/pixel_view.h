#pragma once

// Non-owning views of pixel rows, the common currency of the subsystems' free functions.
//
// `firstRow` is row y = 0, the top of the picture; `strideBytes` steps from a row to the one
// below it. Images store rows bottom-up, so their stride is minus the row length. Row(y) is the
// only row arithmetic in the code base.

#include <cassert>
#include <cstddef>

#include <vistrane/image/image.h>
#include <vistrane/image/simple_image.h>
#include <vistrane/platform/types.h>

namespace vistrane::image {

template <typename Byte>
struct BasicPixelView {
    Byte* firstRow = nullptr;
    std::ptrdiff_t strideBytes = 0;
    int width = 0;
    int height = 0;
    int bytesPerPixel = 1;
    const RGBQUAD* colors = nullptr;  // the colour table of an 8-bit image, else null
    int nColors = 0;

    Byte* Row(int y) const {
        assert(y >= 0 && y < height);
        return firstRow + strideBytes * y;
    }
    Byte* Pixel(int x, int y) const {
        assert(x >= 0 && x < width);
        return Row(y) + static_cast<std::ptrdiff_t>(x) * bytesPerPixel;
    }
    // Bytes of pixel data in a row, without padding.
    int RowBytes() const { return width * bytesPerPixel; }
    bool Empty() const { return firstRow == nullptr || width <= 0 || height <= 0; }
};

using PixelView = BasicPixelView<BYTE>;
using ConstPixelView = BasicPixelView<const BYTE>;

inline ConstPixelView AsConst(const PixelView& v) {
    return {v.firstRow, v.strideBytes, v.width, v.height, v.bytesPerPixel, v.colors, v.nColors};
}

// A view of the whole image; empty when it has no bitmap.
PixelView ViewOf(const C_Image& image);
PixelView ViewOf(const C_SimpleImage& buffer);

// The one rule for a selection-mask argument, shared by every member that takes one: no mask, or
// an 8-bit image of `image`'s size. A member given any other mask refuses it and changes nothing:
// it returns 0, or simply returns when it has no result.
bool MaskArgumentFits(const C_Image& image, const C_Image* mask);

// The pixels of a mask argument that fits; for no mask, an empty view (every pixel fully selected).
PixelView MaskArgumentView(const C_Image* mask);

// The part of a view inside r (clipped to the view); empty when they do not overlap.
PixelView SubView(const PixelView& view, const CRect& r);

}  // namespace vistrane::image
