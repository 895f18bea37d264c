#pragma once

// Selection by colour: the flood fills and the colour marking. A candidate is an unselected mask
// pixel (byte 0) whose source colour matches; a fill takes the candidates 4-connected to its
// seeds through other candidates and writes `value` into them. `value` must be non-zero: a
// reached pixel is told from a candidate only by its byte.
//
// Two engines give the same bytes:
// - RunFill, behind MaskFill and MaskGrowMasked: a scanline fill over runs (Heckbert's form,
//   Graphics Gems I, 1990, with Fishkin and Barsky's skip of the parent run, 1985). A run is filled
//   as soon as it is found and kept on a stack until the rows above and below it have been searched
//   for open pixels; the row test (fill_runs.h) finds runs 32 pixels at a time. It reads only the
//   region and its rim: each pixel's colour is tested once from each side the region reaches it
//   on, about two row tests per region pixel. Its memory is a fixed stack taken before the mask
//   is touched (FillStack), at most 2 bytes per pixel; when the stack is full, runs are dropped
//   and found again by rescanning the mask for selected pixels with an open neighbour, so the
//   result never depends on the stack's size.
// - ExpandGenerations, behind MaskExpandColorMatching: the generational flood over a bordered
//   work map and one queue of width x height entries, its generations at the queue's two ends.
//   It tests every pixel once up front. It defines the behaviour; tests hold RunFill to it.

#include <cstddef>
#include <memory>

#include <vistrane/mask/color_match.h>
#include <vistrane/mask/fill_queue.h>
#include <vistrane/platform/geometry.h>

#include "image/pixel_view.h"
#include "mask/fill_runs.h"

namespace vistrane::mask {

// A filled run of row y, left..right inclusive, whose neighbours may still be open. A run
// found from the row y - direction (its parent) skips the parent's parentLeft..parentRight
// there, all filled; direction 0 means no parent and that the run may have open pixels beside
// it in its own row.
struct PendingRun {
    int y;
    int left;
    int right;
    int parentLeft;
    int parentRight;
    int direction;
};

class FillStack {
  public:
    // The capacity for a width x height mask: 2 bytes a pixel, at least 1024 runs.
    static std::size_t CapacityFor(int width, int height);
    // False when the memory cannot be had.
    [[nodiscard]] bool Allocate(std::size_t capacity);

  private:
    friend class RunFiller;
    std::unique_ptr<PendingRun[]> m_Runs;
    std::size_t m_Capacity = 0;
};

// Fills from `seed` (already set to `value` by the caller), or, without a seed, from every
// selected pixel with an open neighbour. Mask and source have the same size; `value` is
// non-zero; `stack` is allocated.
void RunFill(const image::PixelView& mask, const image::ConstPixelView& source, const RowTest& test,
             BYTE value, FillStack& stack, const CPoint* seed);

// The opacity sum and count of the selected pixels with an unselected or outside 4-neighbour,
// and the sum of the colours of all selected pixels.
struct SelectionEdge {
    long long boundaryOpacitySum = 0;
    long long boundaryCount = 0;
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

// Whether the generational flood may run on these arguments without reaching outside them:
// `work` is the mask's size plus a frame of zeros, and each seed points at the same pixel of
// the work map's interior and of the mask.
bool ExpansionFits(const S_TwoPointers* queue, long nSeeds, const image::PixelView& mask,
                   const image::PixelView& work);

// Every mask pixel whose source colour matches becomes matchValue; the others otherValue when
// writeOthers, else stay.
void MarkAlike(const image::PixelView& mask, const image::ConstPixelView& source,
               const S_ColorMatchData& data, BYTE matchValue, BYTE otherValue, bool writeOthers);

}  // namespace vistrane::mask
