// C_Helper: bitmap row arithmetic, headers, scan converters and palettes.

#include <new>
#include <vector>

#include <vistrane/companion/helper.h>

LONG C_Helper::CalcNBytesScan(LONG width, WORD bits) const {
    const long long bitLength = static_cast<long long>(width) * bits;
    return static_cast<LONG>((bitLength + 31) / 32 * 4);
}

void C_Helper::FillBIH(BITMAPINFOHEADER* header, LONG width, LONG height, WORD bits,
                       DWORD nColors) const {
    *header = BITMAPINFOHEADER{};
    header->biSize = sizeof(BITMAPINFOHEADER);
    header->biWidth = width;
    header->biHeight = height < 0 ? -height : height;
    header->biPlanes = 1;
    header->biBitCount = bits;
    header->biCompression = BI_RGB;
    header->biSizeImage =
        static_cast<DWORD>(static_cast<long long>(CalcNBytesScan(width, bits)) * header->biHeight);
    header->biClrUsed = nColors;
    header->biClrImportant = nColors;
}

// Packed rows keep their first pixel in the most significant bits of the first byte.
void C_Helper::Convert1BitTo8BitScan(BYTE* dst, const BYTE* src, LONG width) const {
    for (LONG x = 0; x < width; ++x) {
        dst[x] = (src[x >> 3] >> (7 - (x & 7))) & 1;
    }
}

void C_Helper::Convert4BitTo8BitScan(BYTE* dst, const BYTE* src, LONG width) const {
    for (LONG x = 0; x < width; ++x) {
        dst[x] = (x & 1) != 0 ? (src[x >> 1] & 0x0F) : (src[x >> 1] >> 4);
    }
}

void C_Helper::Convert8BitTo1BitScan(BYTE* dst, const BYTE* src, LONG width) const {
    for (LONG i = 0; i < (width + 7) / 8; ++i) {
        dst[i] = 0;
    }
    for (LONG x = 0; x < width; ++x) {
        dst[x >> 3] |= static_cast<BYTE>((src[x] & 1) << (7 - (x & 7)));
    }
}

void C_Helper::Convert8BitTo4BitScan(BYTE* dst, const BYTE* src, LONG width) const {
    for (LONG i = 0; i < (width + 1) / 2; ++i) {
        dst[i] = 0;
    }
    for (LONG x = 0; x < width; ++x) {
        dst[x >> 1] |= static_cast<BYTE>((src[x] & 0x0F) << ((x & 1) != 0 ? 0 : 4));
    }
}

int C_Helper::CreatePalette(CPalette* palette, const RGBQUAD* colors, DWORD nColors) const {
    if (palette == nullptr || colors == nullptr || nColors == 0 || nColors > 256) {
        return 0;
    }
    // LOGPALETTE ends in a one-entry array; the buffer holds the header and all entries.
    std::vector<BYTE> storage;
    try {
        storage.resize(sizeof(LOGPALETTE) + (nColors - 1) * sizeof(PALETTEENTRY));
    } catch (const std::bad_alloc&) {
        return 0;
    }
    auto* logPalette = reinterpret_cast<LOGPALETTE*>(storage.data());
    logPalette->palVersion = 0x300;
    logPalette->palNumEntries = static_cast<WORD>(nColors);
    for (DWORD i = 0; i < nColors; ++i) {
        logPalette->palPalEntry[i] =
            PALETTEENTRY{colors[i].rgbRed, colors[i].rgbGreen, colors[i].rgbBlue, 0};
    }
    return palette->CreatePalette(logPalette) != 0 ? 1 : 0;
}
