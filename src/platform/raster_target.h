#pragma once

// The pixel side of the drawing device: a bitmap section seen as rows from the top, colours
// turned into the target's pixel bytes, and spans written through a mix mode. Shapes, lines and
// fills reduce to spans; blits have their own row loop in dc_blit.cpp.

#include <array>
#include <cstddef>

#include <vistrane/platform/types.h>

#include "platform/device_context.h"
#include "platform/gdi_objects.h"

namespace vistrane::platform {

// A bitmap section of 8, 24 or 32 bits with rows from the top.
struct RasterTarget {
    BYTE* topRow = nullptr;
    std::ptrdiff_t strideBytes = 0;  // negative: sections are stored bottom-up
    int width = 0;
    int height = 0;
    int bytesPerPixel = 0;  // 1, 3 or 4
    const RGBQUAD* colors = nullptr;
    int nColors = 0;

    BYTE* Row(int y) const { return topRow + strideBytes * y; }
    bool Valid() const { return topRow != nullptr; }
};

// The target of the bitmap selected into the device; invalid without one or for a depth below 8.
RasterTarget TargetOf(const DibSection* dib);
RasterTarget TargetOf(const DeviceContext& dc);

// Pixel bytes of a colour on the target (1, 3 or 4 bytes; the fourth byte of a 32-bit pixel is
// 0 and never written). `palette` resolves PALETTEINDEX values on deep targets.
struct PixelBytes {
    std::array<BYTE, 3> bytes{};
};
PixelBytes ColorToPixel(const RasterTarget& target, COLORREF color, const Palette* palette);

// The nearest of the first `count` entries by squared RGB distance, the lowest index on ties.
BYTE NearestColorIndex(const RGBQUAD* colors, int count, BYTE red, BYTE green, BYTE blue);

// Writes pixels x0..x1 - 1 of row y (device coordinates, clipped here) through mix mode rop2.
void MixSpan(const RasterTarget& target, int y, int x0, int x1, const PixelBytes& pixel, int rop2);

// Copies the colour into pixels x0..x1 - 1 of row y, clipped.
void CopySpan(const RasterTarget& target, int y, int x0, int x1, const PixelBytes& pixel);

}  // namespace vistrane::platform
