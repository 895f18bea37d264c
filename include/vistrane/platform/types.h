#pragma once

// The engine's base types with the exact little-endian byte layouts of a device-independent
// bitmap. Every record here is packed as it is on disk and in a packed-bitmap handle.

#include <cstdint>

using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using LONG = std::int32_t;
using UINT = unsigned int;
using BOOL = int;
using SHORT = std::int16_t;
using COLORREF = DWORD;        // 0x00BBGGRR; 0x01 in the top byte marks a palette index
using HANDLE = std::intptr_t;  // a shareable section, see platform/section.h; 0 means none

constexpr COLORREF RGB(BYTE r, BYTE g, BYTE b) {
    return static_cast<COLORREF>(r) | (static_cast<COLORREF>(g) << 8) |
           (static_cast<COLORREF>(b) << 16);
}
constexpr BYTE GetRValue(COLORREF c) {
    return static_cast<BYTE>(c);
}
constexpr BYTE GetGValue(COLORREF c) {
    return static_cast<BYTE>(c >> 8);
}
constexpr BYTE GetBValue(COLORREF c) {
    return static_cast<BYTE>(c >> 16);
}
// A COLORREF that names colour-table entry i rather than a colour.
constexpr COLORREF PALETTEINDEX(WORD i) {
    return 0x01000000u | i;
}

struct RGBQUAD {
    BYTE rgbBlue;
    BYTE rgbGreen;
    BYTE rgbRed;
    BYTE rgbReserved;
};
static_assert(sizeof(RGBQUAD) == 4);

struct RGBTRIPLE {
    BYTE rgbtBlue;
    BYTE rgbtGreen;
    BYTE rgbtRed;
};
static_assert(sizeof(RGBTRIPLE) == 3);

constexpr DWORD BI_RGB = 0;

struct BITMAPINFOHEADER {
    DWORD biSize;
    LONG biWidth;
    LONG biHeight;  // positive: rows are stored bottom-up
    WORD biPlanes;
    WORD biBitCount;
    DWORD biCompression;
    DWORD biSizeImage;
    LONG biXPelsPerMeter;
    LONG biYPelsPerMeter;
    DWORD biClrUsed;
    DWORD biClrImportant;
};
static_assert(sizeof(BITMAPINFOHEADER) == 40);

struct BITMAPINFO {
    BITMAPINFOHEADER bmiHeader;
    RGBQUAD bmiColors[1];
};

// The file header is 14 bytes with the pixel offset at byte 10, so it must be packed.
#pragma pack(push, 2)
struct BITMAPFILEHEADER {
    WORD bfType;  // 0x4D42, "BM"
    DWORD bfSize;
    WORD bfReserved1;
    WORD bfReserved2;
    DWORD bfOffBits;
};
#pragma pack(pop)
static_assert(sizeof(BITMAPFILEHEADER) == 14);

struct PALETTEENTRY {
    BYTE peRed;
    BYTE peGreen;
    BYTE peBlue;
    BYTE peFlags;
};
static_assert(sizeof(PALETTEENTRY) == 4);

struct LOGPALETTE {
    WORD palVersion;
    WORD palNumEntries;
    PALETTEENTRY palPalEntry[1];
};

struct tagPOINT {
    LONG x;
    LONG y;
};
using POINT = tagPOINT;

struct tagSIZE {
    LONG cx;
    LONG cy;
};
using SIZE = tagSIZE;

struct tagRECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};
using RECT = tagRECT;
