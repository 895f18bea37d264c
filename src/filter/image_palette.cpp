// C_Image's palette operations and statistics: checks and the colour-table bookkeeping here,
// every pixel pass in palette_ops.cpp.

#include <vistrane/companion/palette_sort.h>
#include <vistrane/image/image.h>

#include "filter/palette_ops.h"
#include "image/pixel_view.h"

#include <cstring>

using vistrane::image::MaskArgumentFits;
using vistrane::image::MaskArgumentView;

int C_Image::CountColors(unsigned long* count, unsigned long* usage) {
    if (!HasImage()) {
        return 0;
    }
    GdiFlush();
    const vistrane::image::PixelView view = vistrane::image::ViewOf(*this);
    if (IsTrueColor()) {
        return vistrane::filter::CountDistinctColors(view, count) ? 1 : 0;
    }
    if (usage == nullptr) {
        return 0;
    }
    *count = vistrane::filter::CountUsage(view, usage);
    return 1;
}

void C_Image::ReIndexPixelsToPalette(unsigned char* table) {
    if (!HasImage() || IsTrueColor()) {
        return;
    }
    GdiFlush();
    vistrane::filter::ReIndexPixels(vistrane::image::ViewOf(*this), table);
}

int C_Image::SortPalColors(S_SortPalData* data, S_CalcSortError* error) {
    if (!HasImage() || IsTrueColor()) {
        return 0;
    }
    unsigned long usage[256];
    unsigned long used = 0;
    CountColors(&used, usage);
    RGBQUAD entries[256];
    const unsigned long n = NColors();
    CopyRGBQs(entries, n);
    BYTE reindex[256];
    const int sorted =
        m_Helper.SortRGBQs(entries, static_cast<int>(n), data, usage, reindex, error);
    if (sorted == 0) {
        return 0;
    }
    SetRGBQs(entries, n, 0);
    ReIndexPixelsToPalette(reindex);
    RenewPalette();
    return sorted;
}

void C_Image::DelPalColors(S_DelPalData* data) {
    if (!HasImage() || IsTrueColor() || data == nullptr) {
        return;
    }
    unsigned long usage[256];
    unsigned long used = 0;
    CountColors(&used, usage);
    const int n = static_cast<int>(NColors());
    BYTE marked[256];
    vistrane::filter::MarkDeletions(*data, usage, n, GetForePalInd(), GetBackPalInd(),
                                    GetTransPalInd(), marked);
    RGBQUAD old[256];
    CopyRGBQs(old, n);
    RGBQUAD kept[256];
    BYTE reindex[256];
    int nKept = 0;
    for (int i = 0; i < n; ++i) {
        if (marked[i] == 0) {
            kept[nKept] = old[i];
            reindex[i] = static_cast<BYTE>(nKept++);
        }
    }
    if (nKept == n || nKept == 0) {
        return;
    }
    SetRGBQs(kept, nKept, 0);
    CPalette* palette = GetPalette();
    for (int i = 0; i < n; ++i) {
        if (marked[i] != 0) {
            reindex[i] = static_cast<BYTE>(palette->GetNearestPaletteIndex(
                RGB(old[i].rgbRed, old[i].rgbGreen, old[i].rgbBlue)));
        }
    }
    for (int i = n; i < 256; ++i) {
        reindex[i] = static_cast<BYTE>(i < nKept ? i : nKept - 1);
    }
    ReIndexPixelsToPalette(reindex);
}

void C_Image::SwapPalColors(S_SwapPalData* data) {
    if (!HasImage() || IsTrueColor() || data == nullptr) {
        return;
    }
    GdiFlush();
    unsigned char first, second;
    if (data->pair == 0) {
        first = GetForePalInd(), second = GetBackPalInd();
    } else if (data->pair == 1) {
        first = GetBackPalInd(), second = GetTransPalInd();
    } else {
        first = GetTransPalInd(), second = GetForePalInd();
    }
    if (first == second) {
        return;
    }
    RGBQUAD* colours = RGBQs();
    std::swap(colours[first], colours[second]);
    RenewPalette();
}

unsigned long C_Image::CalcAverageColor(C_Image* mask) {
    if (!HasImage() || !MaskArgumentFits(*this, mask)) {
        return 0;
    }
    GdiFlush();
    const vistrane::filter::ColorSums sums =
        vistrane::filter::SumColors(vistrane::image::ViewOf(*this), MaskArgumentView(mask));
    if (sums.pixels == 0) {
        return 0;
    }
    return static_cast<unsigned long>((sums.blue / sums.pixels) << 16 |
                                      (sums.green / sums.pixels) << 8 | sums.red / sums.pixels);
}

void C_Image::ComputeHistogram(S_Histogram* histogram, C_Image* mask) {
    if (histogram == nullptr || !MaskArgumentFits(*this, mask)) {
        return;
    }
    if (!HasImage()) {
        std::memset(histogram, 0, sizeof(*histogram));
        return;
    }
    GdiFlush();
    vistrane::filter::FillHistogram(vistrane::image::ViewOf(*this), MaskArgumentView(mask),
                                    histogram);
}
