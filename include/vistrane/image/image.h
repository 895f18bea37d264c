#pragma once

// C_Image: the library's image, and the type of every selection mask.
//
// An image is a device-independent bitmap of 8 bits (palette indices, or grey levels for a mask)
// or 24 bits (blue, green, red) per pixel, held in one block of shareable memory: a 40-byte
// BITMAPINFOHEADER, room for 256 RGBQUAD colour-table entries (also in 24-bit images), then the
// pixel rows, each padded to a multiple of four bytes and stored bottom-up. y = 0 is the top row
// of the picture and the last row in memory. A bitmap section is made over the same memory, so
// a host can draw the image, or hand its section to a compositor, while the engine edits it.
//
// An image also carries a logical palette (8-bit images), three paint colours (foreground,
// background, transparent; as palette indices for 8-bit images and as COLORREFs for 24-bit ones),
// a behaves-like-mask flag, and the state of the painting operation under way.
//
// Calls return 1 for success and 0 for failure (memory, or an unsuitable image or argument);
// nothing throws out of the library except Serialize, which raises CArchiveException for the
// host's archive code as archives expect. Every create first releases what the image held, so a
// failed create leaves it empty. Operations that change the size build a temporary and take it
// over (TransformInto) only on success. Paint colours and the mask flag survive re-creation.
//
// Before the first image is made the host calls C_Image::CheckBitmapHeaderType() once.

#include <vistrane/companion/helper.h>
#include <vistrane/export.h>
#include <vistrane/platform/archive.h>
#include <vistrane/platform/gdi.h>
#include <vistrane/platform/geometry.h>
#include <vistrane/platform/memory.h>
#include <vistrane/platform/object.h>
#include <vistrane/platform/types.h>

// Which paint colour an operation uses; every value other than 0 and 1 is the transparent one.
enum PAINT_COLORS {
    PAINT_COLORS_FORE = 0,
    PAINT_COLORS_BACK = 1,
    PAINT_COLORS_TRANSP = 2,
};

class VISTRANE_API C_Image : public CObject {
public:
    C_Image();
    ~C_Image() override;
    C_Image(const C_Image&) = delete;
    // A shallow member copy, section and GDI handles included: afterwards both images name the
    // same bitmap, and the caller must see that only one of them destroys it.
    C_Image& operator=(const C_Image& other);

    static const CRuntimeClass classC_Image;
    const CRuntimeClass* GetRuntimeClass() const override;

    // ---- Header kind (host start-up) -------------------------------------------------------

    // Sets the header size to 40 and the version-5 flag to 0; returns 0.
    static int CheckBitmapHeaderType();
    static void InitV5Header();
    static unsigned long GetRenderingIntent();
    static void SetRenderingIntent(unsigned long intent);

    static DWORD m_SizeOfBitmapInfoHeader;
    static int m_UseV5HeaderType;

    // ---- Creation and destruction ----------------------------------------------------------

    // 24 bits when trueColor is set, else 8 with nColors (at most 256) entries copied from
    // colors (may be null). The new image is all zero. 0 for a width or height below 1, a size
    // whose bytes do not fit the 32-bit size fields, or lack of memory: the image is then empty.
    int Create(long width, long height, int trueColor, const RGBQUAD* colors,
               unsigned long nColors);
    int CreateDibSection();
    // An 8-bit mask with the grey colour table; sets the behaves-like-mask flag.
    int CreateMask(long width, long height);
    // Makes this image a mask the size of src, with src's pixels when copyContents is set;
    // re-uses the present bitmap unless forceNew is set or it does not fit.
    int CreateMask(C_Image* src, int forceNew, int copyContents);
    int CheckNeedsCreateMask(C_Image* src, int copyContents);
    void SelfDestruct();
    void DestroyBmp();
    void DestroyMap();
    void FreePalette();
    // This image made with src's size, format, colours and paint colours, and src's pixels.
    int Clone(C_Image* src);
    // Copies src's pixels, paint colours and (8-bit) colour table; 0 unless both images have
    // bitmaps of the same size and depth.
    int Copy(C_Image* src);
    // Makes this image empty with source's format, colour table and paint colours, of `size`
    // or of the source's size when size is null.
    int CreateCloneColors(C_Image* source, CSize* size);
    // Takes over other's bitmap (other is left empty), palette, paint colours and mask flag;
    // deletes other when deleteOther is non-zero (other must then come from new).
    void TransformInto(C_Image* other, int deleteOther);

    int HasImage() const { return m_hMap != 0 ? 1 : 0; }
    void Dimensions(long* width, long* height) const;
    void Dimensions(CPoint* size) const;
    void Dimensions(CSize* size) const;
    // (0, 0, width, height).
    void Rectangle(CRect* rect) const;
    int SameDimensionsAs(const C_Image* other) const;

    // ---- Layout of the map buffer ----------------------------------------------------------

    static DWORD OffsetImageOnMap() { return m_SizeOfBitmapInfoHeader + 1024; }
    BITMAPINFO* BitmapInfo() const { return static_cast<BITMAPINFO*>(m_pMapBuffer); }
    BITMAPINFOHEADER* BitmapInfoHeader() const {
        return static_cast<BITMAPINFOHEADER*>(m_pMapBuffer);
    }
    RGBQUAD* RGBQs() const {
        return reinterpret_cast<RGBQUAD*>(static_cast<BYTE*>(m_pMapBuffer) +
                                          m_SizeOfBitmapInfoHeader);
    }
    BYTE* BitmapBytes() const { return static_cast<BYTE*>(m_pMapBuffer) + OffsetImageOnMap(); }
    HANDLE MapHandle() const { return m_hMap; }

    // Header fields; 0 for an image without a bitmap.
    long Width() const;
    long Height() const;
    WORD BitCount() const;
    unsigned long NColors() const;
    int IsTrueColor() const { return BitCount() == 24 ? 1 : 0; }
    long NBytesScan() const;
    unsigned long NBytesImage() const;
    // Unchecked: x * bytes per pixel - NBytesScan() * (y + 1) + NBytesImage().
    long PixelOffset(long x, long y) const;
    BYTE* PixelPtr(long x, long y) const { return BitmapBytes() + PixelOffset(x, y); }
    // The inverse of PixelOffset; x is a byte column (the pixel column only for 8-bit images).
    CPoint PixelCoords(long offset) const;

    // ---- Colour table and palette ----------------------------------------------------------

    // Sets both colour counts (8-bit images, n at most 256).
    void SetNColors(unsigned long n);
    // Installs n entries (8-bit images, n at most 256); with clampPixels, shrinking the table
    // turns every index beyond it into the last entry. Renews the palette.
    void SetRGBQs(const RGBQUAD* colors, unsigned long n, int clampPixels);
    void SetRGBQs(C_Image* src);
    // Copies n entries out (all NColors() when n is 0).
    void CopyRGBQs(RGBQUAD* dst, unsigned long n) const;
    static void FillGrayColorsIntoRGBQs(RGBQUAD* dst);
    // Writes the grey table into an 8-bit image's colour table; the colour count is unchanged.
    void FillGrayColors();
    // Exactly 256 colours, equal word for word to the grey table.
    int HasGrayPalette() const;
    int IsMask() const { return HasGrayPalette(); }
    int BehavesLikeMask() const { return m_BehavesLikeMask; }
    void SetBehavesLikeMask(int behaves) { m_BehavesLikeMask = behaves; }
    int CanEditTrueColor() const { return IsTrueColor() || IsMask() ? 1 : 0; }
    void RenewPalette();
    int CopyPalette(CPalette* dst);
    void UpdateBmpPalette();
    void CopyColorsToBitmap(CBitmap* bitmap);
    // The logical palette of an 8-bit image; null for a 24-bit one.
    CPalette* GetPalette();
    CBitmap* GetBitmap() { return &m_Bitmap; }

    // ---- Paint colours ---------------------------------------------------------------------

    // i when the colour table covers it, else 0.
    unsigned char CheckColorInd(unsigned char i) const;
    unsigned char SetForePalInd(unsigned char i);
    unsigned char SetBackPalInd(unsigned char i);
    unsigned char SetTransPalInd(unsigned char i);
    // The stored index, re-validated (and stored again) against the present colour table.
    unsigned char GetForePalInd();
    unsigned char GetBackPalInd();
    unsigned char GetTransPalInd();
    void CheckColorInds();
    void SetForeTrueColor(unsigned long c) { m_ForeTrueColor = c; }
    void SetBackTrueColor(unsigned long c) { m_BackTrueColor = c; }
    void SetTranspTrueColor(unsigned long c) { m_TranspTrueColor = c; }
    unsigned long GetForeTrueColor() const { return m_ForeTrueColor; }
    unsigned long GetBackTrueColor() const { return m_BackTrueColor; }
    unsigned long GetTranspTrueColor() const { return m_TranspTrueColor; }
    // The COLORREF of entry (i modulo NColors()); 0 for an image without colours.
    unsigned long PaletteEntryColorRef(unsigned long i) const;
    unsigned long GetForeColorRef() const;
    unsigned long GetBackColorRef() const;
    unsigned long GetTranspColorRef() const;
    unsigned char GetPalPaintColor(PAINT_COLORS c);
    unsigned long GetTruePaintColor(PAINT_COLORS c) const;
    unsigned long GetPaintColorColorRef(PAINT_COLORS c);
    // c itself for a 24-bit image; PALETTEINDEX of the nearest entry for an 8-bit one.
    unsigned long GetNearestColorRef(unsigned long c);
    void CopyPaintColors(C_Image* src);

    // ---- Pixel reading and filling ---------------------------------------------------------

    // 0 outside the image.
    unsigned long GetPixelColorRef(long x, long y) const;
    // 0 for a 24-bit image or outside.
    unsigned char GetPixelPalInd(long x, long y) const;
    // Every byte of the pixel rows, padding included.
    void FillBitmapBytes(unsigned char b);
    void ZeroBitmapBytes();
    void FillWithColorPalette(unsigned char i);
    // 8-bit: the nearest entry's index everywhere; 24-bit: c in every pixel, padding untouched.
    void FillWithColorRef(unsigned long c);
    void FillWithPaintColor(PAINT_COLORS c);

    // ---- Interchange: bitmap files in archives, memory blocks and packed-bitmap handles -----

    // Stores or loads by the archive's direction; a failure raises CArchiveException with
    // cause 5 (badIndex).
    void Serialize(CArchive& ar) override;
    // The bitmap file: file header, info header, NColors() entries, pixels. 0 without a bitmap.
    int WriteToArchive(CArchive& ar);
    // Reads what WriteToArchive writes (8-bit images take the colours-used count as written,
    // 0 meaning none). 0 for anything else or a short stream; the image may be half loaded.
    int ReadFromArchive(CArchive& ar);
    // A new block holding the bitmap file, from C_Helper::SafeVirtualAlloc; the caller frees it
    // with SafeVirtualFree.
    int VirtualSerializeSave(BYTE** block);
    // Loads a block in the bitmap-file layout. Re-uses the present bitmap when it has the same
    // width, height and depth. The one-argument form trusts the block to be as long as its
    // header says (as a block from VirtualSerializeSave is); the sized form refuses a block
    // shorter than that. 0 on failure.
    int VirtualSerializeLoad(const BYTE* block);
    int VirtualSerializeLoad(const BYTE* block, unsigned long blockBytes);
    // A packed bitmap of the rectangle (the whole image when null) in a movable global handle
    // that the caller owns: 24 bits for a true-colour image; for an 8-bit one 1 bit up to
    // 2 colours, 4 bits up to 16, else 8. Null for a rectangle not inside the image.
    HGLOBAL MakehDib(CRect* rect);
    // Loads a packed bitmap of 1, 4, 8 or 24 bits (1 and 4 bits become 8-bit images of 2 and
    // 16 colours). 0, with the image empty, for anything else or a handle too short.
    int CreateFromhDib(HGLOBAL dib);
    static BITMAPFILEHEADER* MakeBitmapFileHeader(BITMAPFILEHEADER* header, unsigned long offset,
                                                  unsigned long size);
    // With infoHeader40 set, the layout this library writes (40-byte header, 4-byte colours).
    BITMAPFILEHEADER* MakeOwnBitmapFileHeader(BITMAPFILEHEADER* header, int infoHeader40);

private:
    static CObject* CreateObject();
    int LoadBitmapFileBlock(const BYTE* block, unsigned long blockBytes, bool blockBytesKnown);

    HANDLE m_hMap = 0;
    void* m_pMapBuffer = nullptr;
    CBitmap m_Bitmap;
    CPalette m_Palette;
    unsigned char m_ForePalInd = 0;
    unsigned char m_BackPalInd = 0;
    unsigned char m_TransPalInd = 0;
    unsigned long m_ForeTrueColor = 0x00FFFFFF;
    unsigned long m_BackTrueColor = 0;
    unsigned long m_TranspTrueColor = 0;
    C_Helper m_Helper;
    int m_BehavesLikeMask = 0;
    LONG m_SampleRangeLimit;
};
