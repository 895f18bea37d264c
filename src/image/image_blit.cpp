// The blit members of C_Image: device blits through two memory devices, and the direct blit.

#include <vistrane/image/image.h>
#include <vistrane/platform/dc.h>

#include "image/dib_blit.h"
#include "image/pixel_view.h"

namespace {

// Two memory devices with a source and a destination bitmap selected, restored and deleted on
// leaving.
class BlitDevices {
  public:
    BlitDevices(C_Image* destination, C_Image* source) {
        if (!m_Source.CreateCompatibleDC(nullptr) || !m_Destination.CreateCompatibleDC(nullptr)) {
            return;
        }
        m_OldSource = m_Source.SelectObject(source->GetBitmap());
        m_OldDestination = m_Destination.SelectObject(destination->GetBitmap());
    }
    ~BlitDevices() {
        if (m_OldSource != nullptr) {
            m_Source.SelectObject(m_OldSource);
        }
        if (m_OldDestination != nullptr) {
            m_Destination.SelectObject(m_OldDestination);
        }
    }
    BlitDevices(const BlitDevices&) = delete;
    BlitDevices& operator=(const BlitDevices&) = delete;

    bool Ready() const { return m_OldSource != nullptr && m_OldDestination != nullptr; }
    CDC& Source() { return m_Source; }
    CDC& Destination() { return m_Destination; }

  private:
    CDC m_Source;
    CDC m_Destination;
    CBitmap* m_OldSource = nullptr;
    CBitmap* m_OldDestination = nullptr;
};

int DeviceBlit(CDC& destination, CDC& source, long x, long y, long width, long height, long sourceX,
               long sourceY, long sourceWidth, long sourceHeight, DWORD rop, int stretchMode,
               bool stretching) {
    if (!stretching) {
        return destination.BitBlt(static_cast<int>(x), static_cast<int>(y), static_cast<int>(width),
                                  static_cast<int>(height), &source, static_cast<int>(sourceX),
                                  static_cast<int>(sourceY), rop);
    }
    destination.SetStretchBltMode(stretchMode);
    return destination.StretchBlt(static_cast<int>(x), static_cast<int>(y), static_cast<int>(width),
                                  static_cast<int>(height), &source, static_cast<int>(sourceX),
                                  static_cast<int>(sourceY), static_cast<int>(sourceWidth),
                                  static_cast<int>(sourceHeight), rop);
}

}  // namespace

int C_Image::CommonBlt(long x, long y, long width, long height, C_Image* source, long sourceX,
                       long sourceY, long sourceWidth, long sourceHeight, DWORD rop,
                       int stretching) {
    if (source == nullptr || !HasImage() || !source->HasImage()) {
        return 0;
    }
    BlitDevices devices(this, source);
    if (!devices.Ready()) {
        return 0;
    }
    if (IsTrueColor()) {
        return DeviceBlit(devices.Destination(), devices.Source(), x, y, width, height, sourceX,
                          sourceY, sourceWidth, sourceHeight, rop, COLORONCOLOR, stretching != 0);
    }
    // The destination's palette in both devices, so that indices are not remapped.
    CPalette* oldSource = devices.Source().SelectPalette(GetPalette(), 1);
    CPalette* oldDestination = devices.Destination().SelectPalette(GetPalette(), 1);
    int result = 0;
    if (oldSource != nullptr && oldDestination != nullptr) {
        result = DeviceBlit(devices.Destination(), devices.Source(), x, y, width, height, sourceX,
                            sourceY, sourceWidth, sourceHeight, rop, COLORONCOLOR, stretching != 0);
    }
    if (oldSource != nullptr) {
        devices.Source().SelectPalette(oldSource, 1);
    }
    if (oldDestination != nullptr) {
        devices.Destination().SelectPalette(oldDestination, 1);
    }
    return result;
}

int C_Image::BitBlt(long x, long y, long width, long height, C_Image* source, long sourceX,
                    long sourceY, DWORD rop) {
    return CommonBlt(x, y, width, height, source, sourceX, sourceY, 0, 0, rop, 0);
}

int C_Image::StretchBlt(long x, long y, long width, long height, C_Image* source, long sourceX,
                        long sourceY, long sourceWidth, long sourceHeight, DWORD rop) {
    return CommonBlt(x, y, width, height, source, sourceX, sourceY, sourceWidth, sourceHeight, rop,
                     1);
}

int C_Image::BltMask(long x, long y, long width, long height, C_Image* source, long sourceX,
                     long sourceY, DWORD rop) {
    if (source == nullptr || !HasImage() || !source->HasImage()) {
        return 0;
    }
    BlitDevices devices(this, source);
    if (!devices.Ready()) {
        return 0;
    }
    return DeviceBlit(devices.Destination(), devices.Source(), x, y, width, height, sourceX,
                      sourceY, 0, 0, rop, BLACKONWHITE, false);
}

int C_Image::StretchMask(long x, long y, long width, long height, C_Image* source, long sourceX,
                         long sourceY, long sourceWidth, long sourceHeight, DWORD rop) {
    if (source == nullptr || !HasImage() || !source->HasImage()) {
        return 0;
    }
    if (sourceWidth == -1) {
        sourceWidth = source->Width();
    }
    if (sourceHeight == -1) {
        sourceHeight = source->Height();
    }
    BlitDevices devices(this, source);
    if (!devices.Ready()) {
        return 0;
    }
    return DeviceBlit(devices.Destination(), devices.Source(), x, y, width, height, sourceX,
                      sourceY, sourceWidth, sourceHeight, rop, BLACKONWHITE, true);
}

void C_Image::DibBlt(long x, long y, long width, long height, C_Image* source, long sourceX,
                     long sourceY, int transparent) {
    if (source == nullptr || !HasImage() || !source->HasImage()) {
        return;
    }
    GdiFlush();
    const vistrane::image::PixelView destination = vistrane::image::ViewOf(*this);
    const vistrane::image::ConstPixelView from =
        vistrane::image::AsConst(vistrane::image::ViewOf(*source));
    const CRect area =
        vistrane::image::ClipBlit(destination, from, x, y, width, height, sourceX, sourceY);
    vistrane::image::BlitTransparency transparency;
    transparency.enabled = transparent != 0;
    if (transparency.enabled) {
        const COLORREF color = source->GetTranspColorRef();
        transparency.index = source->GetTransPalInd();
        transparency.color = {GetBValue(color), GetGValue(color), GetRValue(color)};
    }
    vistrane::image::DibBltRows(
        destination, from, area,
        CPoint(static_cast<LONG>(sourceX - x), static_cast<LONG>(sourceY - y)), transparency);
}
