// C_Image members of rotation and flips; the pixel work is in rotate.cpp.

#include <vistrane/image/image.h>

#include "image/pixel_view.h"
#include "image/progress.h"
#include "image/temporary_image.h"
#include "xform/rotate.h"

using vistrane::image::AsConst;
using vistrane::image::ViewOf;

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kOneOver180 = 0.005555555555555556;

// Rotates `image` through the shears into a temporary made by `make` and takes it over.
template <typename MakeTemporary>
int ShearInto(C_Image& image, double radians, const BYTE* background,
              vistrane::xform::ShearMode mode, MakeTemporary make) {
    vistrane::xform::ShearSizes sizes{};
    if (!image.HasImage() ||
        !vistrane::xform::ComputeShearSizes(static_cast<int>(image.Width()),
                                            static_cast<int>(image.Height()), radians, sizes)) {
        return 0;
    }
    vistrane::image::TemporaryImage temp = make(sizes.width, sizes.height);
    // The first and last shears count their rows, the middle one its columns.
    const long units = image.Height() + sizes.firstWidth + sizes.height;
    const vistrane::image::Progress progress(image, units);
    if (!temp ||
        !vistrane::xform::ShearRotate(AsConst(ViewOf(image)), ViewOf(*temp), radians, sizes,
                                      background, mode, progress.Active() ? &progress : nullptr) ||
        !progress.Report(units)) {
        return 0;
    }
    image.TransformInto(temp.release(), 1);
    return 1;
}

}  // namespace

int C_Image::RotateRight() {
    return CommonRotate(1);
}

int C_Image::RotateLeft() {
    return CommonRotate(0);
}

int C_Image::CommonRotate(int right) {
    if (!HasImage()) {
        return 0;
    }
    GdiFlush();
    auto temp = vistrane::image::NewCloneColors(*this, Height(), Width());
    if (!temp) {
        return 0;
    }
    vistrane::xform::QuarterTurn(AsConst(ViewOf(*this)), ViewOf(*temp), right != 0);
    TransformInto(temp.release(), 1);
    return 1;
}

namespace {

// Brings an angle in degrees to at most 45 either way with flips and quarter turns, which are
// exact, and leaves the rest to `shear`; whole-degree and double turns decompose alike.
template <typename Degrees, typename Shear>
int RotateByDecomposition(C_Image& image, Degrees degrees, Shear shear) {
    Degrees d = degrees < 0 ? degrees + 360 : degrees;
    if (d == 90) {
        return image.RotateRight();
    }
    if (d == 270) {
        return image.RotateLeft();
    }
    if (d >= 180) {
        image.FlipHorizontal();
        image.FlipVertical();
        if (d == 180) {
            return 1;
        }
        d -= 180;
    }
    if (d > 90) {
        if (!image.RotateRight()) {
            return 0;
        }
        d -= 90;
    }
    if (d > 45) {
        if (!image.RotateRight()) {
            return 0;
        }
        d -= 90;
    }
    return shear(d);
}

}  // namespace

int C_Image::Rotate1To359(int degrees) {
    return RotateByDecomposition(*this, degrees, [this](int d) { return InternalRotate(d); });
}

int C_Image::Rotate1To359Double(double degrees) {
    return RotateByDecomposition(
        *this, degrees, [this](double d) { return InternalRotateDouble(kPi * d * -kOneOver180); });
}

int C_Image::InternalRotate(int degrees) {
    return InternalRotateDouble(-degrees * kPi / 180);
}

int C_Image::InternalRotatePaletteImage(int degrees) {
    return InternalRotatePaletteImageDouble(-degrees * kPi / 180);
}

int C_Image::InternalRotateDouble(double radians) {
    if (!CanEditTrueColor()) {
        return InternalRotatePaletteImageDouble(radians);
    }
    GdiFlush();
    if (!IsTrueColor()) {
        return InternalRotateDoubleMask(radians);
    }
    const unsigned long back = GetBackTrueColor();
    const BYTE background[3] = {GetBValue(back), GetGValue(back), GetRValue(back)};
    return ShearInto(
        *this, radians, background, vistrane::xform::ShearMode::Blend,
        [this](long w, long h) { return vistrane::image::NewSameFormat(*this, w, h); });
}

int C_Image::InternalRotateDoubleMask(double radians) {
    if (IsTrueColor() || !CanEditTrueColor()) {
        return 0;
    }
    const BYTE background = GetBackPalInd();
    return ShearInto(
        *this, radians, &background, vistrane::xform::ShearMode::Blend,
        [this](long w, long h) { return vistrane::image::NewSameFormat(*this, w, h); });
}

int C_Image::InternalRotatePaletteImageDouble(double radians) {
    if (!HasImage()) {
        return 0;
    }
    GdiFlush();
    const BYTE background = GetBackPalInd();
    return ShearInto(
        *this, radians, &background, vistrane::xform::ShearMode::Copy,
        [this](long w, long h) { return vistrane::image::NewCloneColors(*this, w, h); });
}

void C_Image::FlipHorizontal() {
    GdiFlush();
    vistrane::xform::FlipHorizontal(ViewOf(*this));
}

void C_Image::FlipVertical() {
    GdiFlush();
    vistrane::xform::FlipVertical(ViewOf(*this));
}
