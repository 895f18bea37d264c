#include "xform/seamless.h"

#include <cassert>

namespace vistrane::xform {

using image::PixelView;

namespace {

// Rounded to nearest as (size * percent + 50) / 100, in 64 bits so that no percent overflows.
long long BandOf(int size, int percent) {
    return (static_cast<long long>(size) * percent + 50) / 100;
}

// Fades `count` bytes of `band` into `kept` with weight alpha on the band. `band` may be
// `kept` itself: each byte is read before it is written.
void FadeBytes(BYTE* kept, const BYTE* band, int count, int alpha,
               const BYTE (&multiply)[256][256]) {
    const BYTE* keep = multiply[255 - alpha];
    const BYTE* take = multiply[alpha];
    for (int i = 0; i < count; ++i) {
        kept[i] = static_cast<BYTE>(keep[kept[i]] + take[band[i]]);
    }
}

template <int Bpp>
void FadeColumns(BYTE* row, int width, int bandWidth, const BYTE (&multiply)[256][256]) {
    const int source = width - bandWidth - 1;
    for (int k = 0; k <= bandWidth; ++k) {
        FadeBytes(row + k * Bpp, row + (source + k) * Bpp, Bpp, SeamlessAlpha(k, bandWidth),
                  multiply);
    }
}

}  // namespace

bool SeamlessBands(int width, int height, int percent, int& bandWidth, int& bandHeight) {
    const long long bw = BandOf(width, percent);
    const long long bh = BandOf(height, percent);
    if (bw < 1 || bh < 1 || bw >= width || bh >= height) {
        return false;
    }
    bandWidth = static_cast<int>(bw);
    bandHeight = static_cast<int>(bh);
    return true;
}

int SeamlessAlpha(int k, int b) {
    assert(b > 0 && k >= 0 && k <= b);
    return static_cast<int>((1.0 - static_cast<double>(k) / b) * 255.0);
}

void SeamlessCrossFade(const PixelView& view, int bandWidth, int bandHeight,
                       const BYTE (&multiply)[256][256]) {
    assert(bandWidth >= 1 && bandWidth < view.width);
    assert(bandHeight >= 1 && bandHeight < view.height);
    assert(view.bytesPerPixel == 1 || view.bytesPerPixel == 3);
    const int source = view.height - bandHeight - 1;
    for (int k = 0; k <= bandHeight; ++k) {
        FadeBytes(view.Row(k), view.Row(source + k), view.RowBytes(), SeamlessAlpha(k, bandHeight),
                  multiply);
    }
    for (int y = 0; y < view.height; ++y) {
        if (view.bytesPerPixel == 3) {
            FadeColumns<3>(view.Row(y), view.width, bandWidth, multiply);
        } else {
            FadeColumns<1>(view.Row(y), view.width, bandWidth, multiply);
        }
    }
}

}  // namespace vistrane::xform
