// The colour-selection members of C_Image: colour matching, MaskFill, MaskGrowMasked,
// MaskAlikePixelsOnMask and the generational flood.

#include <vistrane/image/image.h>

#include <algorithm>

#include "image/pixel_view.h"
#include "mask/color_match.h"
#include "mask/fill_runs.h"
#include "mask/mask_flood.h"

using vistrane::image::AsConst;
using vistrane::image::ViewOf;
using vistrane::mask::FillStack;

namespace {

// The checks the fills share: an 8-bit mask with a bitmap and a source of its size.
bool CanFill(const C_Image& mask, const C_Image* source) {
    return source != nullptr && mask.HasImage() && source->HasImage() && !mask.IsTrueColor() &&
           mask.SameDimensionsAs(source);
}

}  // namespace

void C_Image::PrepareColorMatch(S_ColorMatchData* data, unsigned char* reference,
                                COLOR_MATCH_MODE mode, int tolerance) {
    if (data == nullptr || reference == nullptr) {
        return;
    }
    vistrane::mask::PrepareColorMatch(data, reference, mode, tolerance);
}

int C_Image::MatchTrueColor(unsigned char* pixel, S_ColorMatchData* data) {
    if (pixel == nullptr || data == nullptr) {
        return 0;
    }
    return vistrane::mask::MatchColor(pixel, *data) ? 1 : 0;
}

int C_Image::MaskFill(C_Image* source, CPoint seed, COLOR_MATCH_MODE mode, int tolerance,
                      unsigned char value) {
    if (!CanFill(*this, source) || seed.x < 0 || seed.y < 0 || seed.x >= Width() ||
        seed.y >= Height()) {
        return 0;
    }
    GdiFlush();
    const vistrane::image::PixelView mask = ViewOf(*this);
    const vistrane::image::ConstPixelView from = AsConst(ViewOf(*source));
    S_ColorMatchData data;
    vistrane::mask::PrepareColorMatch(&data, vistrane::mask::ColorAt(from, seed.x, seed.y), mode,
                                      tolerance);
    const vistrane::mask::RowTest test = vistrane::mask::ChooseRowTest(data, from);
    vistrane::mask::FillStack stack;
    if (!stack.Allocate(FillStack::CapacityFor(mask.width, mask.height))) {
        return 0;
    }
    ZeroBitmapBytes();
    mask.Row(seed.y)[seed.x] = value;
    if (value != 0) {
        vistrane::mask::RunFill(mask, from, test, value, stack, &seed);
    }
    return 1;
}

int C_Image::MaskGrowMasked(C_Image* source, COLOR_MATCH_MODE mode, int tolerance) {
    if (!CanFill(*this, source)) {
        return 0;
    }
    GdiFlush();
    const vistrane::image::PixelView mask = ViewOf(*this);
    const vistrane::image::ConstPixelView from = AsConst(ViewOf(*source));
    const vistrane::mask::SelectionEdge edge =
        vistrane::mask::FindSelectionEdge(AsConst(mask), from);
    if (edge.boundaryCount == 0) {
        return 1;
    }
    const BYTE fillValue =
        static_cast<BYTE>(std::max<long long>(edge.boundaryOpacitySum / edge.boundaryCount, 1));
    BYTE reference[3] = {0, 0, 0};
    for (int c = 0; c < 3; ++c) {
        reference[c] = static_cast<BYTE>(edge.colorSum[c] / edge.selectedCount);
    }
    S_ColorMatchData data;
    vistrane::mask::PrepareColorMatch(&data, reference, mode, tolerance);
    const vistrane::mask::RowTest test = vistrane::mask::ChooseRowTest(data, from);
    vistrane::mask::FillStack stack;
    if (!stack.Allocate(FillStack::CapacityFor(mask.width, mask.height))) {
        return 0;
    }
    vistrane::mask::RunFill(mask, from, test, fillValue, stack, nullptr);
    return 1;
}

void C_Image::MaskAlikePixelsOnMask(C_Image* mask, unsigned long colour, unsigned char matchValue,
                                    unsigned char otherValue, int writeOthers, int tolerance,
                                    COLOR_MATCH_MODE mode) {
    if (mask == nullptr || !HasImage() || !CanFill(*mask, this)) {
        return;
    }
    GdiFlush();
    const BYTE reference[3] = {GetBValue(colour), GetGValue(colour), GetRValue(colour)};
    S_ColorMatchData data;
    vistrane::mask::PrepareColorMatch(&data, reference, mode, tolerance);
    vistrane::mask::MarkAlike(ViewOf(*mask), AsConst(ViewOf(*this)), data, matchValue, otherValue,
                              writeOthers != 0);
}

void C_Image::MaskExpandColorMatching(S_TwoPointers* queue, long nSeeds, long capacity,
                                      C_Image* source, C_SimpleImage* work, S_ColorMatchData* data,
                                      unsigned char value) {
    if (queue == nullptr || work == nullptr || data == nullptr || !CanFill(*this, source) ||
        !work->HasImage() || nSeeds < 0 || capacity < static_cast<long>(Width()) * Height() ||
        nSeeds > capacity) {
        return;
    }
    GdiFlush();
    const vistrane::image::PixelView mask = ViewOf(*this);
    const vistrane::image::PixelView workView = ViewOf(*work);
    if (!vistrane::mask::ExpansionFits(queue, nSeeds, mask, workView)) {
        return;
    }
    vistrane::mask::ExpandGenerations(queue, nSeeds, capacity, mask, AsConst(ViewOf(*source)),
                                      workView, *data, value);
}
