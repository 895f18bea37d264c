#pragma once

// C_SimpleImage: a bare raster of width x height pixels of 1, 2 or 3 bytes (3: blue, green,
// red) in one block, with no header, palette or paint colours. Brush masks, scratch planes and
// distance maps use it.
//
// Rows are packed with no padding (NBytesScan() == PixSize() * width) and stored bottom-up:
// row y (0 = top) starts at NBytesScan() * (height - y - 1), so walking down the picture steps
// the row pointer by minus NBytesScan().
//
// The block is kept across re-creation while it is large enough, and its contents are never
// cleared by this class. Assignment is a shallow copy of all members, pointer included: after
// one, two objects name the same block and only one of them may free it. Members named Trust...
// check nothing; callers clip first.

#include <vistrane/companion/helper.h>
#include <vistrane/export.h>
#include <vistrane/platform/geometry.h>
#include <vistrane/platform/types.h>

class C_Image;

class VISTRANE_API C_SimpleImage {
public:
    C_SimpleImage();
    ~C_SimpleImage();
    C_SimpleImage(const C_SimpleImage&) = default;
    C_SimpleImage& operator=(const C_SimpleImage&) = default;

    // Frees the block; width and height are kept.
    void SelfDestruct();
    // A pixel size below 1 is stored as 1. Keeps the block when it holds width x height x
    // pixSize bytes already; otherwise reallocates. 0 when the size is not positive or does not
    // fit in 32 bits, or memory is short: the object is then empty.
    int CreateWithPixSize(long width, long height, int pixSize);
    int Create(long width, long height, int trueColor);
    int CreateMask(long width, long height, int pixSize);
    // 0 when the image has no bitmap.
    int CreateMask(C_Image* image, int pixSize);

    int HasImage() const { return m_pBits != nullptr ? 1 : 0; }
    int IsMask() const { return m_PixSize == 1 ? 1 : 0; }
    int IsTrueColor() const { return m_PixSize == 3 ? 1 : 0; }
    int PixSize() const { return m_PixSize; }
    void Dimensions(long* width, long* height) const;
    long Width() const { return m_Width; }
    long Height() const { return m_Height; }
    long NBytesScan() const { return static_cast<long>(m_PixSize) * m_Width; }
    long NBytesImage() const { return NBytesScan() * m_Height; }
    long NPixels() const { return static_cast<long>(m_Width) * m_Height; }
    BYTE* Bits() const { return m_pBits; }

    // Unchecked byte offset and address of pixel (x, y).
    long PixelOffset(long x, long y) const { return NBytesScan() * (m_Height - y - 1) + m_PixSize * x; }
    BYTE* PixelPtr(long x, long y) const { return m_pBits + PixelOffset(x, y); }

    void FillWithByte(unsigned char b);
    // n == 1 fills with data[0]; otherwise writes the first min(PixSize(), n) bytes of data into
    // every pixel and leaves the pixel's further bytes alone.
    void FillWithData(const unsigned char* data, int n);
    void FillWithRGBTRIPLE(const RGBTRIPLE* color);
    void ZeroBitmapBytes();
    // The rectangle is read as left, top, WIDTH, HEIGHT: its right and bottom fields carry the
    // extent, not coordinates.
    void TrustFillRectWithByte(CRect r, unsigned char b);

    // For 1-byte buffers: replace one value, or zero every value but one.
    void MaskReplace(unsigned char from, unsigned char to);
    void MaskZeroDifferent(unsigned char keep);

    // For 1-byte buffers, b in bytes: zero a border of b all round, or repeat the interior's
    // edge pixels outwards over it.
    void TrustZeroBorders(int b);
    void TrustReplicateBorders(int b);

    // Copies of a C_Image or another buffer, rows unpadded. Cloning a 2-byte buffer gives a
    // 1-byte copy of the first width bytes of each row.
    int Clone(C_Image* src);
    int Clone(C_SimpleImage* src);
    // Pixel size 3 or 2 gives a 24-bit image (2: the two bytes into blue and green, red 0),
    // 1 a mask image.
    int CloneToImage(C_Image* dst);
    // Copies the overlap of src placed at (dstX - srcX, dstY - srcY), converting by kind; 1 when
    // anything was copied.
    int Copy(C_Image* src, long dstX, long dstY, long srcX, long srcY);
    // Copies w bytes of h rows from src's (srcX, srcY) to (dstX, dstY), walking down; -1 for
    // srcX or srcY means the origin, -1 for w or h the whole source extent. Unchecked.
    void TrustCopyMask(C_Image* src, long dstX, long dstY, long srcX, long srcY, long w, long h);

private:
    LONG m_Width = 0;
    LONG m_Height = 0;
    LONG m_AllocSize = 0;
    BYTE* m_pBits = nullptr;
    int m_PixSize = 1;
    C_Helper m_Helper;
};
