// C_Image's brush-tip members: each checks that the tip is an 8-bit image of at least n x n
// and hands the work to brush_tips.cpp.

#include <vistrane/image/image.h>

#include "image/pixel_view.h"
#include "paint/brush_tips.h"

#include <algorithm>

namespace {

// The tip's view when it is an 8-bit image that holds n x n bytes, else an empty one.
vistrane::image::PixelView TipView(const C_Image& tip, int n) {
    if (!tip.HasImage() || tip.BitCount() != 8 || n < 1 || tip.Width() < n || tip.Height() < n) {
        return {};
    }
    return vistrane::image::ViewOf(tip);
}

}  // namespace

void C_Image::PaintMaskRect(long x, long y, long width, long height, int value) {
    const vistrane::image::PixelView tip = TipView(*this, 1);
    if (tip.Empty() || width <= 0 || height <= 0) {
        return;
    }
    GdiFlush();
    vistrane::paint::FillTipRect(tip, static_cast<int>(x), static_cast<int>(y),
                                 static_cast<int>(width), static_cast<int>(height),
                                 static_cast<BYTE>(value & 0xFF));
}

void C_Image::PaintSquareBrushMask(int n) {
    PaintMaskRect(0, 0, n, n, 255);
}

void C_Image::PaintHorizontalBrushMask(int n) {
    if (TipView(*this, n).Empty()) {
        return;
    }
    const int thickness = 2 * (n / 4) + 1;
    PaintMaskRect(0, 0, n, n, 0);
    PaintMaskRect(0, (n - thickness) / 2, n, thickness, 255);
}

void C_Image::PaintVerticalBrushMask(int n) {
    if (TipView(*this, n).Empty()) {
        return;
    }
    const int thickness = 2 * (n / 4) + 1;
    PaintMaskRect(0, 0, n, n, 0);
    PaintMaskRect((n - thickness) / 2, 0, thickness, n, 255);
}

void C_Image::PaintSlashBrushMask(int n, int direction) {
    const vistrane::image::PixelView tip = TipView(*this, n);
    if (tip.Empty()) {
        return;
    }
    PaintMaskRect(0, 0, n, n, 0);
    vistrane::paint::SlashBand(tip, n, direction);
}

void C_Image::PaintBackSlashBrushMask(int n) {
    PaintSlashBrushMask(n, 0);
}

void C_Image::PaintForeSlashBrushMask(int n) {
    PaintSlashBrushMask(n, 1);
}

void C_Image::RandomBrushMaskDim(int n, const unsigned char* pairs) {
    const vistrane::image::PixelView tip = TipView(*this, n);
    if (tip.Empty() || pairs == nullptr) {
        return;
    }
    GdiFlush();
    vistrane::paint::DimAtRandom(tip, n, pairs, m_Helper);
}

void C_Image::GetBrushLUT(unsigned char* table) {
    std::copy(vistrane::paint::BrushCurve(), vistrane::paint::BrushCurve() + 256, table);
}

void C_Image::SetBrushLUT(const unsigned char* table) {
    std::copy(table, table + 256, vistrane::paint::BrushCurve());
}

void C_Image::GetWetLUT(unsigned char* table) {
    std::copy(vistrane::paint::WetCurve(), vistrane::paint::WetCurve() + 256, table);
}

void C_Image::SetWetLUT(const unsigned char* table) {
    std::copy(table, table + 256, vistrane::paint::WetCurve());
}
