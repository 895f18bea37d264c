// C_Image's neighbourhood-filter members: checks, the bordered copy and the blend choice here,
// the pixel work in neighbourhood_filter.cpp.

#include <vistrane/image/image.h>

#include "blend/blend_dispatch.h"
#include "blend/blend_select.h"
#include "filter/neighbourhood_filter.h"
#include "image/pixel_view.h"
#include "image/progress.h"

#include <algorithm>
#include <new>

namespace {

vistrane::filter::Plane PlaneAt(const vistrane::image::PixelView& view, long x, long y) {
    return {view.Pixel(static_cast<int>(x), static_cast<int>(y)), view.strideBytes};
}

bool Inside(const C_Image& image, long x, long y, long width, long height) {
    return x >= 0 && y >= 0 && width <= image.Width() - x && height <= image.Height() - y;
}

}  // namespace

int C_Image::FilterImage(BLENDMODES mode, unsigned char opacity, int blendOption, long x, long y,
                         long width, long height, C_Image* mask, int* kernel, int offset,
                         int divisor, FILTER_TYPE type, C_Image* buffer, int bufferX, int bufferY) {
    if (!HasImage() || !CanEditTrueColor()) {
        return 0;
    }
    InitImageFilterBlend(mode, blendOption);
    if (width <= 0 || height <= 0) {
        return 1;
    }
    if (kernel == nullptr || !Inside(*this, x, y, width, height) ||
        !vistrane::image::MaskArgumentFits(*this, mask)) {
        return 0;
    }
    // Without a caller's buffer the filter reads a band of bordered rows that moves down the
    // rectangle, which gives the bytes of a full bordered copy without making one.
    if (buffer != nullptr && (bufferX < 3 || bufferY < 3 ||
                              !Inside(*buffer, bufferX - 3, bufferY - 3, width + 6, height + 6))) {
        return 0;
    }
    GdiFlush();
    const int bpp = IsTrueColor() ? 3 : 1;
    const vistrane::filter::Plane target = PlaneAt(vistrane::image::ViewOf(*this), x, y);
    const vistrane::filter::Plane maskPlane =
        mask != nullptr ? PlaneAt(vistrane::image::ViewOf(*mask), x, y) : vistrane::filter::Plane{};
    vistrane::filter::FilterSettings settings{kernel, divisor, offset, type, opacity, bpp};
    const vistrane::blend::ImageKind kind = IsTrueColor()
                                                ? vistrane::blend::ImageKind::kTrueColor
                                                : vistrane::blend::ImageKind::kGreyEditable;
    const int blendMode = vistrane::blend::FilterSelectorMode(mode, kind);
    settings.blendTakesFilterColour = blendMode == BLENDMODE_NORMAL;
    const vistrane::blend::RowBlender blender = vistrane::blend::FastRowBlender(blendMode, bpp);
    vistrane::blend::BlendContext context{m_BlendModeOption, &m_Helper};
    const auto merge = vistrane::blend::MergeRowFor(bpp, vistrane::cpu::Best());
    // With a host watching, the rectangle and the carried filter colour are kept so that a
    // cancel can put them back.
    const vistrane::image::Progress progress(*this, height);
    settings.progress = progress.Active() ? &progress : nullptr;
    vistrane::image::RowsSnapshot before;
    BYTE colourBefore[3];
    std::copy_n(m_BlendSource, 3, colourBefore);
    bool done = false;
    try {
        if (progress.Active() &&
            !before.Take(vistrane::image::SubView(vistrane::image::ViewOf(*this),
                                                  CRect(x, y, x + width, y + height)))) {
            return 0;
        }
        if (buffer == nullptr) {
            done = vistrane::filter::FilterRectBanded(target, maskPlane, static_cast<int>(width),
                                                      static_cast<int>(height), settings, blender,
                                                      merge, context, m_BlendSource);
        } else {
            done = vistrane::filter::FilterRect(
                target, PlaneAt(vistrane::image::ViewOf(*buffer), bufferX, bufferY), maskPlane,
                static_cast<int>(width), static_cast<int>(height), settings, blender, merge,
                context, m_BlendSource);
        }
    } catch (const std::bad_alloc&) {
        return 0;
    }
    if (!done || !progress.Report(height)) {
        before.Restore();
        std::copy_n(colourBefore, 3, m_BlendSource);
        return 0;
    }
    return 1;
}

int C_Image::PrepareFilterBuffer(long borderX, long borderY, long x, long y, long width,
                                 long height, C_Image* source) {
    if (source == nullptr || borderX < 0 || borderY < 0) {
        return 0;
    }
    CSize size(static_cast<int>(width + 2 * borderX), static_cast<int>(height + 2 * borderY));
    if (CreateCloneColors(source, &size) == 0) {
        return 0;
    }
    RefreshFilterBuffer(borderX, borderY, x, y, width, height, source);
    return 1;
}

void C_Image::RefreshFilterBuffer(long borderX, long borderY, long x, long y, long width,
                                  long height, C_Image* source) {
    if (source == nullptr || !HasImage() || BitCount() != source->BitCount() || width <= 0 ||
        height <= 0 || !Inside(*source, x, y, width, height) ||
        !Inside(*this, 0, 0, width + 2 * borderX, height + 2 * borderY)) {
        return;
    }
    GdiFlush();
    vistrane::filter::RefreshBorderedCopy(
        PlaneAt(vistrane::image::ViewOf(*this), 0, 0),
        PlaneAt(vistrane::image::ViewOf(*source), 0, 0), static_cast<int>(borderX),
        static_cast<int>(borderY), static_cast<int>(x), static_cast<int>(y),
        static_cast<int>(width), static_cast<int>(height), IsTrueColor() ? 3 : 1);
}
