// The colour-selection members of C_Image: colour matching, MaskFill, MaskGrowMasked,
// MaskAlikePixelsOnMask and the generational flood.

#include <vistrane/image/image.h>

#include <algorithm>
#include <vector>

#include "image/pixel_view.h"
#include "mask/color_match.h"
#include "mask/mask_flood.h"

using vistrane::image::AsConst;
using vistrane::image::ViewOf;

namespace {

// The checks the fills share: an 8-bit mask with a bitmap and a source of its size.
bool CanFill(const C_Image& mask, const C_Image* source) {
    return source != nullptr && mask.HasImage() && source->HasImage() && !mask.IsTrueColor() &&
           mask.SameDimensionsAs(source);
}

}  // namespace

void C_Image::PrepareColorMatch(S_ColorMatchData* data, unsigned char* reference,
                                COLOR_MATCH_MODE mode, int tolerance) {
    vistrane::mask::PrepareColorMatch(data, reference, mode, tolerance);
}

int C_Image::MatchTrueColor(unsigned char* pixel, S_ColorMatchData* data) {
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
    ZeroBitmapBytes();
    mask.Row(seed.y)[seed.x] = value;
    vistrane::mask::SpanFill(mask, from, data, {seed}, value);
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
    if (edge.boundary.empty()) {
        return 1;
    }
    const auto boundaryCount = static_cast<long long>(edge.boundary.size());
    const BYTE fillValue =
        static_cast<BYTE>(std::max<long long>(edge.boundaryOpacitySum / boundaryCount, 1));
    BYTE reference[3] = {0, 0, 0};
    for (int c = 0; c < 3; ++c) {
        reference[c] = static_cast<BYTE>(edge.colorSum[c] / edge.selectedCount);
    }
    S_ColorMatchData data;
    vistrane::mask::PrepareColorMatch(&data, reference, mode, tolerance);
    vistrane::mask::SpanFill(mask, from, data, edge.boundary, fillValue);
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
    GdiFlush();
    vistrane::mask::ExpandGenerations(queue, nSeeds, capacity, ViewOf(*this),
                                      AsConst(ViewOf(*source)), ViewOf(*work), *data, value);
}
