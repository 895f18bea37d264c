// The per-pixel mask members of C_Image: thresholds, statistics, opacity and searches.

#include <vistrane/image/image.h>

#include "image/pixel_view.h"
#include "mask/mask_stats.h"

using vistrane::image::AsConst;
using vistrane::image::ViewOf;

long C_Image::ThresholdMask(unsigned char t) {
    if (!HasImage() || !IsMask()) {
        return 0;
    }
    GdiFlush();
    return vistrane::mask::Threshold(ViewOf(*this), t);
}

long C_Image::ThresholdMaskGreaterOrEqual(unsigned char t, int set) {
    if (!HasImage() || !IsMask()) {
        return 0;
    }
    GdiFlush();
    return vistrane::mask::ThresholdAtLeast(ViewOf(*this), t, set != 0);
}

int C_Image::FindSelPoint(unsigned char value, CPoint* pt) {
    if (!HasImage() || IsTrueColor() || pt == nullptr) {
        return 0;
    }
    GdiFlush();
    return vistrane::mask::FindFirstInMemoryOrder(AsConst(ViewOf(*this)), value, pt) ? 1 : 0;
}

int C_Image::FindMinMaxSelPoints(unsigned char /*value*/, CRect* rect) {
    if (!HasImage() || IsTrueColor() || rect == nullptr) {
        return 0;
    }
    GdiFlush();
    return vistrane::mask::SelectedBounds(AsConst(ViewOf(*this)), rect) ? 1 : 0;
}

void C_Image::MaskExtractFeatures(S_MaskFeatures* f) {
    if (f == nullptr) {
        return;
    }
    GdiFlush();
    vistrane::mask::ExtractFeatures(AsConst(ViewOf(*this)), f);
}

long C_Image::MaskScaleOpacity(int maxOpacity, int minOpacity) {
    if (!HasImage() || !IsMask()) {
        return 0;
    }
    S_MaskFeatures features{};
    MaskExtractFeatures(&features);
    if (features.m_NSelected < 1) {
        return 0;
    }
    return vistrane::mask::ScaleOpacity(ViewOf(*this), features, maxOpacity, minOpacity);
}

void C_Image::ChangeMaskOpacity(int value, int absolute) {
    if (!HasImage() || !IsMask()) {
        return;
    }
    GdiFlush();
    vistrane::mask::ChangeOpacity(ViewOf(*this), value, absolute != 0);
}
