// The C_Image member of the four-corner free transform; the pixel work is in free_xform.cpp.

#include <algorithm>

#include <vistrane/image/image.h>

#include "image/pixel_view.h"
#include "image/temporary_image.h"
#include "xform/free_xform.h"

using vistrane::image::AsConst;
using vistrane::image::ViewOf;

namespace {

constexpr LONG kCornerLimit = 1 << 30;

// A mask temporary of width x height, null when it cannot be made.
vistrane::image::TemporaryImage NewMask(long width, long height) {
    vistrane::image::TemporaryImage temp = vistrane::image::NewTemporary();
    if (!temp || !temp->CreateMask(width, height)) {
        return nullptr;
    }
    return temp;
}

}  // namespace

FREEXFORM_RESULTS C_Image::MaskFreeXForm(CPoint topLeft, CPoint topRight, CPoint bottomRight,
                                         CPoint bottomLeft, C_Image* sourceMask, C_Image* destImage,
                                         C_Image* sourceImage, int nearest, CRect* sourceRect) {
    if (sourceMask == nullptr || !sourceMask->HasImage() || sourceMask->IsTrueColor() ||
        (sourceImage != nullptr && (!sourceImage->HasImage() || destImage == nullptr ||
                                    destImage == sourceImage || destImage == this))) {
        return FREEXFORM_NOTHING;
    }
    CRect rect;
    if (sourceRect != nullptr) {
        rect = *sourceRect;
    } else if (!sourceMask->FindMinMaxSelPoints(255, &rect)) {
        return FREEXFORM_NOSELECTION;
    }
    CRect bounds;
    sourceMask->Rectangle(&bounds);
    if (sourceImage != nullptr) {
        CRect imageBounds;
        sourceImage->Rectangle(&imageBounds);
        bounds.IntersectRect(bounds, imageBounds);
    }
    if (!rect.IntersectRect(rect, bounds)) {
        return FREEXFORM_NOTHING;
    }
    if (topLeft == bottomRight || topRight == bottomLeft) {
        return FREEXFORM_NOTHING;
    }
    const CPoint corners[4] = {topLeft, topRight, bottomRight, bottomLeft};
    // The inside test is exact within +-2^30, and box sizes then fit a LONG.
    for (const CPoint& c : corners) {
        if (c.x < -kCornerLimit || c.x > kCornerLimit || c.y < -kCornerLimit ||
            c.y > kCornerLimit) {
            return FREEXFORM_NOTHING;
        }
    }
    CRect box(topLeft.x, topLeft.y, topLeft.x, topLeft.y);
    for (const CPoint& c : corners) {
        box.left = std::min(box.left, c.x);
        box.top = std::min(box.top, c.y);
        box.right = std::max(box.right, c.x);
        box.bottom = std::max(box.bottom, c.y);
    }
    if (box.Width() == 0 || box.Height() == 0) {
        return FREEXFORM_NOTHING;
    }
    GdiFlush();
    vistrane::image::TemporaryImage whole;
    if (sourceImage == nullptr) {
        whole = NewMask(sourceMask->Width(), sourceMask->Height());
        if (!whole) {
            return FREEXFORM_NOMEMORY;
        }
    }
    vistrane::image::TemporaryImage mask = NewMask(box.Width(), box.Height());
    vistrane::image::TemporaryImage image;
    if (sourceImage != nullptr) {
        image = vistrane::image::NewCloneColors(*sourceImage, box.Width(), box.Height());
    }
    if (!mask || (sourceImage != nullptr && !image)) {
        return FREEXFORM_NOMEMORY;
    }
    vistrane::xform::FreeXFormSource source{AsConst(ViewOf(*sourceMask)), {}, rect};
    vistrane::xform::FreeXFormTarget target{ViewOf(*mask), {}};
    if (sourceImage != nullptr) {
        source.image = AsConst(ViewOf(*sourceImage));
        target.image = ViewOf(*image);
    }
    const CPoint relative[4] = {topLeft - box.TopLeft(), topRight - box.TopLeft(),
                                bottomRight - box.TopLeft(), bottomLeft - box.TopLeft()};
    // The host watches through this mask's callback; a cancel abandons the temporaries.
    const vistrane::image::Progress progress(*this, box.Height());
    if (!vistrane::xform::FreeXForm(source, target, relative, nearest != 0,
                                    progress.Active() ? &progress : nullptr)) {
        return FREEXFORM_NOTHING;
    }
    if (sourceImage == nullptr) {
        whole->DibBlt(box.left, box.top, box.Width(), box.Height(), mask.get(), 0, 0, 0);
        TransformInto(whole.release(), 1);
    } else {
        TransformInto(mask.release(), 1);
        destImage->TransformInto(image.release(), 1);
    }
    return FREEXFORM_OK;
}
