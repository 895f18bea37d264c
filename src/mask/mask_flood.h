#pragma once

// Selection by colour: the flood fills and the colour marking. A candidate is an unselected mask
// pixel (byte 0) whose source colour matches; a fill takes the candidates 4-connected to its
// seeds through other candidates and writes `value` into them. `value` must be non-zero: a
// reached pixel is told from a candidate only by its byte.
//
// Two engines give the same bytes:
// - SpanFill, behind MaskFill and MaskGrowMasked: a scanline fill (Heckbert's seed-run form,
//   Graphics Gems I, 1990). It tests only the pixels on and next to the region, walks runs along
//   rows, and keeps a stack of run starts; its memory is that stack, a few bytes per row of the
//   region's outline rather than per pixel. Cost: about three colour tests per pixel next to or
//   inside the region.
// - ExpandGenerations, behind MaskExpandColorMatching: the generational flood over a bordered
//   work map and one queue of width x height entries, its generations at the queue's two ends.
//   It tests every pixel once up front. It defines the behaviour; tests hold SpanFill to it.

#include <vector>

#include <vistrane/mask/color_match.h>
#include <vistrane/mask/fill_queue.h>
#include <vistrane/platform/geometry.h>

#include "image/pixel_view.h"

namespace vistrane::mask {

// Fills from the seeds (which must be selected already or be set by the caller): every
// candidate 4-neighbour of a seed starts a run. Mask and source have the same size.
void SpanFill(const image::PixelView& mask, const image::ConstPixelView& source,
              const S_ColorMatchData& data, const std::vector<CPoint>& seeds, BYTE value);

// The selected pixels with an unselected or outside 4-neighbour, their opacity sum, and the sum
// of the colours of all selected pixels.
struct SelectionEdge {
    std::vector<CPoint> boundary;
    long long boundaryOpacitySum = 0;
    long long colorSum[3] = {0, 0, 0};  // blue, green, red
    long long selectedCount = 0;
};
SelectionEdge FindSelectionEdge(const image::ConstPixelView& mask,
                                const image::ConstPixelView& source);

// The generational flood. `work` is (width + 2) x (height + 2) with a zero frame, y = 0 its top
// row; queue entries point into work and mask.
void ExpandGenerations(S_TwoPointers* queue, long nSeeds, long capacity,
                       const image::PixelView& mask, const image::ConstPixelView& source,
                       const image::PixelView& work, const S_ColorMatchData& data, BYTE value);

// Every mask pixel whose source colour matches becomes matchValue; the others otherValue when
// writeOthers, else stay.
void MarkAlike(const image::PixelView& mask, const image::ConstPixelView& source,
               const S_ColorMatchData& data, BYTE matchValue, BYTE otherValue, bool writeOthers);

}  // namespace vistrane::mask
