#pragma once

// The objects behind HGDIOBJ handles. A handle points at one of these; code that needs a
// particular kind asks with AsDibSection / AsPalette, which answer null for any other kind, so
// a device can be handed any handle without trusting its caller about what it is.

#include <array>
#include <cstddef>
#include <vector>

#include <vistrane/platform/gdi.h>
#include <vistrane/platform/types.h>

namespace vistrane::platform {

struct GdiObject {
    virtual ~GdiObject();
};

// A bitmap over a shared section. The pixels are not owned: they are the section's bytes from
// `offset` on, bottom row first, rows padded to 4 bytes. The header and the colour table are
// the bitmap's own copies, so the caller's BITMAPINFO may go away after creation.
struct DibSection final : GdiObject {
    BITMAPINFOHEADER header{};
    std::array<RGBQUAD, 256> colors{};  // the first ColorTableEntries() are meaningful
    BYTE* bits = nullptr;               // the bottom row
    HANDLE section = 0;
    DWORD offset = 0;
    std::size_t strideBytes = 0;

    // 2^bits for a palette bitmap (the reach of a pixel value), 0 for 24 and 32 bits.
    UINT ColorTableEntries() const { return header.biBitCount <= 8 ? 1u << header.biBitCount : 0u; }
};

struct Palette final : GdiObject {
    std::vector<PALETTEENTRY> entries;  // 1..256 entries
};

DibSection* AsDibSection(HGDIOBJ object);
Palette* AsPalette(HGDIOBJ object);

}  // namespace vistrane::platform
