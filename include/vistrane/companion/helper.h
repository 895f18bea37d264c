#pragma once

// C_Helper: the companion library's utility object. The engine never allocates pixel memory,
// computes row lengths or fills bitmap headers itself; it asks a C_Helper, which every image and
// pixel buffer holds by value and operations also make as a short-lived local. A C_Helper keeps
// no state between calls; the generator behind Random0Max is process-wide.

#include <vistrane/export.h>
#include <vistrane/platform/gdi.h>
#include <vistrane/platform/types.h>

class VISTRANE_API C_Helper {
  public:
    // Memory. SafeVirtualAlloc returns a new block of `bytes` bytes (contents undefined) or null;
    // SafeVirtualFree releases it (null is accepted) and returns 1.
    void* SafeVirtualAlloc(DWORD bytes);
    int SafeVirtualFree(void* block);

    // A shareable section of `bytes` bytes mapped from offset 0: returns the view and stores the
    // section handle, or returns null and stores 0. The view's bytes read as zero.
    void* AllocSysMapBuffer(HANDLE* section, DWORD bytes);
    // Unmaps the view, closes the section and sets the handle to 0.
    void FreeMapBuffer(HANDLE* section, void* view);

    // Bitmap rows. The length of a row of `width` pixels of `bits` bits, rounded up to a whole
    // multiple of four bytes: (width * bits + 31) / 32 * 4.
    LONG CalcNBytesScan(LONG width, WORD bits) const;
    // Size 40, the width, the height as a positive number (rows bottom-up), 1 plane, the bit
    // count, no compression, the image size, and nColors in both colour counts.
    void FillBIH(BITMAPINFOHEADER* header, LONG width, LONG height, WORD bits, DWORD nColors) const;
    // Expand `width` 1- or 4-bit indices (most significant bits first) into one byte each, and
    // pack bytes back into 1- or 4-bit indices. Packing keeps the low bits of each byte; unused
    // bits of the last packed byte are zero.
    void Convert1BitTo8BitScan(BYTE* dst, const BYTE* src, LONG width) const;
    void Convert4BitTo8BitScan(BYTE* dst, const BYTE* src, LONG width) const;
    void Convert8BitTo1BitScan(BYTE* dst, const BYTE* src, LONG width) const;
    void Convert8BitTo4BitScan(BYTE* dst, const BYTE* src, LONG width) const;

    // A logical palette with one entry (flags 0) per colour-table entry, attached to `palette`;
    // 0 when nColors is 0 or above 256 or the palette cannot be made.
    int CreatePalette(CPalette* palette, const RGBQUAD* colors, DWORD nColors) const;

    // The limit every image fetches once at construction: the largest sample offset, in bytes,
    // that the sampling code may address (2^31 - 1).
    LONG GetSampleRangeLimit() const;

    // A pseudo-random int in 0..maximum inclusive (0 for a maximum below 1). SeedRandom restarts
    // the process-wide generator so that a host or test can repeat a sequence.
    int Random0Max(int maximum);
    static void SeedRandom(DWORD seed);

    // A percentage 0..100 as an opacity byte 0..255, rounded to nearest (values outside are
    // clamped first).
    int XLatePercentTo255(int percent) const;

    // When *width x *height exceeds maxWidth x maxHeight in either direction, writes the largest
    // size of the same proportions that fits (at least 1 x 1) and returns 1; otherwise returns 0
    // and leaves the size.
    int FitIfGreater(LONG* width, LONG* height, LONG maxWidth, LONG maxHeight) const;
};
