// C_Image members of cropping and borders: both copy through the image blits into a temporary
// of the new size and take it over.

#include <vistrane/image/image.h>
#include <vistrane/platform/dc.h>

#include "image/temporary_image.h"

int C_Image::CropTo(CRect rect) {
    if (!HasImage()) {
        return 0;
    }
    CRect whole;
    Rectangle(&whole);
    CRect kept;
    if (!kept.IntersectRect(rect, whole)) {
        return 0;
    }
    auto temp = vistrane::image::NewCloneColors(*this, kept.Width(), kept.Height());
    if (!temp ||
        !temp->BitBlt(0, 0, kept.Width(), kept.Height(), this, kept.left, kept.top, SRCCOPY)) {
        return 0;
    }
    TransformInto(temp.release(), 1);
    return 1;
}

int C_Image::AddBorders(long left, long top, long right, long bottom) {
    if (!HasImage()) {
        return 0;
    }
    const long long width = static_cast<long long>(Width()) + left + right;
    const long long height = static_cast<long long>(Height()) + top + bottom;
    if (width < 1 || height < 1 || width > 0x7FFFFFFF || height > 0x7FFFFFFF) {
        return 0;
    }
    auto temp =
        vistrane::image::NewCloneColors(*this, static_cast<long>(width), static_cast<long>(height));
    if (!temp) {
        return 0;
    }
    temp->FillWithPaintColor(PAINT_COLORS_BACK);
    // DibBlt clips, so negative margins simply cut the picture.
    temp->DibBlt(left, top, Width(), Height(), this, 0, 0, 0);
    TransformInto(temp.release(), 1);
    return 1;
}
