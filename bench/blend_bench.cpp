// Painting a colour over a 4096 x 3072 picture: C_Image::PaintMasked itself, and the blend rows
// it runs, the reference rule loop beside the fastest rows of this CPU.

#include "blend/blend_dispatch.h"

#include <vistrane/blend/blend_modes.h>
#include <vistrane/blend/image_luts.h>
#include <vistrane/image/image.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

namespace {

using namespace vistrane::blend;

constexpr int kWidth = 4096;
constexpr int kHeight = 3072;

std::vector<BYTE> Picture(int bytesPerPixel) {
    std::vector<BYTE> v(static_cast<std::size_t>(kWidth) * kHeight * bytesPerPixel);
    unsigned state = 12345;
    for (auto& b : v) {
        state = state * 1103515245u + 12345u;
        b = static_cast<BYTE>(state >> 16);
    }
    return v;
}

void PaintRows(benchmark::State& state, int mode, bool fast, bool halfMask) {
    glb_CreateImageLUTs();
    std::vector<BYTE> picture = Picture(3);
    std::vector<BYTE> colour(3 * kWidth);
    for (int x = 0; x < kWidth; ++x) {
        colour[3 * x] = 40, colour[3 * x + 1] = 150, colour[3 * x + 2] = 220;
    }
    std::vector<BYTE> opacity(kWidth, 255);
    for (int x = 0; halfMask && x < kWidth; ++x) {
        opacity[x] = x < kWidth / 2 ? 255 : 0;
    }
    std::vector<BYTE> result(3 * kWidth);
    C_Helper helper;
    BlendContext context{0, &helper};
    const RowBlender blender = fast ? FastRowBlender(mode, 3) : ReferenceRowBlender(mode, 3);
    const MergeRowFn merge =
        MergeRowFor(3, fast ? vistrane::cpu::Best() : vistrane::cpu::InstructionSet::kReference);
    for (auto _ : state) {
        for (int y = 0; y < kHeight; ++y) {
            BYTE* row = picture.data() + static_cast<std::size_t>(y) * 3 * kWidth;
            if (halfMask) {
                blender.Run(colour.data(), row, result.data(), kWidth, context, opacity.data());
                merge(row, result.data(), opacity.data(), kWidth);
            } else {
                blender.Run(colour.data(), row, row, kWidth, context);
            }
        }
        benchmark::ClobberMemory();
    }
    state.counters["Mpix/s"] = benchmark::Counter(static_cast<double>(kWidth) * kHeight / 1e6,
                                                  benchmark::Counter::kIsIterationInvariantRate);
    glb_ReleaseImageLUTs();
}

void BM_BlendPaintMultiplyReference(benchmark::State& s) {
    PaintRows(s, BLENDMODE_MULTIPLY, false, false);
}
void BM_BlendPaintMultiplyFast(benchmark::State& s) {
    PaintRows(s, BLENDMODE_MULTIPLY, true, false);
}
void BM_BlendPaintMultiplyHalfMaskFast(benchmark::State& s) {
    PaintRows(s, BLENDMODE_MULTIPLY, true, true);
}
void BM_BlendPaintOverlayReference(benchmark::State& s) {
    PaintRows(s, BLENDMODE_OVERLAY, false, false);
}
void BM_BlendPaintOverlayFast(benchmark::State& s) {
    PaintRows(s, BLENDMODE_OVERLAY, true, false);
}
void BM_BlendPaintHue(benchmark::State& s) {
    PaintRows(s, BLENDMODE_HUE, false, false);
}

BENCHMARK(BM_BlendPaintMultiplyReference)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BlendPaintMultiplyFast)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BlendPaintMultiplyHalfMaskFast)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BlendPaintOverlayReference)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BlendPaintOverlayFast)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BlendPaintHue)->Unit(benchmark::kMillisecond);

void PaintMasked(benchmark::State& state, BLENDMODES mode, bool halfMask) {
    C_Image::CheckBitmapHeaderType();
    glb_CreateImageLUTs();
    C_Image image, mask;
    if (image.Create(kWidth, kHeight, 1, nullptr, 0) == 0 ||
        mask.CreateMask(kWidth, kHeight) == 0) {
        state.SkipWithError("cannot make the pictures");
        return;
    }
    const std::vector<BYTE> picture = Picture(3);
    for (long y = 0; y < kHeight; ++y) {
        std::copy(picture.begin() + 3 * kWidth * y, picture.begin() + 3 * kWidth * (y + 1),
                  image.PixelPtr(0, y));
        std::fill(mask.PixelPtr(0, y), mask.PixelPtr(0, y) + kWidth / 2, BYTE{255});
    }
    image.SetForeTrueColor(RGB(220, 150, 40));
    for (auto _ : state) {
        image.PaintMasked(PAINT_COLORS_FORE, mode, 0, 255, halfMask ? &mask : nullptr, nullptr);
        benchmark::ClobberMemory();
    }
    state.counters["Mpix/s"] = benchmark::Counter(static_cast<double>(kWidth) * kHeight / 1e6,
                                                  benchmark::Counter::kIsIterationInvariantRate);
    glb_ReleaseImageLUTs();
}

void BM_BlendPaintMaskedMultiply(benchmark::State& s) {
    PaintMasked(s, BLENDMODE_MULTIPLY, false);
}
void BM_BlendPaintMaskedMultiplyHalfMask(benchmark::State& s) {
    PaintMasked(s, BLENDMODE_MULTIPLY, true);
}
void BM_BlendPaintMaskedOverlay(benchmark::State& s) {
    PaintMasked(s, BLENDMODE_OVERLAY, false);
}
void BM_BlendPaintMaskedHue(benchmark::State& s) {
    PaintMasked(s, BLENDMODE_HUE, false);
}
BENCHMARK(BM_BlendPaintMaskedMultiply)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BlendPaintMaskedMultiplyHalfMask)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BlendPaintMaskedOverlay)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BlendPaintMaskedHue)->Unit(benchmark::kMillisecond);

}  // namespace
