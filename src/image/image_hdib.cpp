// C_Image: packed bitmaps in global memory handles, for the clipboard and other programs.

#include <cstring>

#include <vistrane/image/image.h>

#include "image/bitmap_file.h"
#include "image/image_size.h"
#include "image/pixel_view.h"

using vistrane::image::kInfoHeaderBytes;

namespace {

// 24 bits for true colour; otherwise the smallest depth whose table holds the colours. An
// 8-bit image with an empty colour table still needs 8 bits for its indices.
WORD HandleDepthFor(const C_Image& image) {
    if (image.IsTrueColor()) {
        return 24;
    }
    const unsigned long colors = image.NColors();
    if (colors == 0 || colors > 16) {
        return 8;
    }
    return colors <= 2 ? 1 : 4;
}

int TableEntriesForDepth(WORD bits) {
    switch (bits) {
        case 1:
            return 2;
        case 4:
            return 16;
        case 8:
            return 256;
        default:
            return 0;
    }
}

// Unlocks on every way out of a reader or writer.
class LockedHandle {
public:
    explicit LockedHandle(HGLOBAL handle)
        : m_Handle(handle), m_Bytes(static_cast<BYTE*>(GlobalLock(handle))) {}
    ~LockedHandle() {
        if (m_Bytes != nullptr) {
            GlobalUnlock(m_Handle);
        }
    }
    LockedHandle(const LockedHandle&) = delete;
    LockedHandle& operator=(const LockedHandle&) = delete;
    BYTE* Bytes() const { return m_Bytes; }

private:
    HGLOBAL m_Handle;
    BYTE* m_Bytes;
};

}  // namespace

HGLOBAL C_Image::MakehDib(CRect* rect) {
    if (!HasImage()) {
        return nullptr;
    }
    CRect area;
    Rectangle(&area);
    if (rect != nullptr) {
        const CRect wanted(rect->left, rect->top, rect->right, rect->bottom);
        CRect inside;
        if (wanted.Width() < 1 || wanted.Height() < 1 || !inside.IntersectRect(wanted, area) ||
            inside != wanted) {
            return nullptr;
        }
        area = wanted;
    }
    const WORD bits = HandleDepthFor(*this);
    const int entries = TableEntriesForDepth(bits);
    const long rowBytes = *vistrane::image::PaddedRowBytes(area.Width(), bits);
    const auto total =
        vistrane::image::BitmapBytes(area.Width(), area.Height(), bits, kInfoHeaderBytes + 4 * entries);
    if (!total) {
        return nullptr;
    }
    HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, *total);
    if (handle == nullptr) {
        return nullptr;
    }
    GdiFlush();
    {
        LockedHandle locked(handle);
        BYTE* bytes = locked.Bytes();
        const unsigned long colors = NColors() < 256 ? NColors() : 256;
        m_Helper.FillBIH(reinterpret_cast<BITMAPINFOHEADER*>(bytes), area.Width(), area.Height(),
                         bits, static_cast<DWORD>(NColors()));
        std::memcpy(bytes + kInfoHeaderBytes, RGBQs(), 4 * colors);
        const vistrane::image::PixelView view = vistrane::image::SubView(vistrane::image::ViewOf(*this), area);
        BYTE* out = bytes + kInfoHeaderBytes + 4 * entries;
        // The handle's first row is the area's bottom row.
        for (int y = view.height - 1; y >= 0; --y, out += rowBytes) {
            const BYTE* row = view.Row(y);
            if (bits == 1) {
                m_Helper.Convert8BitTo1BitScan(out, row, view.width);
            } else if (bits == 4) {
                m_Helper.Convert8BitTo4BitScan(out, row, view.width);
            } else {
                std::memcpy(out, row, static_cast<size_t>(view.RowBytes()));
            }
        }
    }
    return handle;
}

int C_Image::CreateFromhDib(HGLOBAL dib) {
    SelfDestruct();
    if (dib == nullptr || GlobalSize(dib) <= kInfoHeaderBytes) {
        return 0;
    }
    const std::size_t size = GlobalSize(dib);
    LockedHandle locked(dib);
    const BYTE* bytes = locked.Bytes();
    if (bytes == nullptr) {
        return 0;
    }
    BITMAPINFOHEADER header;
    std::memcpy(&header, bytes, kInfoHeaderBytes);
    const int entries = TableEntriesForDepth(header.biBitCount);
    if (header.biSize != kInfoHeaderBytes || header.biCompression != BI_RGB ||
        (entries == 0 && header.biBitCount != 24)) {
        return 0;
    }
    const auto total = vistrane::image::BitmapBytes(header.biWidth, header.biHeight,
                                                    header.biBitCount, kInfoHeaderBytes + 4 * entries);
    if (!total || size < *total) {
        return 0;
    }
    const BYTE* table = bytes + kInfoHeaderBytes;
    if (!Create(header.biWidth, header.biHeight, header.biBitCount == 24,
                reinterpret_cast<const RGBQUAD*>(table), static_cast<unsigned long>(entries))) {
        return 0;
    }
    GdiFlush();
    const BYTE* in = table + 4 * entries;
    if (header.biBitCount == 24 || header.biBitCount == 8) {
        std::memcpy(BitmapBytes(), in, NBytesImage());
        return 1;
    }
    const long inRowBytes = *vistrane::image::PaddedRowBytes(header.biWidth, header.biBitCount);
    const long outRowBytes = NBytesScan();
    BYTE* out = BitmapBytes();
    for (long y = 0; y < header.biHeight; ++y, in += inRowBytes, out += outRowBytes) {
        if (header.biBitCount == 1) {
            m_Helper.Convert1BitTo8BitScan(out, in, header.biWidth);
        } else {
            m_Helper.Convert4BitTo8BitScan(out, in, header.biWidth);
        }
    }
    return 1;
}
