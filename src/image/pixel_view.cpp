#include "image/pixel_view.h"

#include <algorithm>

namespace vistrane::image {

PixelView ViewOf(const C_Image& image) {
    if (!image.HasImage()) {
        return {};
    }
    const long height = image.Height();
    const long rowBytes = image.NBytesScan();
    const bool trueColor = image.IsTrueColor() != 0;
    // The top row is the last in memory.
    return {image.BitmapBytes() + rowBytes * (height - 1),
            -static_cast<std::ptrdiff_t>(rowBytes),
            static_cast<int>(image.Width()),
            static_cast<int>(height),
            trueColor ? 3 : 1,
            trueColor ? nullptr : image.RGBQs(),
            trueColor ? 0 : static_cast<int>(std::min(image.NColors(), 256ul))};
}

PixelView ViewOf(const C_SimpleImage& buffer) {
    if (!buffer.HasImage()) {
        return {};
    }
    const long rowBytes = buffer.NBytesScan();
    return {buffer.Bits() + rowBytes * (buffer.Height() - 1),
            -static_cast<std::ptrdiff_t>(rowBytes),
            static_cast<int>(buffer.Width()),
            static_cast<int>(buffer.Height()),
            buffer.PixSize(),
            nullptr,
            0};
}

bool MaskArgumentFits(const C_Image& image, const C_Image* mask) {
    return mask == nullptr ||
           (mask->HasImage() && mask->BitCount() == 8 && image.SameDimensionsAs(mask));
}

PixelView MaskArgumentView(const C_Image* mask) {
    return mask != nullptr ? ViewOf(*mask) : PixelView{};
}

PixelView SubView(const PixelView& view, const CRect& r) {
    CRect clipped;
    if (view.Empty() || !clipped.IntersectRect(r, CRect(0, 0, view.width, view.height))) {
        return {};
    }
    PixelView sub = view;
    sub.firstRow = view.Pixel(clipped.left, clipped.top);
    sub.width = clipped.Width();
    sub.height = clipped.Height();
    return sub;
}

}  // namespace vistrane::image
