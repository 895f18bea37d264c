// MaskRect and MaskOval: a mask's rectangle or ellipse filled through a drawing device, so that
// masks follow the same pixel rules as everything else the device draws.

#include <vistrane/image/image.h>
#include <vistrane/platform/dc.h>

#include "image/pixel_view.h"
#include "mask/mask_antialias.h"

int C_Image::MaskRect(CRect r, unsigned char value) {
    if (!HasImage()) {
        return 0;
    }
    CDC dc;
    if (!dc.CreateCompatibleDC(nullptr)) {
        return 0;
    }
    CBitmap* old = dc.SelectObject(GetBitmap());
    if (old == nullptr) {
        return 0;
    }
    // The grey table maps the grey (value, value, value) to index value.
    dc.FillSolidRect(&r, RGB(value, value, value));
    dc.SelectObject(old);
    return 1;
}

int C_Image::MaskOval(CRect r, unsigned char value) {
    if (!HasImage()) {
        return 0;
    }
    CDC dc;
    if (!dc.CreateCompatibleDC(nullptr)) {
        return 0;
    }
    CBitmap* old = dc.SelectObject(GetBitmap());
    if (old == nullptr) {
        return 0;
    }
    CPen pen(PS_SOLID, 1, RGB(value, value, value));
    CBrush brush(RGB(value, value, value));
    CPen* oldPen = dc.SelectObject(&pen);
    CBrush* oldBrush = dc.SelectObject(&brush);
    const int result = oldPen != nullptr && oldBrush != nullptr ? dc.Ellipse(&r) : 0;
    if (oldPen != nullptr) {
        dc.SelectObject(oldPen);
    }
    if (oldBrush != nullptr) {
        dc.SelectObject(oldBrush);
    }
    dc.SelectObject(old);
    return result;
}

int C_Image::MaskAntiAlias() {
    if (!HasImage() || !IsMask()) {
        return 0;
    }
    GdiFlush();
    return vistrane::mask::AntiAliasEdges(vistrane::image::ViewOf(*this)) ? 1 : 0;
}
