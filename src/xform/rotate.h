#pragma once

// Quarter turns, flips and the three-shear rotation over pixel views of 1 or 3 bytes a pixel.
//
// The three-shear rotation (horizontal, vertical, horizontal) moves whole rows or columns by a
// real offset, blending neighbours with 12-bit weights, so no pixel is resampled in two
// dimensions at once. The sizes follow the shear extents, not the exact bounding box of the
// turned rectangle.

#include <cstdint>

#include "image/pixel_view.h"

namespace vistrane::xform {

// Quarter turn of src into dst, which is src.height wide and src.width high. Clockwise: new
// (x', y') = old (y', h - 1 - x'); counter-clockwise: new (x', y') = old (w - 1 - y', x').
void QuarterTurn(const image::ConstPixelView& src, const image::PixelView& dst, bool clockwise);

// Mirror in place; the middle column (or row) of an odd size stays.
void FlipHorizontal(const image::PixelView& view);
void FlipVertical(const image::PixelView& view);

// The row kernels of FlipHorizontal: each reverses the order of `count` pixels of 1 or 3 bytes
// in place, touching nothing outside them. FlipRowRef is the rule; FlipRowAvx2 (x86-64 only,
// callable only on a CPU with AVX2) gives the same bytes. BestFlipRow picks the fastest the CPU
// runs, once per process.
void FlipRowRef(BYTE* row, int count, int bytesPerPixel);
void FlipRowAvx2(BYTE* row, int count, int bytesPerPixel);
using FlipRowKernel = void (*)(BYTE* row, int count, int bytesPerPixel);
FlipRowKernel BestFlipRow();
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

// The row kernels of the blending row shears: byte j of `out` becomes
// (in[j] * (4096 - frac) + before * frac + 2048) >> 12, where `before` is in[j - bpp], or
// prev[j] for the first pixel. `bytes` is a whole number of pixels. ShearRowRef is the rule;
// ShearRowAvx2 (x86-64 only, callable only on a CPU with AVX2) gives the same bytes and never
// touches anything outside the row. BestShearRow picks the fastest the CPU runs, once per
// process.
void ShearRowRef(BYTE* out, const BYTE* in, int bytes, int bpp, const BYTE* prev, int frac);
void ShearRowAvx2(BYTE* out, const BYTE* in, int bytes, int bpp, const BYTE* prev, int frac);
using ShearRowKernel = void (*)(BYTE* out, const BYTE* in, int bytes, int bpp, const BYTE* prev,
                                int frac);
ShearRowKernel BestShearRow();

// The row kernel of the column shear, which runs across a strip of columns one source row at
// a time: byte j of `out` becomes (in[j] * (4096 - f) + above[j] * f + 2048) >> 12, with the
// byte's own fraction packed as weights[j] = f << 16 | (4096 - f). ShearPairsRef is the rule;
// ShearPairsAvx2 gives the same bytes, as above.
void ShearPairsRef(BYTE* out, const BYTE* in, const BYTE* above, const std::int32_t* weights,
                   int bytes);
void ShearPairsAvx2(BYTE* out, const BYTE* in, const BYTE* above, const std::int32_t* weights,
                    int bytes);
using ShearPairsKernel = void (*)(BYTE* out, const BYTE* in, const BYTE* above,
                                  const std::int32_t* weights, int bytes);
ShearPairsKernel BestShearPairs();

struct ShearKernels {
    ShearRowKernel row;
    ShearPairsKernel pairs;
};

// Rotates src into dst, which must be sizes.width x sizes.height with the same bytes per pixel;
// `background` is one pixel (1 or 3 bytes) for what the rotation uncovers. False when the
// intermediate buffers cannot be had.
[[nodiscard]] bool ShearRotate(const image::ConstPixelView& src, const image::PixelView& dst,
                               double radians, const ShearSizes& sizes, const BYTE* background,
                               ShearMode mode);
// The same with a named row kernel for the two row shears, for tests and benchmarks.
[[nodiscard]] bool ShearRotateWith(const image::ConstPixelView& src, const image::PixelView& dst,
                                   double radians, const ShearSizes& sizes, const BYTE* background,
                                   ShearMode mode, const ShearKernels& kernels);

}  // namespace vistrane::xform
