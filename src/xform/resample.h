#pragma once

// Resampling of pixel views: nearest neighbour for every format, and the four filtered workers
// for views whose bytes are intensities (1 or 3 bytes a pixel, every byte filtered on its own).
//
// Filtered rules, all integer:
// - An enlarged axis is interpolated linearly. The two reducing workers use 1/64 of a sample
//   with the sample point shifted back by 32/64 after scaling; the enlarging worker uses 1/100
//   of a pixel measured from the pixel centre and truncates each of its four terms on its own.
// - A reduced axis of n samples onto m is box-averaged: source sample i belongs to destination
//   sample map[i] = (floor(m * 15 / 16) + i * m) / n, and each destination sample is the
//   truncated mean of the samples that belong to it.
//
// The workers return false only when a working buffer cannot be had; the destination is then
// partly written. Source and destination must not overlap.

#include <cstdint>

#include "image/pixel_view.h"
#include "image/progress.h"
#include "xform/xform_kernels.h"

namespace vistrane::xform {

// Which worker the rule chooses for a w x h source and a W x H destination.
enum class ResampleWorker { Expand, ReduceX, ReduceY, ReduceXY };
ResampleWorker ChooseResampleWorker(int srcWidth, int srcHeight, int dstWidth, int dstHeight);

// Entry i (0..n) of the reduction map of n source samples onto m < n destination samples.
// The bias of fifteen sixteenths of a destination sample decides which destination sample
// gets the extra source sample at each boundary, and keeps map[n] = m.
inline int ReductionMapEntry(int i, int n, int m) {
    return static_cast<int>((static_cast<long long>(m) * 15 / 16 + static_cast<long long>(i) * m) /
                            n);
}

// Enlarging both axes (or keeping them): bilinear in 1/100 of a pixel.
[[nodiscard]] bool ResampleExpand(const image::ConstPixelView& src, const image::PixelView& dst,
                                  const image::Progress* progress = nullptr);
// The same with a named row kernel, for tests and benchmarks.
[[nodiscard]] bool ResampleExpandWith(const image::ConstPixelView& src, const image::PixelView& dst,
                                      ExpandRowKernel kernel,
                                      const image::Progress* progress = nullptr);
// Narrower, same height or taller: 1/64 interpolation down the columns, box across.
[[nodiscard]] bool ResampleReduceX(const image::ConstPixelView& src, const image::PixelView& dst,
                                   const image::Progress* progress = nullptr);
// Same width or wider, shorter: 1/64 interpolation along the rows, box down.
[[nodiscard]] bool ResampleReduceY(const image::ConstPixelView& src, const image::PixelView& dst,
                                   const image::Progress* progress = nullptr);
// Narrower and shorter: box on both axes, (sum / rows) / columns.
[[nodiscard]] bool ResampleReduceXY(const image::ConstPixelView& src, const image::PixelView& dst,
                                    const image::Progress* progress = nullptr);
// The worker the rule chooses.
[[nodiscard]] bool Resample(const image::ConstPixelView& src, const image::PixelView& dst,
                            const image::Progress* progress = nullptr);

// Nearest neighbour over whole views with the same bytes per pixel. Rows are counted from the
// bottom, as the bitmaps store them: destination row r (from the bottom) takes source row
// r * srcHeight / dstHeight (from the bottom); column c takes c * srcWidth / dstWidth.
// False when the column table cannot be had.
[[nodiscard]] bool ResizeNearest(const image::ConstPixelView& src, const image::PixelView& dst);

}  // namespace vistrane::xform
