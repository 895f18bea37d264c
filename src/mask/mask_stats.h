#pragma once

// Per-pixel passes over a mask view (width x height bytes, padding untouched): thresholds,
// statistics, opacity rescaling and searches. Each is one pass, rows from the top.

#include <vistrane/mask/mask_features.h>
#include <vistrane/platform/geometry.h>

#include "image/pixel_view.h"

namespace vistrane::mask {

// byte <= t becomes 0, else 255; returns how many became 255.
long Threshold(const image::PixelView& mask, BYTE t);
// byte < t becomes 0; the others become 255 when `set`, else stay; returns how many passed.
long ThresholdAtLeast(const image::PixelView& mask, BYTE t, bool set);

// Fills f as MaskExtractFeatures describes: dimensions always, the rest only when something is
// selected.
void ExtractFeatures(const image::ConstPixelView& mask, S_MaskFeatures* f);

// v = (b - minIn) * outRange / inRange + minOut on every non-zero byte (truncated, clamped to
// 0..255); returns the number of non-zero bytes afterwards.
long ScaleOpacity(const image::PixelView& mask, const S_MaskFeatures& f, int maxOpacity,
                  int minOpacity);
// absolute: b = value mod 256; else b = min(255, (b * value + 50) / 100), on non-zero bytes.
void ChangeOpacity(const image::PixelView& mask, int value, bool absolute);

// Memory order: the bottom row first. True with *pt set when found.
bool FindFirstInMemoryOrder(const image::ConstPixelView& mask, BYTE value, CPoint* pt);
// Bounds (right and bottom exclusive) of the non-zero bytes; false when there are none.
bool SelectedBounds(const image::ConstPixelView& mask, CRect* rect);

}  // namespace vistrane::mask
