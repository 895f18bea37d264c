#pragma once

// The row test of the fills: which of up to 32 consecutive pixels of a row are open, that is
// unselected (mask byte 0) with a colour that matches. The fill engine walks runs of open
// pixels with it, so each pixel's colour is tested where the fill reaches it, 32 at a time.
//
// Kernels, chosen once per fill by ChooseRowTest:
// - OpenBitsRef: MatchColor through ColorAt on every pixel, any mode, any source. It defines
//   the behaviour; the others are held to it by tests.
// - OpenBitsIndexed: 1-byte sources, each index's verdict taken once from its colour-table
//   entry (256 MatchColor calls per fill).
// - OpenBitsRgb24: RGB mode on 3-byte sources, the three table reads inline.
// - OpenBitsRgb24Avx2 (fill_runs_avx2.cpp, AVX2 and BMI2): the same test on 32 pixels as three
//   32-byte range compares. It needs every channel's accepted entries to form one range, which
//   PrepareColorMatch always gives; ChooseRowTest checks it and keeps the scalar kernel if not.
//   Fewer than 32 pixels go to OpenBitsRgb24.

#include "image/pixel_view.h"
#include "mask/fill_kernels.h"
#include "platform/cpu_features.h"

namespace vistrane::mask {

enum class RowKernels { Reference, Scalar, Best };

// Prepares the test of `data` on `source`. Reference uses OpenBitsRef throughout; Scalar the
// plain specialised kernels, on every processor; Best adds the vector kernel of cpu::Best().
RowTest ChooseRowTest(const S_ColorMatchData& data, const image::ConstPixelView& source,
                      RowKernels kernels = RowKernels::Best);

}  // namespace vistrane::mask
