#include "image/pixel_rows.h"

#include <algorithm>
#include <cstring>

namespace vistrane::image {

void FillPixels(const PixelView& view, const BYTE* pixel) {
    if (view.Empty()) {
        return;
    }
    // Fill the first row pixel by pixel, then copy it: a 24-bit fill runs at memcpy speed.
    BYTE* first = view.Row(0);
    for (int x = 0; x < view.width; ++x) {
        std::memcpy(first + static_cast<std::ptrdiff_t>(x) * view.bytesPerPixel, pixel,
                    static_cast<size_t>(view.bytesPerPixel));
    }
    for (int y = 1; y < view.height; ++y) {
        std::memcpy(view.Row(y), first, static_cast<size_t>(view.RowBytes()));
    }
}

void CopyRowBytes(const PixelView& from, const PixelView& to) {
    for (int y = 0; y < to.height; ++y) {
        std::memcpy(to.Row(y), from.Row(y), static_cast<size_t>(to.RowBytes()));
    }
}

void ClampIndices(const PixelView& view, BYTE maxIndex) {
    for (int y = 0; y < view.height; ++y) {
        BYTE* row = view.Row(y);
        for (int x = 0; x < view.width; ++x) {
            row[x] = std::min(row[x], maxIndex);
        }
    }
}

}  // namespace vistrane::image
