#include "io/bmp_decode.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string>

#include "image/temporary_image.h"
#include "io/image_file_p.h"

namespace vistrane::io {
namespace {

constexpr DWORD kRle8 = 1;
constexpr DWORD kRle4 = 2;
constexpr DWORD kBitFields = 3;
constexpr DWORD kJpeg = 4;
constexpr DWORD kPng = 5;
constexpr DWORD kAlphaBitFields = 6;
constexpr std::uint64_t kFileHeaderBytes = 14;
constexpr std::uint64_t kRlePixelsPerByte = 512;
constexpr std::uint64_t kRleSlackPixels = 65536;

std::string Number(std::uint64_t n) {
    return std::to_string(n);
}

std::uint32_t Read32(const BYTE* p) {
    return p[0] | p[1] << 8 | p[2] << 16 | static_cast<std::uint32_t>(p[3]) << 24;
}

std::uint16_t Read16(const BYTE* p) {
    return static_cast<std::uint16_t>(p[0] | p[1] << 8);
}

// One channel's bit field: where it sits and how to widen it to 8 bits.
struct Field {
    std::uint32_t mask = 0;
    int shift = 0;
    std::uint32_t max = 0;  // the field's largest value

    explicit Field(std::uint32_t m = 0) : mask(m) {
        if (mask != 0) {
            shift = std::countr_zero(mask);
            max = mask >> shift;
        }
    }
    bool Valid() const { return mask == 0 || (max & (max + 1)) == 0; }
    BYTE Take(std::uint32_t pixel, BYTE absent) const {
        if (max == 0) {
            return absent;
        }
        const std::uint64_t v = (pixel & mask) >> shift;
        return static_cast<BYTE>((v * 255 + max / 2) / max);
    }
};

struct Layout {
    std::uint32_t headerSize = 0;
    std::int64_t width = 0;
    std::int64_t rows = 0;
    bool topDown = false;
    int bits = 0;
    std::uint32_t compression = 0;
    Field red, green, blue, alpha;
    std::uint64_t tableOffset = 0;
    std::uint32_t entryBytes = 4;
    std::uint32_t entries = 0;  // colour-table entries the image gets
    std::uint64_t pixelOffset = 0;
};

BYTE OverWhite(unsigned value, unsigned a) {
    return static_cast<BYTE>((value * a + 255 * (255 - a) + 127) / 255);
}

std::string ParseLayout(const BYTE* data, std::size_t size, Layout& l) {
    if (size < 2 || data[0] != 'B' || data[1] != 'M') {
        return "not a BMP file";
    }
    if (size < kFileHeaderBytes + 4) {
        return "truncated BMP: the file is " + Number(size) +
               " bytes, shorter than the 54-byte header";
    }
    l.headerSize = Read32(data + kFileHeaderBytes);
    const std::uint32_t h = l.headerSize;
    if (h != 12 && h != 16 && h != 40 && h != 52 && h != 56 && h != 64 && h != 108 && h != 124) {
        return "unsupported BMP: " + Number(h) +
               "-byte info header (12, 16, 40, 52, 56, 64, 108 and 124 are read)";
    }
    if (size < kFileHeaderBytes + h) {
        return "truncated BMP: the file is " + Number(size) + " bytes, shorter than its " +
               Number(kFileHeaderBytes + h) + "-byte header";
    }
    const BYTE* info = data + kFileHeaderBytes;
    std::int64_t height = 0;
    int planes = 0;
    if (h == 12) {
        l.width = static_cast<std::int16_t>(Read16(info + 4));
        height = static_cast<std::int16_t>(Read16(info + 6));
        planes = Read16(info + 8);
        l.bits = Read16(info + 10);
        l.entryBytes = 3;
    } else {
        l.width = static_cast<std::int32_t>(Read32(info + 4));
        height = static_cast<std::int32_t>(Read32(info + 8));
        planes = Read16(info + 12);
        l.bits = Read16(info + 14);
        l.compression = h >= 20 ? Read32(info + 16) : 0;
    }
    const std::uint32_t used = h >= 36 ? Read32(info + 32) : 0;
    if (planes != 1) {
        return "corrupt BMP: " + Number(planes) + " planes (must be 1)";
    }
    if (h == 64 && (l.compression == 3 || l.compression == 4)) {
        return std::string("unsupported BMP: OS/2 ") + (l.compression == 3 ? "Huffman" : "RLE24") +
               " compression";
    }
    if (l.compression == kJpeg || l.compression == kPng) {
        return std::string("BMP holds a ") + (l.compression == kJpeg ? "JPEG" : "PNG") +
               " stream, not pixels this reader decodes";
    }
    const int b = l.bits;
    if (b != 1 && b != 2 && b != 4 && b != 8 && b != 16 && b != 24 && b != 32) {
        return "unsupported BMP: " + Number(b) + " bits per pixel";
    }
    const bool fields = l.compression == kBitFields || l.compression == kAlphaBitFields;
    if (l.compression > kAlphaBitFields || (l.compression == kRle8 && b != 8) ||
        (l.compression == kRle4 && b != 4) || (fields && b != 16 && b != 32)) {
        return "unsupported BMP: compression " + Number(l.compression) + " with " + Number(b) +
               " bits per pixel";
    }
    if (l.width <= 0) {
        return "corrupt BMP: width " + std::to_string(l.width);
    }
    if (height == 0 || height == INT32_MIN) {
        return "corrupt BMP: height " + std::to_string(height);
    }
    l.topDown = height < 0;
    l.rows = l.topDown ? -height : height;
    if (l.topDown && (l.compression == kRle8 || l.compression == kRle4)) {
        return "corrupt BMP: RLE rows cannot run top-down";
    }

    // Bit fields follow a 40-byte header; longer headers hold them.
    l.tableOffset = kFileHeaderBytes + h;
    std::uint32_t masks[4] = {0, 0, 0, 0};
    if (fields) {
        const int count = l.compression == kAlphaBitFields ? 4 : 3;
        const BYTE* at = info + 40;
        if (h == 40) {
            if (size < l.tableOffset + 4 * count) {
                return "truncated BMP: the bit fields run past the end of the file";
            }
            at = data + l.tableOffset;
            l.tableOffset += 4 * count;
        }
        // A header of 56 bytes or more always holds the alpha field too.
        const int held = h == 40 ? count : std::min(4, static_cast<int>(h - 40) / 4);
        for (int i = 0; i < held; ++i) {
            masks[i] = Read32(at + 4 * i);
        }
    } else if (b == 16) {
        masks[0] = 0x7C00, masks[1] = 0x03E0, masks[2] = 0x001F;
    } else if (b == 32) {
        masks[0] = 0xFF0000, masks[1] = 0xFF00, masks[2] = 0xFF;
    }
    l.red = Field(masks[0]), l.green = Field(masks[1]), l.blue = Field(masks[2]);
    l.alpha = Field(masks[3]);
    if (!l.red.Valid() || !l.green.Valid() || !l.blue.Valid() || !l.alpha.Valid()) {
        return "corrupt BMP: a bit field is not one run of bits";
    }

    l.pixelOffset = Read32(data + 10);
    if (b <= 8) {
        const std::uint32_t most = 1u << b;
        if (used > most) {
            return "corrupt BMP: " + Number(used) + " colours for " + Number(b) +
                   " bits per pixel (at most " + Number(most) + ")";
        }
        l.entries = used != 0 ? used : most;
        const std::uint64_t tableEnd = l.tableOffset + std::uint64_t{l.entryBytes} * l.entries;
        if (l.pixelOffset < tableEnd) {
            // Old writers give a core header's table only as many entries as fit before the
            // pixels.
            const std::uint64_t fit =
                l.pixelOffset > l.tableOffset ? (l.pixelOffset - l.tableOffset) / l.entryBytes : 0;
            if (h != 12 || fit == 0) {
                return "corrupt BMP: pixels start at byte " + Number(l.pixelOffset) +
                       ", inside the header or colour table that ends at byte " + Number(tableEnd);
            }
            l.entries = static_cast<std::uint32_t>(fit);
        }
        const std::uint64_t tableBytes = std::uint64_t{l.entryBytes} * l.entries;
        if (size < l.tableOffset + tableBytes) {
            return "truncated BMP: expected " + Number(tableBytes) +
                   " bytes of colour table, found " + Number(size - l.tableOffset);
        }
    }
    const std::uint64_t available = size > l.pixelOffset ? size - l.pixelOffset : 0;
    const std::uint64_t pixels = static_cast<std::uint64_t>(l.width) * l.rows;
    if (l.compression == kRle8 || l.compression == kRle4) {
        if (pixels > kRleSlackPixels + kRlePixelsPerByte * available) {
            return "corrupt BMP: " + Number(available) + " bytes of RLE data cannot describe " +
                   Number(l.width) + " x " + Number(l.rows) + " pixels";
        }
    } else {
        const std::uint64_t rowBytes = (static_cast<std::uint64_t>(l.width) * b + 31) / 32 * 4;
        if (rowBytes * l.rows > available) {
            return "truncated BMP: expected " + Number(rowBytes * l.rows) +
                   " bytes of pixels, found " + Number(available);
        }
    }
    // The engine's size fields are 32-bit.
    const std::uint64_t outRow =
        (static_cast<std::uint64_t>(l.width) * (b <= 8 ? 8 : 24) + 31) / 32 * 4;
    if (outRow * l.rows > UINT32_MAX - sizeof(BITMAPINFOHEADER) - COLOR_TABLE_BYTES) {
        return "cannot make a " + Number(l.width) + " x " + Number(l.rows) + " image of " +
               Number(b) + " bits: too large or out of memory";
    }
    return {};
}

// The image row that file row `fileRow` fills.
long ImageRow(const Layout& l, std::int64_t fileRow) {
    return static_cast<long>(l.topDown ? fileRow : l.rows - 1 - fileRow);
}

std::string BadIndex(const Layout& l, long x, long y, unsigned index) {
    return "corrupt BMP: pixel (" + Number(x) + ", " + Number(y) + ") uses colour " +
           Number(index) + " of a table of " + Number(l.entries);
}

std::string DecodeIndexed(const BYTE* data, const Layout& l, C_Image& image) {
    const std::uint64_t rowBytes = (static_cast<std::uint64_t>(l.width) * l.bits + 31) / 32 * 4;
    const int perByte = 8 / l.bits;
    const unsigned valueMask = (1u << l.bits) - 1;
    for (std::int64_t r = 0; r < l.rows; ++r) {
        const BYTE* in = data + l.pixelOffset + r * rowBytes;
        const long y = ImageRow(l, r);
        BYTE* out = image.PixelPtr(0, y);
        for (long x = 0; x < l.width; ++x) {
            const int shift = 8 - l.bits * (x % perByte + 1);
            const unsigned index = (in[x / perByte] >> shift) & valueMask;
            if (index >= l.entries) {
                return BadIndex(l, x, y, index);
            }
            out[x] = static_cast<BYTE>(index);
        }
    }
    return {};
}

// RLE8 and RLE4: pairs (count, value) paint count pixels; (0, 0) ends a row, (0, 1) the image,
// (0, 2, dx, dy) jumps, and (0, n >= 3) is followed by n literal pixels padded to a word.
std::string DecodeRle(const BYTE* data, std::size_t size, const Layout& l, C_Image& image) {
    const bool four = l.compression == kRle4;
    const BYTE* p = data + l.pixelOffset;
    const BYTE* const end = data + size;
    std::int64_t x = 0, row = 0;
    auto put = [&](unsigned index) -> std::string {
        if (row >= l.rows || x >= l.width) {
            return "corrupt BMP: the RLE data runs past " +
                   std::string(row >= l.rows ? "the image" : "its row");
        }
        if (index >= l.entries) {
            return BadIndex(l, static_cast<long>(x), ImageRow(l, row), index);
        }
        image.PixelPtr(static_cast<long>(x), ImageRow(l, row))[0] = static_cast<BYTE>(index);
        ++x;
        return {};
    };
    while (end - p >= 2) {
        const unsigned count = p[0];
        const unsigned value = p[1];
        p += 2;
        if (count > 0) {
            for (unsigned i = 0; i < count; ++i) {
                const unsigned index = four ? (i % 2 == 0 ? value >> 4 : value & 15) : value;
                if (std::string e = put(index); !e.empty()) {
                    return e;
                }
            }
        } else if (value == 0) {
            x = 0, ++row;
        } else if (value == 1) {
            return {};
        } else if (value == 2) {
            if (end - p < 2) {
                break;
            }
            x += p[0], row += p[1];
            p += 2;
        } else {
            const std::size_t bytes = four ? (value + 1) / 2 : value;
            const std::size_t padded = (bytes + 1) / 2 * 2;
            if (static_cast<std::size_t>(end - p) < bytes) {
                break;
            }
            for (unsigned i = 0; i < value; ++i) {
                const unsigned index = four ? (i % 2 == 0 ? p[i / 2] >> 4 : p[i / 2] & 15) : p[i];
                if (std::string e = put(index); !e.empty()) {
                    return e;
                }
            }
            p += std::min<std::size_t>(padded, static_cast<std::size_t>(end - p));
        }
    }
    // Files that stop without the end-of-image mark keep what they painted.
    return {};
}

bool DecodeTrueColor(const BYTE* data, const Layout& l, C_Image& image) {
    const std::uint64_t rowBytes = (static_cast<std::uint64_t>(l.width) * l.bits + 31) / 32 * 4;
    const int bytesPerPixel = l.bits / 8;
    bool flattened = false;
    for (std::int64_t r = 0; r < l.rows; ++r) {
        const BYTE* in = data + l.pixelOffset + r * rowBytes;
        BYTE* out = image.PixelPtr(0, ImageRow(l, r));
        for (long x = 0; x < l.width; ++x, in += bytesPerPixel, out += 3) {
            if (l.bits == 24) {
                std::memcpy(out, in, 3);
                continue;
            }
            const std::uint32_t pixel = l.bits == 16 ? Read16(in) : Read32(in);
            const BYTE a = l.alpha.Take(pixel, 255);
            flattened = flattened || a < 255;
            out[0] = OverWhite(l.blue.Take(pixel, 0), a);
            out[1] = OverWhite(l.green.Take(pixel, 0), a);
            out[2] = OverWhite(l.red.Take(pixel, 0), a);
        }
    }
    return flattened;
}

}  // namespace

std::string IndexBeyondTable(const C_Image& image) {
    const unsigned long entries = image.NColors();
    if (image.IsTrueColor() || entries == 0 || entries >= 256) {
        return {};
    }
    for (long y = 0; y < image.Height(); ++y) {
        const BYTE* row = image.PixelPtr(0, y);
        for (long x = 0; x < image.Width(); ++x) {
            if (row[x] >= entries) {
                return "corrupt BMP: pixel (" + Number(x) + ", " + Number(y) + ") uses colour " +
                       Number(row[x]) + " of a table of " + Number(entries);
            }
        }
    }
    return {};
}

ImageFileResult DecodeBmp(const BYTE* data, std::size_t size, C_Image& image) {
    Layout layout;
    std::string problem = ParseLayout(data, size, layout);
    image::TemporaryImage decoded = problem.empty() ? image::NewTemporary() : nullptr;
    bool flattened = false;
    if (problem.empty()) {
        RGBQUAD colors[256] = {};
        for (std::uint32_t i = 0; i < layout.entries; ++i) {
            const BYTE* entry = data + layout.tableOffset + std::uint64_t{layout.entryBytes} * i;
            colors[i] = RGBQUAD{entry[0], entry[1], entry[2], 0};
        }
        const bool indexed = layout.bits <= 8;
        if (!decoded ||
            !decoded->Create(static_cast<long>(layout.width), static_cast<long>(layout.rows),
                             indexed ? 0 : 1, indexed ? colors : nullptr, layout.entries)) {
            problem = "cannot make a " + Number(layout.width) + " x " + Number(layout.rows) +
                      " image of " + Number(layout.bits) + " bits: too large or out of memory";
        } else if (!indexed) {
            flattened = DecodeTrueColor(data, layout, *decoded);
        } else if (layout.compression == kRle8 || layout.compression == kRle4) {
            problem = DecodeRle(data, size, layout, *decoded);
        } else {
            problem = DecodeIndexed(data, layout, *decoded);
        }
    }
    if (!problem.empty()) {
        image.SelfDestruct();
        return Failure(problem);
    }
    image.TransformInto(decoded.release(), 1);
    ImageFileResult result = Success();
    result.alphaFlattened = flattened;
    return result;
}

}  // namespace vistrane::io
