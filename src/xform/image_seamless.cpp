// C_Image member of the seamless pattern; the cross-fade is in seamless.cpp.

#include <vistrane/blend/image_luts.h>
#include <vistrane/image/image.h>

#include "image/pixel_view.h"
#include "xform/seamless.h"

int C_Image::SeamlessPattern(int percent) {
    if (!HasImage() || !CanEditTrueColor() || glb_MultiplyLUT == nullptr) {
        return 0;
    }
    const long w = Width();
    const long h = Height();
    int bandWidth = 0;
    int bandHeight = 0;
    if (!vistrane::xform::SeamlessBands(static_cast<int>(w), static_cast<int>(h), percent,
                                        bandWidth, bandHeight)) {
        return 0;
    }
    GdiFlush();
    vistrane::xform::SeamlessCrossFade(vistrane::image::ViewOf(*this), bandWidth, bandHeight,
                                       *glb_MultiplyLUT);
    return CropTo(CRect(0, 0, w - bandWidth, h - bandHeight));
}
