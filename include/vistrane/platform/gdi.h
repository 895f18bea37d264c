#pragma once

// GDI objects of the software device: bitmap sections over shareable memory and logical
// palettes. Drawing is synchronous, so GdiFlush has nothing to wait for; the engine still calls
// it wherever it touches bytes that a device may draw into.
//
// A DIB section made by CreateDIBSection does not copy the pixels: its bits are the section's
// bytes from the given offset on, so the engine and any device drawing into the bitmap share
// one buffer. The section keeps its own copy of the header and of the colour table, which
// SetDIBColorTable (a device call) replaces.

#include <vistrane/export.h>
#include <vistrane/platform/object.h>
#include <vistrane/platform/types.h>

namespace vistrane::platform {
struct GdiObject;
struct DeviceContext;
}  // namespace vistrane::platform

using HGDIOBJ = vistrane::platform::GdiObject*;
using HBITMAP = HGDIOBJ;
using HPALETTE = HGDIOBJ;
using HDC = vistrane::platform::DeviceContext*;

constexpr UINT DIB_RGB_COLORS = 0;
constexpr UINT DIB_PAL_COLORS = 1;

VISTRANE_API void GdiFlush();

// A bitmap section over `section` whose pixels begin `offset` bytes into it; the header and,
// for 8 bits or fewer, the colour table are read from `info`. Accepts 1, 4, 8, 24 and 32 bits,
// uncompressed, with a positive height, and only DIB_RGB_COLORS (there is no device palette for
// DIB_PAL_COLORS indices to refer to). Null when the arguments do not describe a bitmap that
// fits in the section. `bits` (may be null) receives the first pixel byte. `dc` is unused.
VISTRANE_API HBITMAP CreateDIBSection(HDC dc, const BITMAPINFO* info, UINT usage, void** bits,
                                      HANDLE section, DWORD offset);
VISTRANE_API BOOL DeleteObject(HGDIOBJ object);

// What a bitmap section is, as GetObject reports it.
struct DIBSECTION {
    BITMAPINFOHEADER dsBmih;
    BYTE* dsBits;  // the first (bottom) row
    HANDLE dshSection;
    DWORD dsOffset;
};

class VISTRANE_API CGdiObject : public CObject {
public:
    CGdiObject() = default;
    ~CGdiObject() override;
    CGdiObject(const CGdiObject&) = delete;
    CGdiObject& operator=(const CGdiObject&) = delete;

    BOOL Attach(HGDIOBJ object);  // 0 when null or when an object is attached already
    HGDIOBJ Detach();
    BOOL DeleteObject();  // deletes the attached object; 0 when there is none
    HGDIOBJ GetSafeHandle() const { return m_hObject; }

    HGDIOBJ m_hObject = nullptr;
};

class VISTRANE_API CBitmap : public CGdiObject {
public:
    // The attached bitmap section's description; 0 when none is attached.
    BOOL GetDIBSection(DIBSECTION* out) const;
    // Copies `count` entries from `start` into the section's colour table; returns the count
    // copied (0 for a section of more than 8 bits).
    UINT SetDIBColorTable(UINT start, UINT count, const RGBQUAD* colors);
    UINT GetDIBColorTable(UINT start, UINT count, RGBQUAD* colors) const;
};

class VISTRANE_API CPalette : public CGdiObject {
public:
    // A palette of palNumEntries entries (1..256); 0 when the record is unusable or a palette
    // is attached already.
    BOOL CreatePalette(const LOGPALETTE* logPalette);
    int GetEntryCount() const;
    UINT GetPaletteEntries(UINT start, UINT count, PALETTEENTRY* entries) const;
    // The entry nearest the colour by squared RGB distance, the lowest index on ties; a
    // PALETTEINDEX colour gives its own index (clamped to the palette). 0 without a palette.
    UINT GetNearestPaletteIndex(COLORREF color) const;
};
