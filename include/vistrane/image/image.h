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
// Failures follow the engine's one error contract (README, "When a call fails"): 1 for success,
// 0 for failure with the image as it was (empty after a failed create), a mask argument that is
// not an 8-bit image of this image's size refused, nothing thrown but Serialize's
// CArchiveException. Paint colours and the mask flag survive re-creation.
//
// Before the first image is made the host calls C_Image::CheckBitmapHeaderType() once.

#include <vistrane/blend/blend_modes.h>
#include <vistrane/companion/helper.h>
#include <vistrane/export.h>
#include <vistrane/filter/filter_types.h>
#include <vistrane/image/simple_image.h>
#include <vistrane/mask/color_match.h>
#include <vistrane/mask/fill_queue.h>
#include <vistrane/mask/mask_features.h>
#include <vistrane/platform/archive.h>
#include <vistrane/platform/gdi.h>
#include <vistrane/platform/geometry.h>
#include <vistrane/platform/memory.h>
#include <vistrane/platform/object.h>
#include <vistrane/platform/types.h>
#include <vistrane/xform/free_xform_results.h>

class CDC;

// Every image keeps room for a full colour table of 256 entries, 24-bit images too.
constexpr DWORD COLOR_TABLE_BYTES = 256 * sizeof(RGBQUAD);

// A host's progress callback: rows `done` of `total`; returns 1 to go on, 0 to cancel.
typedef int (*IMAGE_PROGRESS)(void* context, long done, long total);

// Which paint colour an operation uses; every value other than 0 and 1 is the transparent one.
enum PAINT_COLORS {
    PAINT_COLORS_FORE = 0,
    PAINT_COLORS_BACK = 1,
    PAINT_COLORS_TRANSP = 2,
};

struct S_SortPalData;
struct S_CalcSortError;
struct S_OneUserColorOper;
struct S_CalcColorError;

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

    static DWORD OffsetImageOnMap() { return m_SizeOfBitmapInfoHeader + COLOR_TABLE_BYTES; }
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
    // Selects this image's palette into the device and returns the palette selected before;
    // null, with nothing selected, for a 24-bit image or a missing device.
    CPalette* SelectPalette(CDC* dc, int forceBackground);
    // Selects `old` back when it is not null.
    static void RestorePalette(CDC* dc, CPalette* old, int forceBackground);

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
    void SetForeTrueColor(unsigned long c) { m_PaintColors.colorRef[PAINT_COLORS_FORE] = c; }
    void SetBackTrueColor(unsigned long c) { m_PaintColors.colorRef[PAINT_COLORS_BACK] = c; }
    void SetTranspTrueColor(unsigned long c) { m_PaintColors.colorRef[PAINT_COLORS_TRANSP] = c; }
    unsigned long GetForeTrueColor() const { return m_PaintColors.colorRef[PAINT_COLORS_FORE]; }
    unsigned long GetBackTrueColor() const { return m_PaintColors.colorRef[PAINT_COLORS_BACK]; }
    unsigned long GetTranspTrueColor() const { return m_PaintColors.colorRef[PAINT_COLORS_TRANSP]; }
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

    // ---- Blits between images --------------------------------------------------------------

    // Device blits: both bitmaps are selected into memory devices and the device copies with
    // the raster operation `rop`. An 8-bit destination's palette is selected into both devices,
    // so indices between palette images are copied unchanged. 0 when a device, bitmap or
    // palette cannot be had, when either image is empty, or when the device blit fails.
    int BitBlt(long x, long y, long width, long height, C_Image* source, long sourceX, long sourceY,
               DWORD rop);
    // Stretch mode 3 (COLORONCOLOR): the rows and columns a reduction eliminates are deleted.
    int StretchBlt(long x, long y, long width, long height, C_Image* source, long sourceX,
                   long sourceY, long sourceWidth, long sourceHeight, DWORD rop);
    // stretching 0: BitBlt (source extents unused); 1: StretchBlt.
    int CommonBlt(long x, long y, long width, long height, C_Image* source, long sourceX,
                  long sourceY, long sourceWidth, long sourceHeight, DWORD rop, int stretching);
    // The blits for masks: no palette selection. StretchMask reduces with stretch mode 1
    // (BLACKONWHITE, eliminated pixels ANDed); a source extent of -1 means the source's own.
    int BltMask(long x, long y, long width, long height, C_Image* source, long sourceX,
                long sourceY, DWORD rop);
    int StretchMask(long x, long y, long width, long height, C_Image* source, long sourceX,
                    long sourceY, long sourceWidth, long sourceHeight, DWORD rop);
    // Copies the source from (sourceX, sourceY) to its right and bottom edges onto (x, y),
    // clipped to both images and to width x height. An 8-bit source into a 24-bit image goes
    // through the source's colour table; a 24-bit source into an 8-bit image copies nothing.
    // With `transparent` set, source pixels equal to the source's transparent colour (its
    // transparent index for an 8-bit source, GetTranspColorRef for a 24-bit one) leave the
    // destination as it is.
    void DibBlt(long x, long y, long width, long height, C_Image* source, long sourceX,
                long sourceY, int transparent);

    // ---- Selection masks ----------------------------------------------------------------------
    // A mask is an 8-bit image with the grey colour table; each byte is the selection's opacity
    // (0 not selected, 255 fully). The whole-buffer operations below walk NBytesImage() bytes,
    // padding included, and trust their caller: this image has a bitmap and `other` a buffer at
    // least as large. They are bitwise: MaskAnd of 200 and 100 is 64.

    int IsSelectionMask() const { return IsMask(); }
    void MaskAnd(C_Image* other);
    void MaskAndNot(C_Image* other);
    void MaskOr(C_Image* other);
    void MaskOrNot(C_Image* other);
    void MaskXor(C_Image* other);
    void MaskInvert();
    // Copies other's whole buffer over this one.
    void MaskCopy(C_Image* other);
    // Clears the first k bytes of this buffer, k the number of non-zero bytes of other; kept
    // exactly so, whatever the selection's shape.
    void MaskAndNotLogical(C_Image* other);
    void MaskReplace(unsigned char from, unsigned char to);
    // from becomes to, every other byte `other`.
    void MaskReplace(unsigned char from, unsigned char to, unsigned char other);
    void MaskZeroIfDifferent(unsigned char keep);

    // Over the width x height pixels only. 0 without a bitmap or when IsMask() is 0.
    // byte <= t becomes 0, else 255; returns the count of 255s.
    long ThresholdMask(unsigned char t);
    // byte < t becomes 0; the rest become 255 when `set` (else stay); returns how many passed.
    long ThresholdMaskGreaterOrEqual(unsigned char t, int set);

    // Fill a rectangle (right and bottom exclusive) or the ellipse in it with `value`, through
    // a drawing device. 1 on success (MaskOval: the device's ellipse result), 0 when a device
    // or the bitmap cannot be had.
    int MaskRect(CRect r, unsigned char value);
    int MaskOval(CRect r, unsigned char value);

    // The first byte equal to value in memory order (bottom row first); 1 when found, else 0
    // with pt untouched. 0 for an empty or true-colour image.
    int FindSelPoint(unsigned char value, CPoint* pt);
    // The bounds of every non-zero byte (value is not consulted), right and bottom exclusive;
    // 0 with (0, 0, 1, 1) when nothing is selected, 0 with rect untouched for an empty or
    // true-colour image.
    int FindMinMaxSelPoints(unsigned char value, CRect* rect);

    // Statistics: the dimensions always; with nothing selected only m_NSelected (0) besides.
    void MaskExtractFeatures(S_MaskFeatures* f);
    // Stretches the selected bytes linearly onto minOpacity..maxOpacity; returns the number of
    // non-zero bytes afterwards, 0 when this is not a mask.
    long MaskScaleOpacity(int maxOpacity, int minOpacity);
    // absolute: every selected byte becomes value's low byte; else value is a percentage,
    // rounded half up and capped at 255. Nothing when this is not a mask.
    void ChangeMaskOpacity(int value, int absolute);
    void ChangeGlobalOpacity(unsigned char opacity) { m_GlobalOpacity = opacity; }
    unsigned char GetGlobalOpacity() const { return m_GlobalOpacity; }

    // Softens the mask's hard edges: a pixel whose 3 x 3 neighbourhood is not uniform becomes
    // the rounded mean of it; inside and outside pixels stay. 0 when this is not a mask or
    // memory is short (nothing changed).
    int MaskAntiAlias();

    // ---- Shapes ------------------------------------------------------------------------------
    // Shapes drawn with the drawing device in one of the paint colours: kind 0 rectangle, 1
    // rounded rectangle (corner ellipse e x e, e = min(width / 4, height / 4)), 2 ellipse; the
    // pen of penWidth is centred on the outline, right and bottom are exclusive; unfilled shapes
    // leave their inside alone. With softEdge non-zero on a true-colour or grey-mask image, the
    // same shape is first drawn into a temporary mask, anti-aliased (MaskAntiAlias) and painted
    // through it at full opacity in the normal mode (PaintMasked), then the hard shape is drawn
    // over it: the result is the hard shape with a one-pixel fringe of intermediate colour
    // beside every edge it paints (inside a hollow outline too). Other palette images, short
    // memory or blend tables that are not built (glb_CreateImageLUTs) give the hard shape alone.
    // Like PaintMasked, the soft edge leaves the normal fill kernel selected.

    void PaintEllipseOrRect(int kind, CRect r, PAINT_COLORS color, int penWidth, int filled,
                            int softEdge);
    void PaintRectangle(CRect r, PAINT_COLORS color, int penWidth, int filled, int softEdge);
    void PaintRoundRect(CRect r, PAINT_COLORS color, int penWidth, int filled, int softEdge);
    void PaintEllipse(CRect r, PAINT_COLORS color, int penWidth, int filled, int softEdge);
    // Direct fills without the device. Width or height -1: the whole image. x and y are clamped
    // into the image first, so a rectangle partly left of or above it shifts in rather than
    // being clipped: (-5, 0, 10, 10) fills columns 0..9.
    void PaintRectNoGDI(PAINT_COLORS color, long x, long y, long width, long height);
    void PaintRectNoGDIPal(unsigned char index, long x, long y, long width, long height);
    void PaintRectNoGDITrue(unsigned long color, long x, long y, long width, long height);

    // ---- Selection by colour -------------------------------------------------------------------
    // The test of colour similarity (see mask/color_match.h) and the selections built on it.
    // Fills write a non-zero `value` into the 4-connected candidates (unselected pixels whose
    // colour matches); diagonal contact never connects.

    // Fills data for the reference colour (blue, green, red bytes).
    void PrepareColorMatch(S_ColorMatchData* data, unsigned char* reference, COLOR_MATCH_MODE mode,
                           int tolerance);
    // 1 when the colour (blue, green, red) matches.
    int MatchTrueColor(unsigned char* pixel, S_ColorMatchData* data);
    // On a mask: clears it and sets to value the region of pixels alike the source's seed pixel
    // 4-connected to the seed; the seed itself is always set. 0, with the mask unchanged, when
    // the seed lies outside, the sizes differ, this is not an 8-bit image, the source is empty
    // or memory is short.
    int MaskFill(C_Image* source, CPoint seed, COLOR_MATCH_MODE mode, int tolerance,
                 unsigned char value);
    // On a mask: grows the selection, at the truncated mean opacity of its edge pixels, into
    // the unselected pixels 4-connected to it through pixels alike the mean colour of the whole
    // selection. Refused (0) as MaskFill.
    int MaskGrowMasked(C_Image* source, COLOR_MATCH_MODE mode, int tolerance);
    // On the source: every pixel alike `colour` (a COLORREF) sets its mask byte to matchValue;
    // the others get otherValue when writeOthers, else stay. Nothing when the sizes differ.
    void MaskAlikePixelsOnMask(C_Image* mask, unsigned long colour, unsigned char matchValue,
                               unsigned char otherValue, int writeOthers, int tolerance,
                               COLOR_MATCH_MODE mode);
    // On a mask: the generational flood for callers that bring their own queue. The first
    // nSeeds entries hold the seeds; `work` is a (width + 2) x (height + 2) 1-byte buffer whose
    // frame is zero and whose interior is zero at every unselected pixel; the queue holds
    // `capacity` (at least width x height) entries. Nothing is done when the source's size, the
    // work map's size or frame, the capacity, or a seed (not the same interior pixel of work
    // map and mask) would let the flood reach outside these buffers.
    void MaskExpandColorMatching(S_TwoPointers* queue, long nSeeds, long capacity, C_Image* source,
                                 C_SimpleImage* work, S_ColorMatchData* data, unsigned char value);

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

    // ---- Progress of long operations -------------------------------------------------------

    // FilterImage, the colour operations on pixels (ColorOperation, PixelColorOperation,
    // LUTColorOperation, TurnGrayNeg), the filtered resampling (Resample, CreateResampling:
    // rows of the result; the callback of the source), rotation by any angle (the rows and
    // columns of its three shears) and MaskFreeXForm (the rows of the box; the callback of the
    // mask it is called on, and FREEXFORM_NOTHING for a cancel) call the callback between bands of
    // rows with the rows done and the rows in all, ending with done = total. When it returns 0 the
    // operation stops, leaves the image as it was and returns 0 (members without a result just
    // return; CreateResampling, a create, leaves its image empty). The callback is this image's
    // own; null, the default, reports nothing and costs nothing. Copies and TransformInto do not
    // carry it over.
    void SetProgressCallback(IMAGE_PROGRESS callback, void* context);
    IMAGE_PROGRESS GetProgressCallback() const { return m_Progress; }
    void* GetProgressContext() const { return m_ProgressContext; }

    // ---- Geometric transforms: resampling and resizing -------------------------------------

    // Exactly DIBResize(size).
    int Resize(CSize size);
    // Nearest-neighbour resize in place, every format; 0 (image unchanged) when the new image
    // cannot be made.
    int DIBResize(CSize size);
    // Filtered resize in place for images whose bytes are intensities (24-bit and grey):
    // linear interpolation along an enlarged axis, box averaging along a reduced one. Other
    // images are resized by nearest neighbour. 0 (image unchanged) on lack of memory.
    int Resample(CSize size);
    // Resizes to fit maxWidth x maxHeight keeping the proportions; 1 without change when the
    // image already fits.
    int DIBResizeKeepRatio(long maxWidth, long maxHeight);
    // This image made with source's format and colours, of `size`, filled from the whole of
    // source by nearest neighbour; 0 when it cannot be made.
    int DIBCreateResizing(CSize size, C_Image* source);
    // Fills the whole of this image from the whole of source by nearest neighbour; the two
    // must have the same pixel format.
    void DIBResizeFrom(C_Image* source);
    // This image made from the source rectangle (x, y, width, height), at `size`. Sources whose
    // bytes are intensities are resampled by the filtered rule of Resample, into the present
    // bitmap when it already has the size and the source's depth; others go through
    // CreateResizing. Copies the source's paint colours. 0, with the image empty, on failure.
    // The rectangle must lie inside the source.
    int CreateResampling(long x, long y, long width, long height, C_Image* source, CSize size);
    // This image made with the source's format and colours, at `size`, filled from the source
    // rectangle by the device's StretchBlt (deleting eliminated rows and columns). Returns the
    // StretchBlt result; 0, with the image empty, when the image or the blit cannot be had.
    int CreateResizing(long x, long y, long width, long height, C_Image* source, CSize size);

    // ---- Geometric transforms: rotation and flips ------------------------------------------

    // Quarter turns clockwise and counter-clockwise; 0 (unchanged) on lack of memory.
    int RotateRight();
    int RotateLeft();
    // Turns clockwise by whole degrees (or a double): quarter turns and a half turn exactly,
    // the rest of at most 45 degrees by three shears with 12-bit blending (24-bit and grey
    // images) or by copying indices (palette images). What the turn uncovers takes the
    // background paint colour; the canvas grows to hold the sheared picture.
    int Rotate1To359(int degrees);
    int Rotate1To359Double(double degrees);
    // The three-shear rotation itself, by radians (positive turns counter-clockwise), or by
    // -degrees converted to radians.
    int InternalRotate(int degrees);
    int InternalRotatePaletteImage(int degrees);
    int InternalRotateDouble(double radians);
    int InternalRotateDoubleMask(double radians);
    int InternalRotatePaletteImageDouble(double radians);
    // Mirror in place.
    void FlipHorizontal();
    void FlipVertical();

    // ---- Geometric transforms: crop and borders --------------------------------------------

    // Keeps the part of the image inside rect (right and bottom exclusive). 0, image unchanged,
    // when rect misses the image or memory is short.
    int CropTo(CRect rect);
    // Grows the canvas by the given margins, filled with the background paint colour, the
    // picture at (left, top). Negative margins are accepted and cut the picture instead. 0,
    // image unchanged, when the new size is below 1 x 1 or memory is short.
    int AddBorders(long left, long top, long right, long bottom);

    // ---- Geometric transforms: seamless pattern --------------------------------------------

    // Turns the picture into a tile that repeats without seams: a band of percent per cent of
    // the height (rounded to nearest) along the bottom is cross-faded into the top rows, one of
    // percent per cent of the width along the right edge into the left columns, and the tile
    // keeps the top-left (width - band) x (height - band) pixels. 24-bit and grey images only;
    // needs glb_MultiplyLUT. 0, image unchanged, for other images, when the tables are not
    // built, or when a band rounds to 0 or reaches the opposite edge; otherwise the result of
    // the final CropTo (0 there means memory was short after the bands were faded).
    int SeamlessPattern(int percent);

    // ---- Geometric transforms: four-corner free transform ----------------------------------

    // Maps the source rectangle of sourceMask (and of sourceImage when given) onto the
    // quadrilateral topLeft, topRight, bottomRight, bottomLeft: the destinations of the
    // rectangle's corners. Each pixel inside the quadrilateral takes the source position whose
    // ratios of perpendicular distances to opposite edges it shares, so a pixel on the left edge
    // reads the rectangle's left column. nearest non-zero copies the nearest source pixel; zero
    // interpolates four pixels in whole percent, rounded.
    // The results cover the bounding box of the corners (right and bottom exclusive). Without
    // sourceImage this image becomes a mask of sourceMask's size holding the result at the box's
    // place (this may be sourceMask itself). With sourceImage this image becomes the box-sized
    // mask and destImage the box-sized image, in sourceImage's format and colours.
    // sourceRect (right and bottom exclusive, clipped to the sources) defaults to the bounds of
    // the mask's selection. Nothing changes unless the result is FREEXFORM_OK.
    FREEXFORM_RESULTS MaskFreeXForm(CPoint topLeft, CPoint topRight, CPoint bottomRight,
                                    CPoint bottomLeft, C_Image* sourceMask, C_Image* destImage,
                                    C_Image* sourceImage, int nearest, CRect* sourceRect);

    // ---- Blending (the kernels read the painting state below) ------------------------------
    //
    // A selector stores one kernel; a caller then points the painting state at a destination
    // pixel, sets the source colour, calls the kernel through m_pBlendColors and lays the result
    // over the pixel with the stored merge step. The glb_ tables must be built.

    using BlendKernel = void (C_Image::*)();
    using MergeStep = void (C_Image::*)(unsigned char opacity);

    // True for the filter modes 21..24 and smudge (25): their source colour comes from the
    // neighbourhood of the pixel, not from the caller.
    static int IsFilterMode(BLENDMODES mode);
    // The fill and replace tools' selector. An option of exactly 100 is stored as 50 (a 100 %
    // dissolve of these tools behaves as 50 %). 24-bit: modes 1..20; grey-editable 8-bit:
    // modes 1..14; other 8-bit: dissolve only; everything else normal.
    void FigureFillReplaceBlendingModeFunction(BLENDMODES mode, int option);
    // The filters' selector; the option is stored unchanged. 24-bit: modes 1..10 and 13..18;
    // grey-editable 8-bit: 1..10, 13 and 14; everything else normal; other 8-bit images keep the
    // kernel they had.
    void InitImageFilterBlend(BLENDMODES mode, int option);
    // The painting selector: as the fill selector, with the filter kernels for 21..24 and the
    // smudge kernels for 25 (on 24-bit and grey-editable images), and the same 100 -> 50 rule.
    void SetPaintBlendingModeFunction(BLENDMODES mode, int option);

    // The source colour of the kernels: on a 24-bit image blue, green, red of the COLORREF c; on
    // an 8-bit image the index or grey level in c's low byte, the byte a mask kernel uses.
    void SetBlendSourceColor(unsigned long c);
    void SetBlendDestination(unsigned char* pixel) { m_pBlendDest = pixel; }
    const unsigned char* BlendResult() const { return m_BlendResult; }
    // The filter modes' neighbourhood: n (at most 49) tap rows with their weights, read at the
    // byte offset `sample`; see BlendColorsFilter.
    void SetBlendFilterTaps(const unsigned char* const* rows, const int* weights, int n,
                            int perChannel, int divisor, int offset);
    void SetBlendFilterSample(long sample) { m_FilterSample = sample; }
    // Smudge operands: the carried colour and the pixel under the dab (3 bytes, or 1 for a
    // mask), and the strength 0..255.
    void SetBlendSmudge(unsigned char* carried, const unsigned char* pixel, int strength);

    // True-colour kernels: blue, green, red of the source colour with the destination pixel.
    void BlendColorsNormal();
    void BlendColorsDissolve();
    void BlendColorsMultiply();
    void BlendColorsScreen();
    void BlendColorsOverlay();
    void BlendColorsSoftLight();
    void BlendColorsHardLight();
    void BlendColorsColorDodge();
    void BlendColorsColorBurn();
    void BlendColorsDarken();
    void BlendColorsLighten();
    void BlendColorsRGBDarken();
    void BlendColorsRGBLighten();
    void BlendColorsDifference();
    void BlendColorsExclusion();
    void BlendColorsHue();
    void BlendColorsSaturation();
    void BlendColorsColor();
    void BlendColorsLuminosity();
    void BlendColorsSaturate();
    void BlendColorsDeSaturate();
    void BlendColorsFilter();
    void BlendColorsSmudge();
    // Mask kernels: the first source byte with the single destination byte.
    void BlendColorsNormalMask();
    void BlendColorsDissolveMask();
    void BlendColorsMultiplyMask();
    void BlendColorsScreenMask();
    void BlendColorsOverlayMask();
    void BlendColorsSoftLightMask();
    void BlendColorsHardLightMask();
    void BlendColorsColorDodgeMask();
    void BlendColorsColorBurnMask();
    void BlendColorsDarkenMask();
    void BlendColorsLightenMask();
    void BlendColorsRGBDarkenMask();
    void BlendColorsRGBLightenMask();
    void BlendColorsDifferenceMask();
    void BlendColorsExclusionMask();
    void BlendColorsFilterMask();
    void BlendColorsSmudgeMask();

    // The merge steps: lay the result over the destination pixel with an opacity a. True colour
    // and grey bytes become glb_MultiplyLUT[255 - a][old] + glb_MultiplyLUT[a][new]; palette
    // indices cannot be mixed, so a palette pixel takes the result index where a > 127.
    void OpaqueMergeTrue(unsigned char opacity);
    void OpaqueMergeCanEditTrue(unsigned char opacity);
    void OpaqueMergePal(unsigned char opacity);

    // Paints the paint colour `color` in `mode` (the fill selector's choice, option as there)
    // at `opacity`, scaled per pixel by `mask` (an 8-bit image of this image's size; null: full
    // strength), over `rect` clipped to the image (null: the whole image). 0 without a bitmap,
    // with a mask of another size, or with the blend tables not built.
    int PaintMasked(PAINT_COLORS color, BLENDMODES mode, int option, unsigned char opacity,
                    C_Image* mask, const CRect* rect);

    // ---- Brush tips: members of an n x n 8-bit tip image ------------------------------------

    // Sets the width x height bytes whose top-left pixel is (x, y) to the low byte of value,
    // rows walking down from y. No clipping.
    void PaintMaskRect(long x, long y, long width, long height, int value);
    void PaintSquareBrushMask(int n);
    // A bar of thickness 2 * (n / 4) + 1 across (or down) the tip, centred by (n - t) / 2.
    void PaintHorizontalBrushMask(int n);
    void PaintVerticalBrushMask(int n);
    // A diagonal band n / 4 pixels either side of column r (direction 0) or n - 1 - r in row r.
    void PaintSlashBrushMask(int n, int direction);
    void PaintBackSlashBrushMask(int n);
    void PaintForeSlashBrushMask(int n);
    // Dims each non-zero byte at random: r = Random0Max(100), the first of the four (threshold,
    // value) pairs whose threshold is >= r gives the new byte. Tips up to 5 x 5 may then have
    // their centre set to the first pair's value (when Random0Max(2) is non-zero).
    void RandomBrushMaskDim(int n, const unsigned char* pairs);
    // The process-wide brush and wet-edge curves, 256 bytes each.
    static void GetBrushLUT(unsigned char* table);
    static void SetBrushLUT(const unsigned char* table);
    static void GetWetLUT(unsigned char* table);
    static void SetWetLUT(const unsigned char* table);

    // ---- Palette operations and statistics ------------------------------------------------

    // 24-bit: *count = distinct colours (a 2 MiB bit set per call; 0 when it cannot be had).
    // 8-bit: usage (256 entries, required) gets the pixels per index and *count the indices
    // in use.
    int CountColors(unsigned long* count, unsigned long* usage);
    // 8-bit images: every pixel byte b becomes table[b].
    void ReIndexPixelsToPalette(unsigned char* table);
    // 8-bit images: sorts the colour table (C_Helper::SortRGBQs) and re-indexes the pixels so
    // the picture is unchanged. 0 for 24-bit images or when the sort fails.
    int SortPalColors(S_SortPalData* data, S_CalcSortError* error);
    // 8-bit images: deletes entries (see S_DelPalData); pixels of a deleted entry take the
    // nearest remaining colour, the others keep their colour under their new index.
    void DelPalColors(S_DelPalData* data);
    // 8-bit images: exchanges the colour-table entries of two paint colours (see S_SwapPalData).
    void SwapPalColors(S_SwapPalData* data);
    // The average colour (0x00BBGGRR) of the pixels where mask is null or non-zero; 0 when none.
    unsigned long CalcAverageColor(C_Image* mask);
    // Histograms of the pixels where mask is null or non-zero; 8-bit images count their palette
    // colour's red in the blue table too.
    void ComputeHistogram(S_Histogram* histogram, C_Image* mask);

    // ---- Neighbourhood filters -------------------------------------------------------------

    // Filters the width x height rectangle at (x, y) in place with a 7 x 7 kernel (row-major,
    // (3, 3) on the target; zero weights take no part): sum / divisor (truncating; divisor
    // must not be 0) + offset, clamped, blended in `mode` (InitImageFilterBlend) and laid over
    // the pixel at opacity * mask / 255. Samples come from a bordered copy that repeats the
    // rectangle's own edges: `buffer` from PrepareFilterBuffer with at least 3 pixels of border,
    // the target (x, y) at its pixel (bufferX, bufferY); or, when null, a temporary one.
    // 0 for images that cannot be edited as true colour or when the temporary cannot be made.
    int FilterImage(BLENDMODES mode, unsigned char opacity, int blendOption, long x, long y,
                    long width, long height, C_Image* mask, int* kernel, int offset, int divisor,
                    FILTER_TYPE type, C_Image* buffer, int bufferX, int bufferY);
    // Called on an empty buffer: makes it source's format at (width + 2 borderX) x (height +
    // 2 borderY) and fills it with RefreshFilterBuffer. 0 when it cannot be made.
    int PrepareFilterBuffer(long borderX, long borderY, long x, long y, long width, long height,
                            C_Image* source);
    void RefreshFilterBuffer(long borderX, long borderY, long x, long y, long width, long height,
                             C_Image* source);

    // ---- Colour operations -----------------------------------------------------------------
    //
    // On palette images they change the colour table only (masks ignored); on 24-bit and grey
    // images the pixels, under the mask rule: mask byte 0 leaves a pixel, 255 replaces it, others
    // mix old and new through glb_MultiplyLUT. The glb_ tables must be built for masked calls.

    // min, max and def each point to 3 ints; parameters an operation does not take are 0..0.
    static void GetColorOperParams(COLOROPER_TYPE type, int* min, int* max, int* def);
    void ColorOperation(COLOROPER_TYPE type, int* params, C_Image* mask);
    void PixelColorOperation(COLOROPER_TYPE type, int* params, C_Image* mask);
    // Three 256-byte tables; grey images use only red.
    void LUTColorOperation(unsigned char* red, unsigned char* green, unsigned char* blue,
                           C_Image* mask);
    int UserColorOperation(S_OneUserColorOper* oper, S_CalcColorError* error, C_Image* mask);
    int TurnGrayNeg(int gray, C_Image* mask);
    int TurnGrayScale(C_Image* mask) { return TurnGrayNeg(1, mask); }
    int TurnNegative(C_Image* mask) { return TurnGrayNeg(0, mask); }
    // Negative where the mask is null or exactly 255; other images invert their colour table.
    int TurnRGBNeg(C_Image* mask);
    // Makes the image an 8-bit grey image. 0 when the new bitmap cannot be made.
    int TurnGrayPalette();
    // 24-bit only, pixels with no mask or mask byte 255 only.
    void ColorizeMasked(COLORIZE_METHOD method, unsigned char a, unsigned char b, C_Image* mask);
    void VerticalGradient(COLORIZE_METHOD method, unsigned char a, unsigned char b);
    void VerticalHSLGradient(unsigned char hue, unsigned char saturation);
    void VerticalYUVGradient(unsigned char u, unsigned char v);
    void SeparateChannels(C_Image* first, C_Image* second, C_Image* third, COLOR_CHANNELS channels);
    void CombineChannels(C_Image* first, C_Image* second, C_Image* third, COLOR_CHANNELS channels);
    void RGB2BRG();

    // The painting state of the operation under way, read by the kernels. Public so that the
    // painting tools' loops can call through the stored pointers.
    BLENDMODES m_BlendMode = BLENDMODE_NORMAL;
    int m_BlendModeOption = 0;
    unsigned char m_GlobalOpacity = 255;
    BlendKernel m_pBlendColors = &C_Image::BlendColorsNormal;
    MergeStep m_pOpaqueMerge = &C_Image::OpaqueMergeTrue;

  private:
    static CObject* CreateObject();
    int LoadBitmapFileBlock(const BYTE* block, unsigned long blockBytes, bool blockBytesKnown);
    int CommonRotate(int right);
    int ResampleExpand(long x, long y, long width, long height, C_Image* target, CSize size);
    int ResampleX(long x, long y, long width, long height, C_Image* target, CSize size);
    int ResampleY(long x, long y, long width, long height, C_Image* target, CSize size);
    int ResampleXY(long x, long y, long width, long height, C_Image* target, CSize size);
    int RunResampleWorker(long x, long y, long width, long height, C_Image* target, CSize size);

    HANDLE m_hMap = 0;
    void* m_pMapBuffer = nullptr;
    CBitmap m_Bitmap;
    CPalette m_Palette;
    // The three paint colours, indexed by PAINT_COLORS: palette indices for 8-bit images and
    // COLORREFs for 24-bit ones. Copied as one whenever an image hands its colours on.
    struct PaintColorSet {
        unsigned char index[3] = {0, 0, 0};
        unsigned long colorRef[3] = {0x00FFFFFF, 0, 0};
    };
    PaintColorSet m_PaintColors;
    C_Helper m_Helper;
    int m_BehavesLikeMask = 0;
    IMAGE_PROGRESS m_Progress = nullptr;
    void* m_ProgressContext = nullptr;
    // Painting state, continued: the kernels' operands. The source colour doubles as the
    // filter colour that FilterImage carries from pixel to pixel; a new image starts it black.
    unsigned char m_BlendResult[3] = {0, 0, 0};
    unsigned char* m_pBlendDest = nullptr;
    unsigned char m_BlendSource[3] = {0, 0, 0};
    int m_SmudgeStrength = 0;
    unsigned char* m_pSmudgeColor = nullptr;
    const unsigned char* m_pSmudgePixel = nullptr;
    int m_FilterNTaps = 0;
    const unsigned char* m_FilterTapRows[FILTER_KERNEL_TAPS] = {};
    int m_FilterTapWeights[FILTER_KERNEL_TAPS] = {};
    long m_FilterSample = 0;
    int m_FilterPerChannel = 1;
    int m_FilterDivisor = 1;
    int m_FilterOffset = 0;

    void RunTrueColorRule(int mode);
    void RunGreyRule(int mode);
    void SelectBlendKernel(int mode);
};
