#pragma once

// The neighbourhood filter behind C_Image::FilterImage, PrepareFilterBuffer and
// RefreshFilterBuffer, as free functions over strided rows.
//
// A plane is given by its first logical row (y = 0, the top of the picture) and a signed stride
// in bytes to the next row down; a bottom-up bitmap has a negative stride. Pixels are 1 byte
// (grey or palette index) or 3 bytes (blue, green, red).

#include "blend/blend_kernels.h"

#include <vistrane/platform/types.h>

#include <cstddef>

namespace vistrane::image {
class Progress;
}

namespace vistrane::filter {

struct Plane {
    BYTE* first = nullptr;
    std::ptrdiff_t stride = 0;

    BYTE* Row(int y) const { return first + stride * y; }
};

// Filter types known to FilterImage. Other values compute the sums but leave the filter colour
// as it was.
constexpr int kFilterPerChannel = 0;
constexpr int kFilterGray = 1;
constexpr int kFilterBrightness = 2;

struct FilterSettings {
    const int* kernel = nullptr;  // 7 x 7 weights, row-major, (3, 3) on the target
    int divisor = 1;              // not 0; the sum is divided truncating toward zero
    int offset = 0;
    int type = kFilterPerChannel;
    BYTE opacity = 255;
    int bytesPerPixel = 3;
    // The blend kernel's result is the filter colour itself (normal mode), so at full opacity
    // without a mask the filtered colours may be written straight into the target.
    bool blendTakesFilterColour = false;
    // Told about every band of rows done; null reports nothing.
    const image::Progress* progress = nullptr;
};

// Fills a bordered copy: buffer pixel (borderX + i, borderY + j) = source pixel (x + i, y + j)
// for the width x height rectangle, and the border repeats the rectangle's own edge pixels
// (never pixels outside the rectangle).
void RefreshBorderedCopy(Plane buffer, Plane source, int borderX, int borderY, int x, int y,
                         int width, int height, int bytesPerPixel);

// Filters width x height pixels of `image` starting at its row pointer `target` in place.
// `buffer` points at the bordered copy's pixel that holds the first target pixel, with at
// least 3 pixels of border around the rectangle. `mask` (may have a null first row) is walked in
// step with the target. `filterColour` is the image's carried filter colour (3 bytes), read by
// the brightness type and by unknown types and left holding the last pixel's colour.
// `blender`, `merge` and `context` come from the image's blend selector for this operation.
// False when the settings' progress says the host cancelled; rows done by then stay done.
bool FilterRect(Plane target, Plane buffer, Plane mask, int width, int height,
                const FilterSettings& settings, const blend::RowBlender& blender,
                void (*merge)(BYTE*, const BYTE*, const BYTE*, int), blend::BlendContext& context,
                BYTE* filterColour);

// FilterRect without a caller's buffer: the same bytes as filtering from a full bordered copy
// of the rectangle, from a band of a few dozen bordered rows that moves down the rectangle
// (each band keeps the original rows above it that the previous band has overwritten). Costs a
// small allocation instead of a copy of the whole rectangle.
bool FilterRectBanded(Plane target, Plane mask, int width, int height,
                      const FilterSettings& settings, const blend::RowBlender& blender,
                      void (*merge)(BYTE*, const BYTE*, const BYTE*, int),
                      blend::BlendContext& context, BYTE* filterColour);

}  // namespace vistrane::filter
