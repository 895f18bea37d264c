// C_Image: colour table, logical palette and paint colours.

#include <algorithm>
#include <cstring>

#include <vistrane/blend/gray_palette.h>
#include <vistrane/image/image.h>
#include <vistrane/platform/dc.h>

#include "image/pixel_rows.h"
#include "image/pixel_view.h"

namespace {

COLORREF ColorRefOf(const RGBQUAD& entry) {
    return RGB(entry.rgbRed, entry.rgbGreen, entry.rgbBlue);
}

}  // namespace

void C_Image::SetNColors(unsigned long n) {
    if (!HasImage() || IsTrueColor() || n > 256) {
        return;
    }
    BitmapInfoHeader()->biClrUsed = static_cast<DWORD>(n);
    BitmapInfoHeader()->biClrImportant = static_cast<DWORD>(n);
}

void C_Image::SetRGBQs(const RGBQUAD* colors, unsigned long n, int clampPixels) {
    GdiFlush();
    if (!HasImage() || IsTrueColor() || n > 256 || (colors == nullptr && n != 0)) {
        return;
    }
    const unsigned long oldCount = NColors();
    SetNColors(n);
    if (n != 0) {
        std::memmove(RGBQs(), colors, n * sizeof(RGBQUAD));
    }
    if (clampPixels != 0 && oldCount > n) {
        vistrane::image::ClampIndices(vistrane::image::ViewOf(*this),
                                      static_cast<BYTE>(n == 0 ? 0 : n - 1));
    }
    RenewPalette();
}

void C_Image::SetRGBQs(C_Image* src) {
    if (src != nullptr && src->HasImage()) {
        SetRGBQs(src->RGBQs(), src->NColors(), 1);
    }
}

void C_Image::CopyRGBQs(RGBQUAD* dst, unsigned long n) const {
    GdiFlush();
    if (!HasImage() || dst == nullptr) {
        return;
    }
    const unsigned long count = std::min(n == 0 ? NColors() : n, 256ul);
    std::memcpy(dst, RGBQs(), count * sizeof(RGBQUAD));
}

void C_Image::FillGrayColorsIntoRGBQs(RGBQUAD* dst) {
    std::memcpy(dst, glb_GrayPalette, sizeof(glb_GrayPalette));
}

void C_Image::FillGrayColors() {
    if (!HasImage() || IsTrueColor()) {
        return;
    }
    GdiFlush();
    FillGrayColorsIntoRGBQs(RGBQs());
    RenewPalette();
}

int C_Image::HasGrayPalette() const {
    return HasImage() && NColors() == 256 &&
                   std::memcmp(RGBQs(), glb_GrayPalette, sizeof(glb_GrayPalette)) == 0
               ? 1
               : 0;
}

void C_Image::RenewPalette() {
    FreePalette();
    if (CopyPalette(&m_Palette)) {
        UpdateBmpPalette();
        CheckColorInds();
    }
}

int C_Image::CopyPalette(CPalette* dst) {
    GdiFlush();
    if (!HasImage() || IsTrueColor() || dst == nullptr) {
        return 0;
    }
    return m_Helper.CreatePalette(dst, RGBQs(), static_cast<DWORD>(NColors()));
}

void C_Image::UpdateBmpPalette() {
    CopyColorsToBitmap(GetBitmap());
}

void C_Image::CopyColorsToBitmap(CBitmap* bitmap) {
    if (!HasImage() || IsTrueColor() || bitmap == nullptr) {
        return;
    }
    GdiFlush();
    // The section keeps its own colour table, which a device sets while the bitmap is selected.
    CDC dc;
    if (!dc.CreateCompatibleDC(nullptr)) {
        return;
    }
    CBitmap* oldBitmap = dc.SelectObject(bitmap);
    if (oldBitmap == nullptr) {
        return;
    }
    SetDIBColorTable(dc.GetSafeHdc(), 0, static_cast<UINT>(std::min(NColors(), 256ul)), RGBQs());
    dc.SelectObject(oldBitmap);
}

CPalette* C_Image::GetPalette() {
    return HasImage() && !IsTrueColor() ? &m_Palette : nullptr;
}

CPalette* C_Image::SelectPalette(CDC* dc, int forceBackground) {
    CPalette* palette = GetPalette();
    if (dc == nullptr || palette == nullptr) {
        return nullptr;
    }
    return dc->SelectPalette(palette, forceBackground);
}

void C_Image::RestorePalette(CDC* dc, CPalette* old, int forceBackground) {
    if (dc != nullptr && old != nullptr) {
        dc->SelectPalette(old, forceBackground);
    }
}

unsigned char C_Image::CheckColorInd(unsigned char i) const {
    return i < NColors() ? i : 0;
}

unsigned char C_Image::SetForePalInd(unsigned char i) {
    return m_PaintColors.index[PAINT_COLORS_FORE] = CheckColorInd(i);
}

unsigned char C_Image::SetBackPalInd(unsigned char i) {
    return m_PaintColors.index[PAINT_COLORS_BACK] = CheckColorInd(i);
}

unsigned char C_Image::SetTransPalInd(unsigned char i) {
    return m_PaintColors.index[PAINT_COLORS_TRANSP] = CheckColorInd(i);
}

unsigned char C_Image::GetForePalInd() {
    return SetForePalInd(m_PaintColors.index[PAINT_COLORS_FORE]);
}

unsigned char C_Image::GetBackPalInd() {
    return SetBackPalInd(m_PaintColors.index[PAINT_COLORS_BACK]);
}

unsigned char C_Image::GetTransPalInd() {
    return SetTransPalInd(m_PaintColors.index[PAINT_COLORS_TRANSP]);
}

void C_Image::CheckColorInds() {
    GetForePalInd();
    GetBackPalInd();
    GetTransPalInd();
}

unsigned long C_Image::PaletteEntryColorRef(unsigned long i) const {
    const unsigned long count = NColors();
    if (count == 0) {
        return 0;
    }
    return ColorRefOf(RGBQs()[i % std::min(count, 256ul)]);
}

unsigned long C_Image::GetForeColorRef() const {
    return IsTrueColor() ? m_PaintColors.colorRef[PAINT_COLORS_FORE]
                         : PaletteEntryColorRef(m_PaintColors.index[PAINT_COLORS_FORE]);
}

unsigned long C_Image::GetBackColorRef() const {
    return IsTrueColor() ? m_PaintColors.colorRef[PAINT_COLORS_BACK]
                         : PaletteEntryColorRef(m_PaintColors.index[PAINT_COLORS_BACK]);
}

unsigned long C_Image::GetTranspColorRef() const {
    return IsTrueColor() ? m_PaintColors.colorRef[PAINT_COLORS_TRANSP]
                         : PaletteEntryColorRef(m_PaintColors.index[PAINT_COLORS_TRANSP]);
}

unsigned char C_Image::GetPalPaintColor(PAINT_COLORS c) {
    switch (c) {
        case PAINT_COLORS_FORE:
            return GetForePalInd();
        case PAINT_COLORS_BACK:
            return GetBackPalInd();
        default:
            return GetTransPalInd();
    }
}

unsigned long C_Image::GetTruePaintColor(PAINT_COLORS c) const {
    switch (c) {
        case PAINT_COLORS_FORE:
            return GetForeColorRef();
        case PAINT_COLORS_BACK:
            return GetBackColorRef();
        default:
            return GetTranspColorRef();
    }
}

unsigned long C_Image::GetPaintColorColorRef(PAINT_COLORS c) {
    return IsTrueColor() ? GetTruePaintColor(c) : PaletteEntryColorRef(GetPalPaintColor(c));
}

unsigned long C_Image::GetNearestColorRef(unsigned long c) {
    if (IsTrueColor()) {
        return c;
    }
    return PALETTEINDEX(static_cast<WORD>(m_Palette.GetNearestPaletteIndex(c)));
}

void C_Image::CopyPaintColors(C_Image* src) {
    if (src == nullptr || src == this) {
        return;
    }
    const bool thisTrue = IsTrueColor() != 0;
    const bool srcTrue = src->IsTrueColor() != 0;
    // A palette image keeps its own indices when it takes a 24-bit image's colours; a 24-bit
    // image takes a palette image's colours as the entries its indices name.
    const PaintColorSet from = src->m_PaintColors;
    for (int c = 0; c < 3; ++c) {
        m_PaintColors.colorRef[c] =
            thisTrue && !srcTrue ? src->PaletteEntryColorRef(from.index[c]) : from.colorRef[c];
        if (thisTrue || !srcTrue) {
            m_PaintColors.index[c] = from.index[c];
        }
    }
}
