#include "filter/palette_ops.h"

#include <vistrane/companion/helper.h>

#include <cstring>
#include <memory>
#include <new>

namespace vistrane::filter {
namespace {

constexpr std::size_t kColorSetBytes = std::size_t{1} << 21;  // 2^24 bits

const BYTE* MaskRow(const image::PixelView& mask, int y) {
    return mask.Empty() ? nullptr : mask.Row(y);
}

}  // namespace

void ReIndexPixels(const image::PixelView& view, const BYTE* table) {
    for (int y = 0; y < view.height; ++y) {
        BYTE* row = view.Row(y);
        for (int x = 0; x < view.width; ++x) {
            row[x] = table[row[x]];
        }
    }
}

unsigned long CountUsage(const image::PixelView& view, unsigned long* usage) {
    std::memset(usage, 0, 256 * sizeof(unsigned long));
    for (int y = 0; y < view.height; ++y) {
        CountIndicesRow(view.Row(y), view.width, usage);
    }
    unsigned long used = 0;
    for (int i = 0; i < 256; ++i) {
        used += usage[i] != 0;
    }
    return used;
}

bool CountDistinctColors(const image::PixelView& view, unsigned long* count) {
    std::unique_ptr<BYTE[]> set(new (std::nothrow) BYTE[kColorSetBytes]);
    if (!set) {
        return false;
    }
    std::memset(set.get(), 0, kColorSetBytes);
    unsigned long distinct = 0;
    for (int y = 0; y < view.height; ++y) {
        distinct += MarkColorsRow(view.Row(y), view.width, set.get());
    }
    *count = distinct;
    return true;
}

ColorSums SumColors(const image::PixelView& view, const image::PixelView& mask) {
    ColorSums sums;
    for (int y = 0; y < view.height; ++y) {
        SumRow(view.Row(y), view.width, view.bytesPerPixel, view.colors, MaskRow(mask, y), sums);
    }
    return sums;
}

void FillHistogram(const image::PixelView& view, const image::PixelView& mask, S_Histogram* h) {
    std::memset(h, 0, sizeof(*h));
    for (int y = 0; y < view.height; ++y) {
        HistogramRow(view.Row(y), view.width, view.bytesPerPixel, view.colors, MaskRow(mask, y),
                     h->red, h->green, h->blue, &h->counted);
    }
    for (int i = 0; i < 256; ++i) {
        h->gray[i] = (h->red[i] + h->green[i] + h->blue[i]) / 3;
    }
    const C_Helper helper;
    const LONG* channels[4] = {h->gray, h->red, h->green, h->blue};
    for (int c = 0; c < 4; ++c) {
        helper.ComputeStatistics(256, channels[c], &h->median[c], &h->mean[c], &h->deviation[c]);
    }
}

void MarkDeletions(const S_DelPalData& data, const unsigned long* usage, int nColors, int foreIndex,
                   int backIndex, int transIndex, BYTE* marked) {
    std::memset(marked, 0, 256);
    switch (data.mode) {
        case 1:
            marked[foreIndex] = 1;
            return;
        case 2:
            marked[backIndex] = 1;
            return;
        case 3:
            marked[transIndex] = 1;
            return;
        case 0:
        case 4:
            break;
        default:
            return;
    }
    const unsigned long threshold = data.mode == 0 ? 1 : data.threshold;
    int nMarked = 0;
    for (int i = nColors - 1; i >= 0 && nMarked < nColors - 2; --i) {
        if (usage[i] < threshold) {
            marked[i] = 1;
            ++nMarked;
        }
    }
}

}  // namespace vistrane::filter
