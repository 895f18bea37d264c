#pragma once

// Whole-image palette operations and statistics over pixel views, behind C_Image's palette and
// statistics members. A mask view, when not empty, has the image's size; its zero bytes exclude
// pixels from the statistics.

#include "filter/color_rows.h"
#include "image/pixel_view.h"

#include <vistrane/filter/filter_types.h>

namespace vistrane::filter {

// Every byte b of an 8-bit view becomes table[b].
void ReIndexPixels(const image::PixelView& view, const BYTE* table);
// usage (256 entries) is zeroed, then counts the pixels of each index; returns the indices used.
unsigned long CountUsage(const image::PixelView& view, unsigned long* usage);
// Distinct colours of a 24-bit view through a 2^24-bit set allocated and zeroed per call (one
// memory touch per pixel). false when the set cannot be allocated.
[[nodiscard]] bool CountDistinctColors(const image::PixelView& view, unsigned long* count);
ColorSums SumColors(const image::PixelView& view, const image::PixelView& mask);
// Fills the counts, the grey average of the three tables and the per-channel figures.
void FillHistogram(const image::PixelView& view, const image::PixelView& mask, S_Histogram* h);

// Which entries DelPalColors deletes: marked[i] = 1 for a deleted entry. Modes 0 and 4 scan
// from the last entry down and stop once nColors - 2 are marked, so two always stay.
void MarkDeletions(const S_DelPalData& data, const unsigned long* usage, int nColors, int foreIndex,
                   int backIndex, int transIndex, BYTE* marked);

}  // namespace vistrane::filter
