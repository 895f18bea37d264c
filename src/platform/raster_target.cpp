#include "platform/raster_target.h"

#include <algorithm>
#include <limits>

namespace vistrane::platform {

RasterTarget TargetOf(const DibSection* dib) {
    if (dib == nullptr) {
        return {};
    }
    const WORD bits = dib->header.biBitCount;
    if (bits != 8 && bits != 24 && bits != 32) {
        return {};
    }
    RasterTarget target;
    target.width = dib->header.biWidth;
    target.height = dib->header.biHeight;
    target.strideBytes = -static_cast<std::ptrdiff_t>(dib->strideBytes);
    target.topRow = dib->bits + dib->strideBytes * static_cast<std::size_t>(target.height - 1);
    target.bytesPerPixel = bits / 8;
    if (bits == 8) {
        target.colors = dib->colors.data();
        const DWORD used = dib->header.biClrUsed;
        target.nColors = used == 0 || used > 256 ? 256 : static_cast<int>(used);
    }
    return target;
}

RasterTarget TargetOf(const DeviceContext& dc) {
    return TargetOf(AsDibSection(dc.bitmap->GetSafeHandle()));
}

BYTE NearestColorIndex(const RGBQUAD* colors, int count, BYTE red, BYTE green, BYTE blue) {
    int nearest = 0;
    int nearestDistance = std::numeric_limits<int>::max();
    for (int i = 0; i < count; ++i) {
        const int dr = colors[i].rgbRed - red;
        const int dg = colors[i].rgbGreen - green;
        const int db = colors[i].rgbBlue - blue;
        const int distance = dr * dr + dg * dg + db * db;
        if (distance < nearestDistance) {
            nearest = i;
            nearestDistance = distance;
        }
    }
    return static_cast<BYTE>(nearest);
}

PixelBytes ColorToPixel(const RasterTarget& target, COLORREF color, const Palette* palette) {
    PixelBytes pixel;
    const bool isIndex = (color >> 24) == 0x01;
    if (target.bytesPerPixel == 1) {
        pixel.bytes[0] = isIndex
                             ? static_cast<BYTE>(std::min<DWORD>(color & 0xFFFF, 255))
                             : NearestColorIndex(target.colors, target.nColors, GetRValue(color),
                                                 GetGValue(color), GetBValue(color));
        return pixel;
    }
    if (isIndex) {
        const DWORD index = color & 0xFFFF;
        if (palette == nullptr || index >= palette->entries.size()) {
            return pixel;
        }
        const PALETTEENTRY& e = palette->entries[index];
        pixel.bytes = {e.peBlue, e.peGreen, e.peRed};
        return pixel;
    }
    pixel.bytes = {GetBValue(color), GetGValue(color), GetRValue(color)};
    return pixel;
}

namespace {

BYTE MixByte(BYTE destination, BYTE pen, int rop2) {
    switch (rop2) {
        case R2_BLACK:
            return 0;
        case R2_NOTCOPYPEN:
            return static_cast<BYTE>(~pen);
        case R2_NOT:
            return static_cast<BYTE>(~destination);
        case R2_XORPEN:
            return static_cast<BYTE>(destination ^ pen);
        case R2_MASKPEN:
            return static_cast<BYTE>(destination & pen);
        case R2_NOP:
            return destination;
        case R2_MERGEPEN:
            return static_cast<BYTE>(destination | pen);
        case R2_WHITE:
            return 0xFF;
        default:
            return pen;
    }
}

bool ClipSpan(const RasterTarget& target, int y, int& x0, int& x1) {
    if (!target.Valid() || y < 0 || y >= target.height) {
        return false;
    }
    x0 = std::max(x0, 0);
    x1 = std::min(x1, target.width);
    return x0 < x1;
}

}  // namespace

void MixSpan(const RasterTarget& target, int y, int x0, int x1, const PixelBytes& pixel, int rop2) {
    if (rop2 == R2_COPYPEN) {
        CopySpan(target, y, x0, x1, pixel);
        return;
    }
    if (!ClipSpan(target, y, x0, x1)) {
        return;
    }
    const int colorBytes = std::min(target.bytesPerPixel, 3);
    BYTE* p = target.Row(y) + static_cast<std::ptrdiff_t>(x0) * target.bytesPerPixel;
    for (int x = x0; x < x1; ++x, p += target.bytesPerPixel) {
        for (int c = 0; c < colorBytes; ++c) {
            p[c] = MixByte(p[c], pixel.bytes[static_cast<std::size_t>(c)], rop2);
        }
    }
}

void CopySpan(const RasterTarget& target, int y, int x0, int x1, const PixelBytes& pixel) {
    if (!ClipSpan(target, y, x0, x1)) {
        return;
    }
    BYTE* p = target.Row(y) + static_cast<std::ptrdiff_t>(x0) * target.bytesPerPixel;
    if (target.bytesPerPixel == 1) {
        std::fill(p, p + (x1 - x0), pixel.bytes[0]);
        return;
    }
    for (int x = x0; x < x1; ++x, p += target.bytesPerPixel) {
        p[0] = pixel.bytes[0];
        p[1] = pixel.bytes[1];
        p[2] = pixel.bytes[2];
    }
}

}  // namespace vistrane::platform
