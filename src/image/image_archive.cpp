// C_Image: the bitmap file in archives and in memory blocks.

#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

#include <vistrane/image/image.h>

#include "image/bitmap_file.h"
#include "image/temporary_image.h"

using vistrane::image::BitmapFileShape;
using vistrane::image::kFileHeaderBytes;
using vistrane::image::kInfoHeaderBytes;
using vistrane::image::kPixelOffsetWithoutColors;

BITMAPFILEHEADER* C_Image::MakeBitmapFileHeader(BITMAPFILEHEADER* header, unsigned long offset,
                                                unsigned long size) {
    header->bfType = vistrane::image::kBitmapFileType;
    header->bfSize = static_cast<DWORD>(size);
    header->bfReserved1 = 0;
    header->bfReserved2 = 0;
    header->bfOffBits = static_cast<DWORD>(offset);
    return header;
}

BITMAPFILEHEADER* C_Image::MakeOwnBitmapFileHeader(BITMAPFILEHEADER* header, int infoHeader40) {
    // 14 + 40-byte info header + 4-byte colours, or 14 + 12-byte core header + 3-byte colours.
    const unsigned long offset =
        infoHeader40 != 0 ? 4 * NColors() + kPixelOffsetWithoutColors : 3 * NColors() + 26;
    return MakeBitmapFileHeader(header, offset, NBytesImage() + offset);
}

void C_Image::Serialize(CArchive& ar) {
    const int done = ar.IsStoring() ? WriteToArchive(ar) : ReadFromArchive(ar);
    if (!done) {
        throw CArchiveException(CArchiveException::badIndex, ar.m_strFileName);
    }
}

int C_Image::WriteToArchive(CArchive& ar) {
    if (!HasImage()) {
        return 0;
    }
    GdiFlush();
    BITMAPFILEHEADER fileHeader;
    MakeOwnBitmapFileHeader(&fileHeader, 1);
    ar.Write(&fileHeader, kFileHeaderBytes);
    ar.Write(BitmapInfoHeader(), kInfoHeaderBytes);
    ar.Write(RGBQs(), static_cast<UINT>(4 * NColors()));
    ar.Write(BitmapBytes(), static_cast<UINT>(NBytesImage()));
    ar.Flush();
    return 1;
}

namespace {

// A stream does not say how long it is, so the colour table and pixels are read in chunks that
// grow only as bytes arrive: a header that claims a huge image costs no more memory than the
// stream really holds before its end is met.
constexpr std::size_t kArchiveChunkBytes = 1 << 16;

std::vector<BYTE> ReadExactly(CArchive& ar, std::size_t bytes) {
    std::vector<BYTE> data;
    while (data.size() < bytes) {
        const std::size_t chunk = std::min(kArchiveChunkBytes, bytes - data.size());
        const std::size_t done = data.size();
        data.resize(done + chunk);
        ar.Read(data.data() + done, static_cast<UINT>(chunk));
    }
    return data;
}

}  // namespace

int C_Image::ReadFromArchive(CArchive& ar) {
    try {
        BITMAPFILEHEADER fileHeader;
        ar.Read(&fileHeader, kFileHeaderBytes);
        if (fileHeader.bfType != vistrane::image::kBitmapFileType) {
            return 0;
        }
        BITMAPINFOHEADER infoHeader;
        ar.Read(&infoHeader, kInfoHeaderBytes);
        BitmapFileShape shape;
        if (infoHeader.biSize != kInfoHeaderBytes ||
            !vistrane::image::ShapeOfInfoHeader(infoHeader, &shape)) {
            return 0;
        }
        // The pixel offset field is not used: the colour table follows the info header
        // directly, as the writer puts it.
        const std::vector<BYTE> colors = ReadExactly(ar, 4 * shape.nColors);
        const std::vector<BYTE> pixels = ReadExactly(ar, shape.pixelBytes);
        vistrane::image::TemporaryImage read = vistrane::image::NewTemporary();
        if (!read ||
            !read->Create(shape.width, shape.height, shape.trueColor,
                          reinterpret_cast<const RGBQUAD*>(colors.data()), shape.nColors)) {
            return 0;
        }
        std::memcpy(read->BitmapBytes(), pixels.data(), pixels.size());
        read->CopyPaintColors(this);
        TransformInto(read.release(), 1);
        return 1;
    } catch (const CException&) {
        return 0;
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

int C_Image::VirtualSerializeSave(BYTE** block) {
    if (block == nullptr || !HasImage()) {
        return 0;
    }
    GdiFlush();
    const unsigned long colorBytes = 4 * NColors();
    const unsigned long offset = colorBytes + kPixelOffsetWithoutColors;
    auto* bytes =
        static_cast<BYTE*>(m_Helper.SafeVirtualAlloc(static_cast<DWORD>(NBytesImage() + offset)));
    if (bytes == nullptr) {
        return 0;
    }
    BITMAPFILEHEADER fileHeader;
    MakeOwnBitmapFileHeader(&fileHeader, 1);
    std::memcpy(bytes, &fileHeader, kFileHeaderBytes);
    std::memcpy(bytes + kFileHeaderBytes, BitmapInfoHeader(), kInfoHeaderBytes);
    std::memcpy(bytes + kPixelOffsetWithoutColors, RGBQs(), colorBytes);
    std::memcpy(bytes + offset, BitmapBytes(), NBytesImage());
    *block = bytes;
    return 1;
}

int C_Image::VirtualSerializeLoad(const BYTE* block) {
    return LoadBitmapFileBlock(block, 0, false);
}

int C_Image::VirtualSerializeLoad(const BYTE* block, unsigned long blockBytes) {
    return LoadBitmapFileBlock(block, blockBytes, true);
}

int C_Image::LoadBitmapFileBlock(const BYTE* block, unsigned long blockBytes,
                                 bool blockBytesKnown) {
    if (block == nullptr || (blockBytesKnown && blockBytes < kPixelOffsetWithoutColors)) {
        return 0;
    }
    // The file type and header size are not examined: the block is this library's own layout.
    BITMAPINFOHEADER infoHeader;
    std::memcpy(&infoHeader, block + kFileHeaderBytes, kInfoHeaderBytes);
    BitmapFileShape shape;
    if (!vistrane::image::ShapeOfInfoHeader(infoHeader, &shape)) {
        return 0;
    }
    const unsigned long colorBytes = 4 * shape.nColors;
    if (blockBytesKnown && blockBytes - kPixelOffsetWithoutColors < colorBytes + shape.pixelBytes) {
        return 0;
    }
    const bool reuse = HasImage() && Width() == shape.width && Height() == shape.height &&
                       (IsTrueColor() != 0) == shape.trueColor;
    if (!reuse && !Create(shape.width, shape.height, shape.trueColor, nullptr, shape.nColors)) {
        return 0;
    }
    GdiFlush();
    std::memcpy(RGBQs(), block + kPixelOffsetWithoutColors, colorBytes);
    std::memcpy(BitmapBytes(), block + kPixelOffsetWithoutColors + colorBytes, NBytesImage());
    RenewPalette();
    return 1;
}
