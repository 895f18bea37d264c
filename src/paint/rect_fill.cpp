#include "paint/rect_fill.h"

#include <algorithm>

namespace vistrane::paint {

void FillRectShiftedIn(const image::PixelView& view, long x, long y, long width, long height,
                       const BYTE* pixel) {
    if (view.Empty()) {
        return;
    }
    if (width == -1 || height == -1) {
        width = view.width;
        height = view.height;
    }
    x = std::clamp<long>(x, 0, view.width - 1);
    y = std::clamp<long>(y, 0, view.height - 1);
    width = std::min<long>(width, view.width - x);
    height = std::min<long>(height, view.height - y);
    for (long row = y; row < y + height; ++row) {
        BYTE* p = view.Pixel(static_cast<int>(x), static_cast<int>(row));
        if (view.bytesPerPixel == 1) {
            std::fill_n(p, std::max<long>(width, 0), pixel[0]);
            continue;
        }
        for (long i = 0; i < width; ++i, p += 3) {
            p[0] = pixel[0];
            p[1] = pixel[1];
            p[2] = pixel[2];
        }
    }
}

}  // namespace vistrane::paint
