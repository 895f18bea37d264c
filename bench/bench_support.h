#pragma once

// What every benchmark shares: the 4096 x 3072 working size, a photograph-like test picture and
// the megapixels-per-second counter.

#include <benchmark/benchmark.h>

#include <vistrane/image/image.h>

namespace vistrane::bench {

constexpr long kWidth = 4096;
constexpr long kHeight = 3072;
constexpr double kPixels = static_cast<double>(kWidth) * kHeight;

// Smooth gradients with a little seeded noise in every pixel of a 24-bit or 8-bit image.
void FillPhotoLike(C_Image& image);

// Reports `pixels` per iteration as "Mpix/s".
void SetPixelRate(benchmark::State& state, double pixels = kPixels);

}  // namespace vistrane::bench
