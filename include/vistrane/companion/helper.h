#pragma once

// C_Helper: the companion library's utility object. The engine never allocates pixel memory,
// computes row lengths or fills bitmap headers itself; it asks a C_Helper, which every image and
// pixel buffer holds by value and operations also make as a short-lived local. A C_Helper keeps
// no state between calls; the generator behind Random0Max is process-wide.

#include <vistrane/export.h>
#include <vistrane/platform/gdi.h>
#include <vistrane/platform/types.h>

struct S_SortPalData;
struct S_CalcSortError;
struct S_OneUserColorOper;
struct S_CalcColorError;

class VISTRANE_API C_Helper {
  public:
    // Memory. SafeVirtualAlloc returns a new block of `bytes` bytes (contents undefined) or null;
    // SafeVirtualFree releases it (null is accepted) and returns 1.
    void* SafeVirtualAlloc(DWORD bytes);
    int SafeVirtualFree(void* block);

    // A shareable section of `bytes` bytes mapped from offset 0: returns the view and stores the
    // section handle, or returns null and stores 0. The view's bytes read as zero.
    void* AllocSysMapBuffer(HANDLE* section, DWORD bytes);
    // Unmaps the view, closes the section and sets the handle to 0.
    void FreeMapBuffer(HANDLE* section, void* view);

    // Bitmap rows. The length of a row of `width` pixels of `bits` bits, rounded up to a whole
    // multiple of four bytes: (width * bits + 31) / 32 * 4.
    LONG CalcNBytesScan(LONG width, WORD bits) const;
    // Size 40, the width, the height as a positive number (rows bottom-up), 1 plane, the bit
    // count, no compression, the image size, and nColors in both colour counts.
    void FillBIH(BITMAPINFOHEADER* header, LONG width, LONG height, WORD bits, DWORD nColors) const;
    // Expand `width` 1- or 4-bit indices (most significant bits first) into one byte each, and
    // pack bytes back into 1- or 4-bit indices. Packing keeps the low bits of each byte; unused
    // bits of the last packed byte are zero.
    void Convert1BitTo8BitScan(BYTE* dst, const BYTE* src, LONG width) const;
    void Convert4BitTo8BitScan(BYTE* dst, const BYTE* src, LONG width) const;
    void Convert8BitTo1BitScan(BYTE* dst, const BYTE* src, LONG width) const;
    void Convert8BitTo4BitScan(BYTE* dst, const BYTE* src, LONG width) const;

    // A logical palette with one entry (flags 0) per colour-table entry, attached to `palette`;
    // 0 when nColors is 0 or above 256 or the palette cannot be made.
    int CreatePalette(CPalette* palette, const RGBQUAD* colors, DWORD nColors) const;

    // The limit every image fetches once at construction: the largest sample offset, in bytes,
    // that the sampling code may address (2^31 - 1).
    LONG GetSampleRangeLimit() const;

    // A pseudo-random int in 0..maximum inclusive (0 for a maximum below 1). SeedRandom restarts
    // the process-wide generator so that a host or test can repeat a sequence.
    int Random0Max(int maximum);
    static void SeedRandom(DWORD seed);

    // A percentage 0..100 as an opacity byte 0..255, rounded to nearest (values outside are
    // clamped first).
    int XLatePercentTo255(int percent) const;

    // When *width x *height exceeds maxWidth x maxHeight in either direction, writes the largest
    // size of the same proportions that fits (at least 1 x 1) and returns 1; otherwise returns 0
    // and leaves the size.
    int FitIfGreater(LONG* width, LONG* height, LONG maxWidth, LONG maxHeight) const;

    // ---------------------------------------------------------------------------------------------
    // Colour spaces and tone tables. Colour bytes are 0..255 unless a scale is named.
    //
    // HSV: hue in whole degrees 0..359 (a grey reports hue 0), saturation and value 0..255, with
    // v = max(r, g, b) and s = 255 * (max - min) / max, both rounded to nearest. A 60-degree
    // sector spans up to 255 levels of the middle channel, so the integer hue alone moves a
    // saturated colour's round trip by up to 2 levels; colours with max - min <= 60 come back
    // within one level.
    void HSVFromRGB(BYTE red, BYTE green, BYTE blue, int* hue, BYTE* saturation, BYTE* value) const;
    // Hue is taken modulo 360 (negative values too); saturation 0 gives the grey of value.
    void RGBFromHSV(int hue, BYTE saturation, BYTE value, BYTE* red, BYTE* green, BYTE* blue) const;

    // HSL on the scale 0..240 for saturation and lightness and 0..239 for hue (40 per 60-degree
    // sector); hue 255 marks a colour without hue (a grey). Lightness is (max + min) / 2 scaled to
    // 240, saturation the usual (max - min) / (max + min) or / (510 - max - min). Inputs above 255
    // are clamped. A hue step is up to 255 / 40 levels of the middle channel, so a saturated
    // colour's round trip may move by up to 4 levels; colours with max - min <= 40 by one.
    void HSLFromRGB(WORD red, WORD green, WORD blue, BYTE* hue, BYTE* saturation,
                    BYTE* lightness) const;
    // Hue 255 or saturation 0 gives the grey of that lightness; any other hue is taken modulo 240;
    // saturation and lightness above 240 are clamped.
    void RGBFromHSL(WORD hue, WORD saturation, WORD lightness, BYTE* red, BYTE* green,
                    BYTE* blue) const;

    // Luma and colour differences after BT.601 in full range (the JPEG form): Y = 0.299 R +
    // 0.587 G + 0.114 B, U = 128 + 0.564 (B - Y), V = 128 + 0.713 (R - Y), in 16-bit fixed point
    // and rounded. RGBFromYUV is the exact inverse in the same fixed point, clamped to 0..255;
    // a round trip moves no channel by more than one level.
    BYTE YFromRGB(BYTE red, BYTE green, BYTE blue) const;
    void YUVFromRGB(BYTE red, BYTE green, BYTE blue, BYTE* y, BYTE* u, BYTE* v) const;
    void RGBFromYUV(BYTE y, BYTE u, BYTE v, BYTE* red, BYTE* green, BYTE* blue) const;

    // Shifts in place. Hue wraps around the circle (-359..359 degrees); saturation, value, Y, U
    // and V are clamped to 0..255 after the offset (-255..255) is added. A grey keeps its hue 0,
    // so a hue shift leaves it grey. The pixel forms take three bytes blue, green, red.
    void ChangeRGBQHSV(RGBQUAD* colors, int count, int hueShift, int saturationShift,
                       int valueShift) const;
    void ChangeRGBQYUV(RGBQUAD* colors, int count, int yShift, int uShift, int vShift) const;
    void OffsetHSV(BYTE* pixel, int hueShift, int saturationShift, int valueShift) const;
    void OffsetYUV(BYTE* pixel, int yShift, int uShift, int vShift) const;

    // Tone tables: each writes 256 bytes, entry i being the output for input level i.
    // Offset: i + offset, clamped.
    void FillRGBOffTable(BYTE* table, int offset) const;
    // Gamma: 255 * (i / 255)^(1 / gamma), rounded; gamma above 1 brightens, below 1 darkens, 1 is
    // the identity. A gamma that is not positive is treated as 0.01.
    void FillGammaTable(BYTE* table, double gamma) const;
    // The gamma whose curve takes mid-grey to 1 - ratio of the range: log(0.5) / log(1 - ratio).
    // So ratio 0.5 gives 1, a small ratio brightens and a large one darkens. The ratio is clamped
    // to 1/1024..1023/1024.
    double GetGammaFromRatio(double ratio) const;
    // The four contrast tables stretch about mid-grey (127.5) and are the identity at 0. With
    // x = (i - 127.5) / 127.5 in -1..1 the output is 127.5 + 127.5 f(x), rounded and clamped:
    //   FillContrastTable, -64..64: linear, f(x) = x (64 + c) / 64 for c <= 0 (-64 is flat grey),
    //     x * 64 / (64 - c) for c > 0 (64 is a threshold at mid-grey);
    //   FillLogContrastTable, 0..200: f(x) = sign(x) log(1 + k|x|) / log(1 + k), k = c / 10;
    //   FillSineHContrastTable, 0..99: f(x) = asinh(k x) / asinh(k), k = c / 10, the inverse of
    //     the hyperbolic sine, steep at mid-grey and flat towards the ends;
    //   FillExpContrastTable, 0..5: f(x) = sign(x) (1 - (1 - |x|)^(c + 1)).
    // Parameters outside these ranges are clamped into them.
    void FillContrastTable(BYTE* table, int contrast) const;
    void FillLogContrastTable(BYTE* table, int contrast) const;
    void FillSineHContrastTable(BYTE* table, int contrast) const;
    void FillExpContrastTable(BYTE* table, int contrast) const;

    // Sorts count (1..256) colour-table entries in place by the criteria (see palette_sort.h),
    // stably, and writes for every old index its new index into reindex (256 bytes; indices at
    // and above count map to themselves). usage (count entries) is read only when sorting by
    // usage. Returns 1, or 0 with the reason in *error and nothing changed.
    int SortRGBQs(RGBQUAD* colors, int count, const S_SortPalData* criteria,
                  const unsigned long* usage, BYTE* reindex, S_CalcSortError* error) const;

    // Builds the red, green and blue tables (256 bytes each) of a user curve (see user_curve.h).
    // Returns 1, or 0 with the reason in *error and the tables unwritten.
    int FillUserColorOperLUTs(const S_OneUserColorOper* oper, S_CalcColorError* error, BYTE* red,
                              BYTE* green, BYTE* blue) const;

    // Summary of one histogram channel of nBins bins: the median bin (the lowest bin at which the
    // running count reaches half of the total, rounded up), the mean bin and the population
    // standard deviation of the bins. All three are 0 for an empty histogram.
    void ComputeStatistics(int nBins, const LONG* counts, LONG* median, double* mean,
                           double* standardDeviation) const;
};
