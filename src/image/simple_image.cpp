#include <vistrane/image/simple_image.h>

#include <algorithm>
#include <cstring>

#include <vistrane/image/image.h>

#include "image/image_size.h"
#include "image/pixel_rows.h"
#include "image/pixel_view.h"

using vistrane::image::PixelView;
using vistrane::image::ViewOf;

C_SimpleImage::C_SimpleImage() = default;

C_SimpleImage::~C_SimpleImage() {
    SelfDestruct();
}

void C_SimpleImage::SelfDestruct() {
    if (m_pBits != nullptr) {
        m_Helper.SafeVirtualFree(m_pBits);
        m_pBits = nullptr;
        m_AllocSize = 0;
    }
}

int C_SimpleImage::CreateWithPixSize(long width, long height, int pixSize) {
    m_PixSize = std::max(pixSize, 1);
    const auto needed = vistrane::image::PackedBytes(width, height, m_PixSize);
    if (!needed) {
        SelfDestruct();
        return 0;
    }
    // A buffer re-created for every stroke or filter pass keeps its block; callers that need
    // clean contents clear it themselves.
    if (m_pBits != nullptr && static_cast<DWORD>(m_AllocSize) >= *needed) {
        m_Width = static_cast<LONG>(width);
        m_Height = static_cast<LONG>(height);
        return 1;
    }
    SelfDestruct();
    m_pBits = static_cast<BYTE*>(m_Helper.SafeVirtualAlloc(*needed));
    if (m_pBits == nullptr) {
        return 0;
    }
    m_AllocSize = static_cast<LONG>(*needed);
    m_Width = static_cast<LONG>(width);
    m_Height = static_cast<LONG>(height);
    return 1;
}

int C_SimpleImage::Create(long width, long height, int trueColor) {
    return CreateWithPixSize(width, height, trueColor != 0 ? 3 : 1);
}

int C_SimpleImage::CreateMask(long width, long height, int pixSize) {
    return CreateWithPixSize(width, height, pixSize);
}

int C_SimpleImage::CreateMask(C_Image* image, int pixSize) {
    if (image == nullptr || !image->HasImage()) {
        return 0;
    }
    return CreateWithPixSize(image->Width(), image->Height(), pixSize);
}

void C_SimpleImage::Dimensions(long* width, long* height) const {
    *width = m_Width;
    *height = m_Height;
}

void C_SimpleImage::FillWithByte(unsigned char b) {
    if (m_pBits != nullptr) {
        std::memset(m_pBits, b, static_cast<size_t>(NBytesImage()));
    }
}

void C_SimpleImage::FillWithData(const unsigned char* data, int n) {
    if (m_pBits == nullptr) {
        return;
    }
    if (n == 1) {
        FillWithByte(data[0]);
        return;
    }
    const int bytesPerPixel = std::min(m_PixSize, n);
    const long pixels = NPixels();
    BYTE* pixel = m_pBits;
    for (long i = 0; i < pixels; ++i, pixel += m_PixSize) {
        std::memcpy(pixel, data, static_cast<size_t>(bytesPerPixel));
    }
}

void C_SimpleImage::FillWithRGBTRIPLE(const RGBTRIPLE* color) {
    if (m_pBits != nullptr && IsTrueColor()) {
        FillWithData(reinterpret_cast<const unsigned char*>(color), 3);
    }
}

void C_SimpleImage::ZeroBitmapBytes() {
    FillWithByte(0);
}

void C_SimpleImage::TrustFillRectWithByte(CRect r, unsigned char b) {
    assert(m_pBits != nullptr);
    const long width = r.right;  // the extent, not a coordinate
    const long height = r.bottom;
    for (long y = r.top; y < r.top + height; ++y) {
        std::memset(PixelPtr(r.left, y), b, static_cast<size_t>(m_PixSize * width));
    }
}

void C_SimpleImage::MaskReplace(unsigned char from, unsigned char to) {
    if (m_pBits != nullptr && m_PixSize == 1) {
        std::replace(m_pBits, m_pBits + NBytesImage(), from, to);
    }
}

void C_SimpleImage::MaskZeroDifferent(unsigned char keep) {
    if (m_pBits != nullptr && m_PixSize == 1) {
        std::replace_if(
            m_pBits, m_pBits + NBytesImage(), [keep](BYTE v) { return v != keep; }, 0);
    }
}

void C_SimpleImage::TrustZeroBorders(int b) {
    assert(m_pBits != nullptr && b >= 0 && 2 * b <= m_Width && 2 * b <= m_Height);
    for (long y = 0; y < m_Height; ++y) {
        BYTE* row = PixelPtr(0, y);
        std::memset(row, 0, static_cast<size_t>(b));
        std::memset(row + m_Width - b, 0, static_cast<size_t>(b));
    }
    for (long y = 0; y < b; ++y) {
        std::memset(PixelPtr(0, y), 0, static_cast<size_t>(m_Width));
        std::memset(PixelPtr(0, m_Height - 1 - y), 0, static_cast<size_t>(m_Width));
    }
}

void C_SimpleImage::TrustReplicateBorders(int b) {
    assert(m_pBits != nullptr && b >= 0 && 2 * b < m_Width && 2 * b < m_Height);
    const long right = m_Width - b - 1;  // the interior's last column and row
    const long bottom = m_Height - b - 1;
    const size_t side = static_cast<size_t>(b);
    // The four corner squares take the interior's nearest corner pixel.
    for (long y = 0; y < b; ++y) {
        std::memset(PixelPtr(0, y), *PixelPtr(b, b), side);
        std::memset(PixelPtr(right + 1, y), *PixelPtr(right, b), side);
        std::memset(PixelPtr(0, bottom + 1 + y), *PixelPtr(b, bottom), side);
        std::memset(PixelPtr(right + 1, bottom + 1 + y), *PixelPtr(right, bottom), side);
    }
    for (long y = b; y <= bottom; ++y) {
        std::memset(PixelPtr(0, y), *PixelPtr(b, y), side);
        std::memset(PixelPtr(right + 1, y), *PixelPtr(right, y), side);
    }
    const size_t interiorWidth = static_cast<size_t>(m_Width - 2 * b);
    for (long y = 0; y < b; ++y) {
        std::memcpy(PixelPtr(b, y), PixelPtr(b, b), interiorWidth);
        std::memcpy(PixelPtr(b, bottom + 1 + y), PixelPtr(b, bottom), interiorWidth);
    }
}

int C_SimpleImage::Clone(C_Image* src) {
    if (src == nullptr || !src->HasImage()) {
        return 0;
    }
    const int created = Create(src->Width(), src->Height(), src->IsTrueColor());
    if (created) {
        vistrane::image::CopyRowBytes(ViewOf(*src), ViewOf(*this));
    }
    return created;
}

int C_SimpleImage::Clone(C_SimpleImage* src) {
    if (src == nullptr || !src->HasImage() || src == this) {
        return 0;
    }
    // Deliberately by the true-colour flag: a 2-byte source gives a 1-byte copy of the first
    // width bytes of each of its rows.
    const int created = Create(src->Width(), src->Height(), src->IsTrueColor());
    if (created) {
        vistrane::image::CopyRowBytes(ViewOf(*src), ViewOf(*this));
    }
    return created;
}

int C_SimpleImage::CloneToImage(C_Image* dst) {
    if (dst == nullptr || m_pBits == nullptr) {
        return 0;
    }
    int created = 0;
    if (m_PixSize == 3 || m_PixSize == 2) {
        created = dst->Create(m_Width, m_Height, 1, nullptr, 0);
    } else if (m_PixSize == 1) {
        created = dst->CreateMask(m_Width, m_Height);
    }
    if (!created) {
        return 0;
    }
    const PixelView from = ViewOf(*this);
    const PixelView to = ViewOf(*dst);
    for (int y = 0; y < to.height; ++y) {
        if (m_PixSize == 2) {
            const BYTE* s = from.Row(y);
            BYTE* d = to.Row(y);
            for (int x = 0; x < to.width; ++x, s += 2, d += 3) {
                d[0] = s[0];
                d[1] = s[1];
                d[2] = 0;
            }
        } else {
            std::memcpy(to.Row(y), from.Row(y), static_cast<size_t>(from.RowBytes()));
        }
    }
    return created;
}

int C_SimpleImage::Copy(C_Image* src, long dstX, long dstY, long srcX, long srcY) {
    if (src == nullptr || !src->HasImage() || m_pBits == nullptr) {
        return 0;
    }
    // A negative source origin moves the destination origin right or down by as much, and
    // then a negative destination origin moves the source origin.
    if (srcX < 0) {
        dstX -= srcX;
        srcX = 0;
    }
    if (srcY < 0) {
        dstY -= srcY;
        srcY = 0;
    }
    if (dstX < 0) {
        srcX -= dstX;
        dstX = 0;
    }
    if (dstY < 0) {
        srcY -= dstY;
        dstY = 0;
    }
    if (dstX >= m_Width || dstY >= m_Height || srcX >= src->Width() || srcY >= src->Height()) {
        return 0;
    }
    const int width = static_cast<int>(std::min(m_Width - dstX, src->Width() - srcX));
    const int height = static_cast<int>(std::min(m_Height - dstY, src->Height() - srcY));
    const PixelView from =
        vistrane::image::SubView(ViewOf(*src), CRect(srcX, srcY, srcX + width, srcY + height));
    const PixelView to =
        vistrane::image::SubView(ViewOf(*this), CRect(dstX, dstY, dstX + width, dstY + height));
    const bool srcTrue = src->IsTrueColor() != 0;
    const bool dstTrue = IsTrueColor() != 0;
    for (int y = 0; y < height; ++y) {
        const BYTE* s = from.Row(y);
        BYTE* d = to.Row(y);
        if (srcTrue && dstTrue) {
            std::memcpy(d, s, static_cast<size_t>(3 * width));
        } else if (srcTrue) {
            for (int x = 0; x < width; ++x, s += 3, d += m_PixSize) {
                d[0] = static_cast<BYTE>((s[0] + s[1] + s[2]) / 3);
            }
        } else if (dstTrue) {
            for (int x = 0; x < width; ++x, d += 3) {
                const RGBQUAD& c = from.colors[s[x]];
                d[0] = c.rgbBlue;
                d[1] = c.rgbGreen;
                d[2] = c.rgbRed;
            }
        } else {
            for (int x = 0; x < width; ++x, d += m_PixSize) {
                d[0] = s[x];
            }
        }
    }
    return 1;
}

void C_SimpleImage::TrustCopyMask(C_Image* src, long dstX, long dstY, long srcX, long srcY, long w,
                                  long h) {
    assert(src != nullptr && src->HasImage() && m_pBits != nullptr);
    if (srcX == -1 || srcY == -1) {
        srcX = 0;
        srcY = 0;
    }
    if (w == -1 || h == -1) {
        w = src->Width();
        h = src->Height();
    }
    for (long y = 0; y < h; ++y) {
        std::memcpy(PixelPtr(dstX, dstY + y), src->PixelPtr(srcX, srcY + y),
                    static_cast<size_t>(w));
    }
}
