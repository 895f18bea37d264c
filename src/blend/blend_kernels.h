#pragma once

// The blend rules as free functions over bytes, shared by C_Image's stored kernels (which call
// one pixel function per pixel through the painting state) and by the bulk operations (which
// choose one row function per operation).
//
// A pixel function combines a source colour s with a destination pixel d into a result r; for
// true colour all three point at blue, green, red, for a mask or grey image at one byte. The
// function reads s and d completely before it writes r, so r may alias d. The tables of
// image_luts.h must be built; the source channel is always the table row.
//
// Row functions apply one pixel function to `count` pixels laid out contiguously; the fast row
// functions (blend_row_avx2.cpp) give exactly the bytes of the reference loop and never touch a
// byte past count pixels.

#include <vistrane/companion/helper.h>
#include <vistrane/platform/types.h>

namespace vistrane::blend {

// What a pixel function may need beyond its bytes: the dissolve threshold in percent and the
// companion object whose Random0Max draws the dissolve numbers.
struct BlendContext {
    int option = 0;
    C_Helper* helper = nullptr;
};

using PixelBlendFn = void (*)(const BYTE* source, const BYTE* destination, BYTE* result,
                              BlendContext& context);
// A fast row over `bytes` bytes of a rule that treats every byte alike (so it serves 1 and 3
// bytes per pixel).
using ByteRowFn = void (*)(const BYTE* source, const BYTE* destination, BYTE* result, int bytes);

// The rule of a mode for a 24-bit pixel and for a single grey byte. Modes 15..20 have no
// single-byte rule (the selectors give grey images the normal rule for them); 21..25 need the
// painting state and are not pixel functions. Unknown modes give the normal rule.
PixelBlendFn TrueColorPixelRule(int mode);
PixelBlendFn GreyPixelRule(int mode);

// One mode's row routine for one pixel size, chosen once per operation.
struct RowBlender {
    PixelBlendFn rule = nullptr;
    int bytesPerPixel = 3;
    ByteRowFn fast = nullptr;  // null: loop over rule

    // With `opacity` given, the rule loop skips pixels of opacity 0, so that the dissolve rule
    // draws no number for a pixel that is left untouched; the byte rows run everywhere.
    void Run(const BYTE* source, const BYTE* destination, BYTE* result, int count,
             BlendContext& context, const BYTE* opacity = nullptr) const;
};

// The plain loop over the rule of a mode.
RowBlender ReferenceRowBlender(int mode, int bytesPerPixel);
// The same rule with the fastest byte routine this CPU offers for it, if any.
RowBlender FastRowBlender(int mode, int bytesPerPixel);

// The merge step: lays `result` over `pixels` with a per-pixel opacity a (0..255). Each byte
// becomes glb_MultiplyLUT[255 - a][old] + glb_MultiplyLUT[a][new]; a = 0 leaves the pixel and
// a = 255 takes the result. Palette images cannot mix indices: their merge takes the result
// index where a > 127 and keeps the old one elsewhere.
void MergeTrueColorRow(BYTE* pixels, const BYTE* result, const BYTE* opacity, int count);
void MergeGreyRow(BYTE* pixels, const BYTE* result, const BYTE* opacity, int count);
void MergePaletteRow(BYTE* pixels, const BYTE* result, const BYTE* opacity, int count);

// Effective opacities of a row: opacity * mask / 255 (exact, truncating), or the opacity
// everywhere when mask is null.
void EffectiveOpacityRow(BYTE* out, const BYTE* mask, BYTE opacity, int count);

// The smudge rule: with strength >= 255 the result is the carried colour; 0 writes nothing;
// otherwise r = ((256 - w) p + w c + 128) >> 8 per channel and the carried colour becomes r.
void SmudgePixel(const BYTE* smudgePixel, BYTE* carried, BYTE* result, int strength, int channels);

// One tap of the filter modes: a row pointer and its weight.
struct FilterTap {
    const BYTE* row;
    int weight;
};
// The filter-mode rule: the weighted sum over the taps at the byte offset `sample`, per channel
// (perChannel) or of the luma, divided by the divisor (truncating), plus the offset, clamped.
void FilterPixel(const FilterTap* taps, int nTaps, int sample, int perChannel, int divisor,
                 int offset, BYTE* result, int channels, C_Helper& helper);

}  // namespace vistrane::blend
