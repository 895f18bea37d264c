#pragma once

// Quarter turns, flips and the three-shear rotation over pixel views of 1 or 3 bytes a pixel.
//
// The three-shear rotation (horizontal, vertical, horizontal) moves whole rows or columns by a
// real offset, blending neighbours with 12-bit weights, so no pixel is resampled in two
// dimensions at once. The sizes follow the shear extents, not the exact bounding box of the
// turned rectangle.

#include <cstdint>

#include "image/pixel_view.h"
#include "image/progress.h"
#include "xform/xform_kernels.h"

namespace vistrane::xform {

// Quarter turn of src into dst, which is src.height wide and src.width high. Clockwise: new
// (x', y') = old (y', h - 1 - x'); counter-clockwise: new (x', y') = old (w - 1 - y', x').
void QuarterTurn(const image::ConstPixelView& src, const image::PixelView& dst, bool clockwise);

// Mirror in place; the middle column (or row) of an odd size stays.
void FlipHorizontal(const image::PixelView& view);
void FlipVertical(const image::PixelView& view);

// FlipHorizontal with a named kernel, for tests and benchmarks.
void FlipHorizontal(const image::PixelView& view, FlipRowKernel kernel);

// Intermediate and final sizes of the three-shear rotation of a w x h picture by `radians`.
struct ShearSizes {
    double tanHalf;  // |tan(a / 2)|
    double sine;     // |sin(a)|
    int firstWidth;  // W1, the width after the first shear
    int trim;        // D1, rows trimmed at top and bottom after the second shear
    int tallHeight;  // H2, the height after the second shear before trimming
    int height;      // H = H2 - 2 * D1, the final height
    int shift;       // E, the fixed displacement of the third shear
    int width;       // W, the final width
};
// False when a size does not fit an int.
[[nodiscard]] bool ComputeShearSizes(int width, int height, double radians, ShearSizes& sizes);

// How the shears move pixels: blending neighbours (intensities) or copying indices (palettes).
enum class ShearMode { Blend, Copy };

struct ShearKernels {
    ShearRowKernel row;
    ShearPairsKernel pairs;
};

// Rotates src into dst, which must be sizes.width x sizes.height with the same bytes per pixel;
// `background` is one pixel (1 or 3 bytes) for what the rotation uncovers. False when the
// intermediate buffers cannot be had or `progress` says the host cancelled.
[[nodiscard]] bool ShearRotate(const image::ConstPixelView& src, const image::PixelView& dst,
                               double radians, const ShearSizes& sizes, const BYTE* background,
                               ShearMode mode, const image::Progress* progress = nullptr);
// The same with a named row kernel for the two row shears, for tests and benchmarks.
[[nodiscard]] bool ShearRotateWith(const image::ConstPixelView& src, const image::PixelView& dst,
                                   double radians, const ShearSizes& sizes, const BYTE* background,
                                   ShearMode mode, const ShearKernels& kernels,
                                   const image::Progress* progress = nullptr);

}  // namespace vistrane::xform
