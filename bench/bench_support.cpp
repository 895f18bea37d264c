#include "bench_support.h"

#include <cstdint>

#include "image/pixel_view.h"

namespace vistrane::bench {

void FillPhotoLike(C_Image& image) {
    const image::PixelView view = image::ViewOf(image);
    std::uint32_t state = 12345;
    for (int y = 0; y < view.height; ++y) {
        BYTE* row = view.Row(y);
        for (int x = 0; x < view.width; ++x) {
            state = state * 1664525u + 1013904223u;
            BYTE* p = row + x * view.bytesPerPixel;
            p[0] = static_cast<BYTE>(x / 16 + (state >> 29));
            if (view.bytesPerPixel == 3) {
                p[1] = static_cast<BYTE>(y / 12 + (state >> 30));
                p[2] = static_cast<BYTE>((x + y) / 28);
            }
        }
    }
}

void SetPixelRate(benchmark::State& state, double pixels) {
    state.counters["Mpix/s"] =
        benchmark::Counter(pixels / 1e6, benchmark::Counter::kIsIterationInvariantRate);
}

}  // namespace vistrane::bench
