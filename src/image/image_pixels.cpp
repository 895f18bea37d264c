// C_Image: reading single pixels and filling the whole bitmap.

#include <cstring>

#include <vistrane/image/image.h>

#include "image/pixel_rows.h"
#include "image/pixel_view.h"

namespace {

bool Inside(const C_Image& image, long x, long y) {
    return image.HasImage() && x >= 0 && y >= 0 && x < image.Width() && y < image.Height();
}

}  // namespace

unsigned long C_Image::GetPixelColorRef(long x, long y) const {
    GdiFlush();
    if (!Inside(*this, x, y)) {
        return 0;
    }
    const BYTE* pixel = PixelPtr(x, y);
    if (IsTrueColor()) {
        return RGB(pixel[2], pixel[1], pixel[0]);
    }
    const RGBQUAD& entry = RGBQs()[*pixel];
    return RGB(entry.rgbRed, entry.rgbGreen, entry.rgbBlue);
}

unsigned char C_Image::GetPixelPalInd(long x, long y) const {
    if (!Inside(*this, x, y) || IsTrueColor()) {
        return 0;
    }
    return *PixelPtr(x, y);
}

void C_Image::FillBitmapBytes(unsigned char b) {
    if (!HasImage()) {
        return;
    }
    GdiFlush();
    std::memset(BitmapBytes(), b, NBytesImage());
}

void C_Image::ZeroBitmapBytes() { FillBitmapBytes(0); }

void C_Image::FillWithColorPalette(unsigned char i) { FillBitmapBytes(i); }

void C_Image::FillWithColorRef(unsigned long c) {
    if (!HasImage()) {
        return;
    }
    if (!IsTrueColor()) {
        FillWithColorPalette(static_cast<unsigned char>(m_Palette.GetNearestPaletteIndex(c)));
        return;
    }
    GdiFlush();
    const BYTE pixel[3] = {GetBValue(c), GetGValue(c), GetRValue(c)};
    vistrane::image::FillPixels(vistrane::image::ViewOf(*this), pixel);
}

void C_Image::FillWithPaintColor(PAINT_COLORS c) {
    if (!HasImage()) {
        return;
    }
    if (IsTrueColor()) {
        FillWithColorRef(GetTruePaintColor(c));
    } else {
        FillWithColorPalette(GetPalPaintColor(c));
    }
}
