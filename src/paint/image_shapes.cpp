// The shape members of C_Image: rectangles, rounded rectangles and ellipses through the drawing
// device, optionally with a soft edge, and the direct rectangle fills.

#include <vistrane/image/image.h>
#include <vistrane/platform/dc.h>

#include <algorithm>

#include "image/pixel_view.h"
#include "paint/rect_fill.h"

namespace {

// The soft edge is the same shape drawn hard into a grey mask, anti-aliased there, and painted
// through it at full strength. The caller draws the hard shape over it afterwards, so only the
// pixels beside the shape keep the blend; on the shape itself the hard paint wins.
void PaintSoftFringe(C_Image& image, int kind, CRect r, PAINT_COLORS color, int penWidth,
                     int filled) {
    C_Image fringe;
    if (!fringe.CreateMask(image.Width(), image.Height())) {
        return;
    }
    fringe.SetForePalInd(255);
    fringe.SetBackPalInd(0);
    fringe.PaintEllipseOrRect(kind, r, PAINT_COLORS_FORE, penWidth, filled, 0);
    if (fringe.MaskAntiAlias() != 0) {
        image.PaintMasked(color, BLENDMODE_NORMAL, 0, 255, &fringe, nullptr);
    }
}

}  // namespace

void C_Image::PaintEllipseOrRect(int kind, CRect r, PAINT_COLORS color, int penWidth, int filled,
                                 int softEdge) {
    if (!HasImage()) {
        return;
    }
    if (softEdge != 0 && CanEditTrueColor()) {
        PaintSoftFringe(*this, kind, r, color, penWidth, filled);
    }
    CDC dc;
    if (!dc.CreateCompatibleDC(nullptr)) {
        return;
    }
    CBitmap* oldBitmap = dc.SelectObject(GetBitmap());
    if (oldBitmap == nullptr) {
        return;
    }
    const COLORREF paint = GetPaintColorColorRef(color);
    CPen pen(PS_SOLID, penWidth, paint);
    CBrush brush;
    CPen* oldPen = dc.SelectObject(&pen);
    CGdiObject* oldBrush = nullptr;
    if (filled != 0 && brush.CreateSolidBrush(paint)) {
        oldBrush = dc.SelectObject(&brush);
    } else {
        oldBrush = dc.SelectStockObject(HOLLOW_BRUSH);
    }
    switch (kind) {
        case 0:
            dc.Rectangle(r.left, r.top, r.right, r.bottom);
            break;
        case 1: {
            const int corner = std::min((r.right - r.left) / 4, (r.bottom - r.top) / 4);
            dc.RoundRect(r.left, r.top, r.right, r.bottom, corner, corner);
            break;
        }
        case 2:
            dc.Ellipse(r.left, r.top, r.right, r.bottom);
            break;
        default:
            break;
    }
    if (oldPen != nullptr) {
        dc.SelectObject(oldPen);
    }
    if (oldBrush != nullptr) {
        dc.SelectObject(static_cast<CBrush*>(oldBrush));
    }
    dc.SelectObject(oldBitmap);
}

void C_Image::PaintRectangle(CRect r, PAINT_COLORS color, int penWidth, int filled, int softEdge) {
    PaintEllipseOrRect(0, r, color, penWidth, filled, softEdge);
}

void C_Image::PaintRoundRect(CRect r, PAINT_COLORS color, int penWidth, int filled, int softEdge) {
    PaintEllipseOrRect(1, r, color, penWidth, filled, softEdge);
}

void C_Image::PaintEllipse(CRect r, PAINT_COLORS color, int penWidth, int filled, int softEdge) {
    PaintEllipseOrRect(2, r, color, penWidth, filled, softEdge);
}

void C_Image::PaintRectNoGDI(PAINT_COLORS color, long x, long y, long width, long height) {
    if (IsTrueColor()) {
        PaintRectNoGDITrue(GetTruePaintColor(color), x, y, width, height);
    } else {
        PaintRectNoGDIPal(GetPalPaintColor(color), x, y, width, height);
    }
}

void C_Image::PaintRectNoGDIPal(unsigned char index, long x, long y, long width, long height) {
    if (!HasImage() || IsTrueColor()) {
        return;
    }
    GdiFlush();
    vistrane::paint::FillRectShiftedIn(vistrane::image::ViewOf(*this), x, y, width, height, &index);
}

void C_Image::PaintRectNoGDITrue(unsigned long color, long x, long y, long width, long height) {
    if (!HasImage() || !IsTrueColor()) {
        return;
    }
    GdiFlush();
    const BYTE pixel[3] = {GetBValue(color), GetGValue(color), GetRValue(color)};
    vistrane::paint::FillRectShiftedIn(vistrane::image::ViewOf(*this), x, y, width, height, pixel);
}
