#include <vistrane/platform/gdi.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>

#include <vistrane/platform/section.h>

#include "platform/gdi_objects.h"

namespace vistrane::platform {

GdiObject::~GdiObject() = default;

DibSection* AsDibSection(HGDIOBJ object) {
    return dynamic_cast<DibSection*>(object);
}

Palette* AsPalette(HGDIOBJ object) {
    return dynamic_cast<Palette*>(object);
}

}  // namespace vistrane::platform

using vistrane::platform::AsDibSection;
using vistrane::platform::AsPalette;
using vistrane::platform::DibSection;
using vistrane::platform::Palette;

namespace {

bool IsSupportedBitCount(WORD bits) {
    return bits == 1 || bits == 4 || bits == 8 || bits == 24 || bits == 32;
}

// biClrUsed of 0 means "as many as the depth can address"; more than 256 cannot be held.
UINT DeclaredColorCount(const BITMAPINFOHEADER& header) {
    const std::uint64_t used =
        header.biClrUsed != 0 ? header.biClrUsed : std::uint64_t{1} << header.biBitCount;
    return static_cast<UINT>(std::min<std::uint64_t>(used, 256));
}

}  // namespace

void GdiFlush() {}

HBITMAP CreateDIBSection(HDC, const BITMAPINFO* info, UINT usage, void** bits, HANDLE section,
                         DWORD offset) {
    if (bits != nullptr) {
        *bits = nullptr;
    }
    if (info == nullptr || usage != DIB_RGB_COLORS) {
        return nullptr;
    }
    const BITMAPINFOHEADER& header = info->bmiHeader;
    if (header.biSize != sizeof(BITMAPINFOHEADER) || header.biWidth < 1 || header.biHeight < 1 ||
        header.biPlanes != 1 || !IsSupportedBitCount(header.biBitCount) ||
        header.biCompression != BI_RGB) {
        return nullptr;
    }
    // Width, height and offset are each below 2^32 and the depth at most 32, so none of these
    // products or sums can overflow 64 bits.
    const std::uint64_t strideBytes =
        (static_cast<std::uint64_t>(header.biWidth) * header.biBitCount + 31) / 32 * 4;
    const std::uint64_t imageBytes = strideBytes * static_cast<std::uint64_t>(header.biHeight);
    auto* view = static_cast<BYTE*>(SectionView(section));
    if (view == nullptr || offset + imageBytes > SectionSize(section)) {
        return nullptr;
    }

    auto* dib = new (std::nothrow) DibSection;
    if (dib == nullptr) {
        return nullptr;
    }
    dib->header = header;
    dib->header.biSizeImage = static_cast<DWORD>(imageBytes);
    if (header.biBitCount <= 8) {
        std::memcpy(dib->colors.data(), info->bmiColors,
                    DeclaredColorCount(header) * sizeof(RGBQUAD));
    }
    dib->bits = view + offset;
    dib->section = section;
    dib->offset = offset;
    dib->strideBytes = static_cast<std::size_t>(strideBytes);
    if (bits != nullptr) {
        *bits = dib->bits;
    }
    return dib;
}

BOOL DeleteObject(HGDIOBJ object) {
    if (object == nullptr) {
        return 0;
    }
    delete object;
    return 1;
}

CGdiObject::~CGdiObject() {
    if (m_hObject != nullptr) {
        ::DeleteObject(m_hObject);
    }
}

BOOL CGdiObject::Attach(HGDIOBJ object) {
    if (object == nullptr || m_hObject != nullptr) {
        return 0;
    }
    m_hObject = object;
    return 1;
}

HGDIOBJ CGdiObject::Detach() {
    HGDIOBJ object = m_hObject;
    m_hObject = nullptr;
    return object;
}

BOOL CGdiObject::DeleteObject() {
    if (m_hObject == nullptr) {
        return 0;
    }
    return ::DeleteObject(Detach());
}

BOOL CBitmap::GetDIBSection(DIBSECTION* out) const {
    const DibSection* dib = AsDibSection(m_hObject);
    if (dib == nullptr || out == nullptr) {
        return 0;
    }
    *out = DIBSECTION{dib->header, dib->bits, dib->section, dib->offset};
    return 1;
}

UINT CBitmap::SetDIBColorTable(UINT start, UINT count, const RGBQUAD* colors) {
    DibSection* dib = AsDibSection(m_hObject);
    if (dib == nullptr || colors == nullptr || start >= dib->ColorTableEntries()) {
        return 0;
    }
    const UINT copied = std::min(count, dib->ColorTableEntries() - start);
    std::copy_n(colors, copied, dib->colors.begin() + start);
    return copied;
}

UINT CBitmap::GetDIBColorTable(UINT start, UINT count, RGBQUAD* colors) const {
    const DibSection* dib = AsDibSection(m_hObject);
    if (dib == nullptr || colors == nullptr || start >= dib->ColorTableEntries()) {
        return 0;
    }
    const UINT copied = std::min(count, dib->ColorTableEntries() - start);
    std::copy_n(dib->colors.begin() + start, copied, colors);
    return copied;
}

BOOL CPalette::CreatePalette(const LOGPALETTE* logPalette) {
    if (logPalette == nullptr || m_hObject != nullptr || logPalette->palNumEntries < 1 ||
        logPalette->palNumEntries > 256) {
        return 0;
    }
    auto* palette = new (std::nothrow) Palette;
    if (palette == nullptr) {
        return 0;
    }
    try {
        palette->entries.resize(logPalette->palNumEntries);
    } catch (const std::bad_alloc&) {
        delete palette;
        return 0;
    }
    // The record is declared with one entry but carries palNumEntries of them.
    std::memcpy(palette->entries.data(), logPalette->palPalEntry,
                palette->entries.size() * sizeof(PALETTEENTRY));
    m_hObject = palette;
    return 1;
}

int CPalette::GetEntryCount() const {
    const Palette* palette = AsPalette(m_hObject);
    return palette == nullptr ? 0 : static_cast<int>(palette->entries.size());
}

UINT CPalette::GetPaletteEntries(UINT start, UINT count, PALETTEENTRY* entries) const {
    const Palette* palette = AsPalette(m_hObject);
    if (palette == nullptr || entries == nullptr || start >= palette->entries.size()) {
        return 0;
    }
    const UINT copied = std::min(count, static_cast<UINT>(palette->entries.size()) - start);
    std::copy_n(palette->entries.begin() + start, copied, entries);
    return copied;
}

UINT CPalette::GetNearestPaletteIndex(COLORREF color) const {
    const Palette* palette = AsPalette(m_hObject);
    if (palette == nullptr) {
        return 0;
    }
    const UINT last = static_cast<UINT>(palette->entries.size()) - 1;
    if ((color >> 24) == 0x01) {
        return std::min<UINT>(color & 0xFFFF, last);
    }
    const int red = GetRValue(color);
    const int green = GetGValue(color);
    const int blue = GetBValue(color);
    UINT nearest = 0;
    int nearestDistance = std::numeric_limits<int>::max();
    for (UINT i = 0; i <= last; ++i) {
        const PALETTEENTRY& e = palette->entries[i];
        const int dr = e.peRed - red;
        const int dg = e.peGreen - green;
        const int db = e.peBlue - blue;
        const int distance = dr * dr + dg * dg + db * db;
        // Strictly closer only: on a tie the earlier entry keeps the match.
        if (distance < nearestDistance) {
            nearest = i;
            nearestDistance = distance;
        }
    }
    return nearest;
}
