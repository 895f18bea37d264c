// The neighbourhood filter: tap list, per-row filtered colours, blend and merge.
//
// Cost: one multiply-add per non-zero weight and channel per pixel, one division per sum; the
// blend and merge run once per row over the whole row. Rows are processed in three passes
// (filtered colours, effective opacities, blend + merge) so that each pass is a tight loop; the
// result is the same as the per-pixel order because a pixel's filtered colour depends only on
// the bordered copy, never on pixels already written.

#include "filter/neighbourhood_filter.h"

#include "image/progress.h"

#include "filter/exact_divide.h"
#include "filter/filter_rows.h"

#include <vistrane/companion/helper.h>
#include <vistrane/filter/filter_types.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

namespace vistrane::filter {
namespace {

struct Tap {
    std::ptrdiff_t displacement;  // bytes from the target's place in the buffer
    int weight;
};

int BuildTaps(const int* kernel, std::ptrdiff_t stride, int bytesPerPixel,
              std::array<Tap, FILTER_KERNEL_TAPS>& taps) {
    int n = 0;
    for (int r = 0; r < 7; ++r) {
        for (int c = 0; c < 7; ++c) {
            const int w = kernel[r * 7 + c];
            if (w != 0) {
                taps[n++] = Tap{(r - 3) * stride + (c - 3) * bytesPerPixel, w};
            }
        }
    }
    return n;
}

BYTE Finish(int sum, const FilterSettings& s) {
    return static_cast<BYTE>(std::clamp(sum / s.divisor + s.offset, 0, 255));
}

// Filtered colours of one row into `colours` (3 bytes a pixel for true colour, 1 otherwise).
void FilteredRow(const BYTE* bufferRow, int width, const Tap* taps, int nTaps,
                 const FilterSettings& s, C_Helper& helper, BYTE* filterColour, BYTE* colours) {
    if (s.bytesPerPixel == 1) {
        for (int x = 0; x < width; ++x) {
            const BYTE* p = bufferRow + x;
            int sum = 0;
            for (int t = 0; t < nTaps; ++t) {
                sum += taps[t].weight * p[taps[t].displacement];
            }
            // Every known type filters the stored byte; unknown types keep the carried colour.
            if (s.type >= kFilterPerChannel && s.type <= kFilterBrightness) {
                filterColour[0] = Finish(sum, s);
            }
            colours[x] = filterColour[0];
        }
        return;
    }
    for (int x = 0; x < width; ++x) {
        const BYTE* p = bufferRow + 3 * x;
        if (s.type == kFilterPerChannel) {
            int b = 0, g = 0, r = 0;
            for (int t = 0; t < nTaps; ++t) {
                const BYTE* q = p + taps[t].displacement;
                b += taps[t].weight * q[0];
                g += taps[t].weight * q[1];
                r += taps[t].weight * q[2];
            }
            filterColour[0] = Finish(b, s);
            filterColour[1] = Finish(g, s);
            filterColour[2] = Finish(r, s);
        } else if (s.type == kFilterGray) {
            int sum = 0;
            for (int t = 0; t < nTaps; ++t) {
                const BYTE* q = p + taps[t].displacement;
                sum += taps[t].weight * ((q[0] + q[1] + q[2]) / 3);
            }
            filterColour[0] = filterColour[1] = filterColour[2] = Finish(sum, s);
        } else if (s.type == kFilterBrightness) {
            int sum = 0;
            for (int t = 0; t < nTaps; ++t) {
                const BYTE* q = p + taps[t].displacement;
                sum += taps[t].weight * std::max({q[0], q[1], q[2]});  // HSV value
            }
            // Hue and saturation come from the colour the previous pixel left behind.
            int hue;
            BYTE saturation, value;
            helper.HSVFromRGB(filterColour[2], filterColour[1], filterColour[0], &hue, &saturation,
                              &value);
            helper.RGBFromHSV(hue, saturation, Finish(sum, s), &filterColour[2], &filterColour[1],
                              &filterColour[0]);
        }
        std::memcpy(colours + 3 * x, filterColour, 3);
    }
}

// Whether every byte of a row is filtered on its own, each channel of a 24-bit pixel like a
// grey byte: then a row is one byte-wise convolution whose horizontal taps step by whole pixels.
bool ByteWise(const FilterSettings& s) {
    if (s.bytesPerPixel == 1) {
        return s.type >= kFilterPerChannel && s.type <= kFilterBrightness;
    }
    return s.type == kFilterPerChannel;
}

// Rows per band of FilterRectBanded: the band's bordered copy (about 40 rows) stays in the
// second-level cache.
constexpr int kBandRows = 32;

// The byte-wise form of FilteredRow: one convolution over the row's bytes (see filter_rows.h).
// Gives the bytes of the per-pixel loop, including the filter colour the last pixel leaves
// behind.
void FilteredRowByteWise(const BYTE* bufferRow, int rowBytes, const Tap* taps, int nTaps,
                         const FilterSettings& s, const ExactDivider& divider,
                         ConvolveBytesFn convolve, BYTE* filterColour, BYTE* colours) {
    const BYTE* rows[FILTER_KERNEL_TAPS];
    int weights[FILTER_KERNEL_TAPS];
    for (int t = 0; t < nTaps; ++t) {
        rows[t] = bufferRow + taps[t].displacement;
        weights[t] = taps[t].weight;
    }
    convolve(rows, weights, nTaps, 0, rowBytes, divider, s.offset, colours);
    std::memcpy(filterColour, colours + rowBytes - s.bytesPerPixel, s.bytesPerPixel);
}

// Copies one pixel into `count` consecutive places.
void Repeat(BYTE* dst, const BYTE* pixel, int count, int bytesPerPixel) {
    for (int i = 0; i < count; ++i) {
        std::memcpy(dst + i * bytesPerPixel, pixel, bytesPerPixel);
    }
}

// One bordered row: the width pixels of src after borderX copies of its first pixel, then
// borderX copies of its last.
void BorderedRow(BYTE* dst, const BYTE* src, int width, int borderX, int bpp) {
    const std::size_t rowBytes = static_cast<std::size_t>(width) * bpp;
    std::memcpy(dst + static_cast<std::ptrdiff_t>(borderX) * bpp, src, rowBytes);
    Repeat(dst, src, borderX, bpp);
    Repeat(dst + (static_cast<std::ptrdiff_t>(borderX) + width) * bpp, src + rowBytes - bpp,
           borderX, bpp);
}

// Whether the bytes that `rows` rows of `rowBytes` bytes span from `a` and from `b` are apart,
// for either sign of stride.
bool Apart(Plane a, Plane b, int rows, std::size_t rowBytes) {
    auto span = [&](Plane p) {
        const auto first = reinterpret_cast<std::uintptr_t>(p.first);
        const std::ptrdiff_t reach = p.stride * (rows - 1);
        const std::uintptr_t low = reach < 0 ? first - static_cast<std::uintptr_t>(-reach) : first;
        const std::uintptr_t high =
            (reach < 0 ? first : first + static_cast<std::uintptr_t>(reach)) + rowBytes;
        return std::pair{low, high};
    };
    const auto [aLow, aHigh] = span(a);
    const auto [bLow, bHigh] = span(b);
    return aHigh <= bLow || bHigh <= aLow;
}

}  // namespace

void RefreshBorderedCopy(Plane buffer, Plane source, int borderX, int borderY, int x, int y,
                         int width, int height, int bytesPerPixel) {
    const int bpp = bytesPerPixel;
    for (int j = 0; j < height; ++j) {
        BorderedRow(buffer.Row(borderY + j),
                    source.Row(y + j) + static_cast<std::ptrdiff_t>(x) * bpp, width, borderX, bpp);
    }
    // The top and bottom bands are copies of the first and last bordered rows, corners included
    // (their corners are the rectangle's corner pixels).
    const std::size_t fullRow = (static_cast<std::size_t>(width) + 2 * borderX) * bpp;
    for (int j = 0; j < borderY; ++j) {
        std::memcpy(buffer.Row(j), buffer.Row(borderY), fullRow);
        std::memcpy(buffer.Row(borderY + height + j), buffer.Row(borderY + height - 1), fullRow);
    }
}

bool FilterRect(Plane target, Plane buffer, Plane mask, int width, int height,
                const FilterSettings& settings, const blend::RowBlender& blender,
                void (*merge)(BYTE*, const BYTE*, const BYTE*, int), blend::BlendContext& context,
                BYTE* filterColour) {
    if (width <= 0 || height <= 0) {
        return true;
    }
    std::array<Tap, FILTER_KERNEL_TAPS> taps;
    const int nTaps = BuildTaps(settings.kernel, buffer.stride, settings.bytesPerPixel, taps);
    const std::size_t rowBytes = static_cast<std::size_t>(width) * settings.bytesPerPixel;
    std::vector<BYTE> colours(rowBytes);
    std::vector<BYTE> results(rowBytes);
    std::vector<BYTE> opacity(width);
    const bool byteWise = ByteWise(settings);
    const ExactDivider divider(settings.divisor);
    const ConvolveBytesFn convolve = ConvolveBytesFor(cpu::Best());
    const bool fullOpacity = mask.first == nullptr && settings.opacity == 255;
    // The blend would copy the colours unchanged, so the convolution writes into the target,
    // unless the caller's buffer shares bytes with it (the colours must then come from the
    // buffer as it was before the row was written, as they do through the colour row).
    const int bufferRows = height + 6;
    const bool direct =
        fullOpacity && byteWise && settings.blendTakesFilterColour &&
        Apart(target, Plane{buffer.Row(-3) - 3 * settings.bytesPerPixel, buffer.stride}, bufferRows,
              rowBytes + 6 * settings.bytesPerPixel);
    for (int y = 0; y < height; ++y) {
        if (settings.progress != nullptr && y % image::kProgressBandRows == 0 &&
            !settings.progress->Report(y)) {
            return false;
        }
        BYTE* row = target.Row(y);
        if (direct) {
            FilteredRowByteWise(buffer.Row(y), static_cast<int>(rowBytes), taps.data(), nTaps,
                                settings, divider, convolve, filterColour, row);
            continue;
        }
        if (byteWise) {
            FilteredRowByteWise(buffer.Row(y), static_cast<int>(rowBytes), taps.data(), nTaps,
                                settings, divider, convolve, filterColour, colours.data());
        } else {
            FilteredRow(buffer.Row(y), width, taps.data(), nTaps, settings, *context.helper,
                        filterColour, colours.data());
        }
        // At opacity 255 everywhere the merge takes the result unchanged
        // (MultiplyLUT[0][old] + MultiplyLUT[255][new] = new), so the blend writes in place.
        if (fullOpacity) {
            blender.Run(colours.data(), row, row, width, context);
            continue;
        }
        blend::EffectiveOpacityRow(opacity.data(), mask.first ? mask.Row(y) : nullptr,
                                   settings.opacity, width);
        blender.Run(colours.data(), row, results.data(), width, context, opacity.data());
        merge(row, results.data(), opacity.data(), width);
    }
    return true;
}

bool FilterRectBanded(Plane target, Plane mask, int width, int height,
                      const FilterSettings& settings, const blend::RowBlender& blender,
                      void (*merge)(BYTE*, const BYTE*, const BYTE*, int),
                      blend::BlendContext& context, BYTE* filterColour) {
    if (width <= 0 || height <= 0) {
        return true;
    }
    constexpr int kBorder = 3;
    // Bands report here; the rows inside one band do not.
    FilterSettings bandSettings = settings;
    bandSettings.progress = nullptr;
    const int bpp = settings.bytesPerPixel;
    const std::ptrdiff_t stride = (static_cast<std::ptrdiff_t>(width) + 2 * kBorder) * bpp;
    std::vector<BYTE> band(static_cast<std::size_t>(stride) * (kBandRows + 2 * kBorder));
    const Plane copy{band.data(), stride};
    // Band row r holds the original rectangle row y0 - 3 + r, clamped to the rectangle.
    auto fill = [&](int r, int y0) {
        const int y = std::clamp(y0 - kBorder + r, 0, height - 1);
        BorderedRow(copy.Row(r), target.Row(y), width, kBorder, bpp);
    };
    for (int y0 = 0; y0 < height; y0 += kBandRows) {
        const int rows = std::min(kBandRows, height - y0);
        int first = 0;
        if (y0 > 0) {
            // The six rows around the band's top were read before the previous band overwrote
            // the three above it; they sit at the end of the previous band.
            std::memmove(copy.Row(0), copy.Row(kBandRows), static_cast<std::size_t>(stride) * 6);
            first = 2 * kBorder;
        }
        for (int r = first; r < rows + 2 * kBorder; ++r) {
            fill(r, y0);
        }
        if (settings.progress != nullptr && !settings.progress->Report(y0)) {
            return false;
        }
        const Plane bandMask = mask.first != nullptr ? Plane{mask.Row(y0), mask.stride} : Plane{};
        FilterRect(Plane{target.Row(y0), target.stride},
                   Plane{copy.Row(kBorder) + kBorder * bpp, stride}, bandMask, width, rows,
                   bandSettings, blender, merge, context, filterColour);
    }
    return true;
}

}  // namespace vistrane::filter
