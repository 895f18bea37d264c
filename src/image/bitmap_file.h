#pragma once

// The bitmap-file layout this library writes and reads: a 14-byte file header, the 40-byte info
// header, 4 x colours bytes of colour table right after it, then the padded pixel rows.

#include <cstddef>

#include <vistrane/platform/types.h>

namespace vistrane::image {

constexpr DWORD kFileHeaderBytes = sizeof(BITMAPFILEHEADER);
constexpr DWORD kInfoHeaderBytes = sizeof(BITMAPINFOHEADER);
constexpr DWORD kPixelOffsetWithoutColors = kFileHeaderBytes + kInfoHeaderBytes;  // 54
constexpr WORD kBitmapFileType = 0x4D42;                                          // "BM"

// What the readers take from an info header before they create anything.
struct BitmapFileShape {
    long width = 0;
    long height = 0;
    bool trueColor = false;
    unsigned long nColors = 0;
    unsigned long pixelBytes = 0;  // padded rows x height
};

// Checks the fields the readers rely on (8 bits with at most 256 colours used, or 24 bits; no
// compression; positive dimensions whose bytes fit the size fields). Returns false otherwise.
bool ShapeOfInfoHeader(const BITMAPINFOHEADER& header, BitmapFileShape* shape);

}  // namespace vistrane::image
